#include "platform/data/choice/ChooseProvider.h"

#include "tests/helpers/books/BooksCube.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

#include <fstream>

namespace qel {
namespace {

TEST(ChooseProvider, ByWhatTheDataSourceIs) {
    const test::TemporaryFolder folder;
    const std::string cube = test::BuildBooks(folder.Path("ספר's [1].cub"));
    std::ofstream(folder.Path("other.cub")) << "Microsoft OLAP cube, not ours";
    std::ofstream(folder.Path("empty.cub")) << "";
    const auto at = [&](const char* name) { return test::TextFor(folder.Path(name).string(), "x"); };
    enum Kind { cubeFile, server, other };
    const struct {
        const char* what;
        std::string text;
        Kind kind;
    } cases[] = {
        {"a cube", test::TextFor(cube, "BooksFNC"), cubeFile},
        {"a cube, in blanks and without a catalog", "data source = " + cube + " ", cubeFile},
        {"a cube of another provider's name", "Provider=SQLOLEDB;Data Source=" + cube, cubeFile},
        {"a file of another kind", at("other.cub"), other},
        {"an empty file", at("empty.cub"), other},
        {"a missing file", at("missing.cub"), other},
        {"a folder", test::TextFor(folder.Path().string(), "x"), other},
        {"an address", test::TextFor("HTTP://olap.example:8080/xmla", "x"), server},
        {"a secure one, in blanks", test::TextFor(" https://olap.example/xmla ", "x"), server},
        {"a server's name", test::TextFor("OLAP01\\SALES", "x"), other},
        {"no data source", "Provider=MSOLAP", other},
        {"an unreadable text", "what is this", other},
        {"nothing", "", other},
    };
    test::RecordingProvider cubeFiles, servers, machine;
    const Providers everything = ChooseProvider(cubeFiles, &servers, &machine);
    const Providers withoutMachine = ChooseProvider(cubeFiles, &servers, nullptr);
    const Providers withoutServers = ChooseProvider(cubeFiles, nullptr, &machine);
    for (const auto& c : cases) {
        DataAccess* const all[] = {&cubeFiles, &servers, &machine};
        DataAccess* const noMachine[] = {&cubeFiles, &servers, &cubeFiles};
        DataAccess* const noServers[] = {&cubeFiles, &machine, &machine};
        EXPECT_EQ(&everything.For(c.text), all[c.kind]) << c.what;
        EXPECT_EQ(&withoutMachine.For(c.text), noMachine[c.kind]) << c.what;
        EXPECT_EQ(&withoutServers.For(c.text), noServers[c.kind]) << c.what;
    }
}

} // namespace
} // namespace qel
