#include "platform/ConnectionText.h"

#include "platform/AutomationError.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

TEST(ConnectionText, ReadsWhatDecidesTheCube) {
    struct Case {
        const char* what;
        const char* text;
        const char *provider, *dataSource;
        const char* initialCatalog; ///< null when the text names none
    };
    const Case cases[] = {
        {"the text of every formula",
         "Provider=MSOLAP;Data Source=C:\\Cubes\\Fin.cub;Initial Catalog=Fin;Client Cache Size=25;Auto Synch "
         "Period=10000",
         "MSOLAP", "C:\\Cubes\\Fin.cub", "Fin"},
        {"names in any letter case, blanks around", " PROVIDER = MSOLAP ; data source = a b.cub ;; ",
         "MSOLAP", "a b.cub", nullptr},
        {"quotes, equals signs and Hebrew belong to the value",
         "Data Source=/a/\"x\"='1'.cub;Initial Catalog=ספר 'א'", "", "/a/\"x\"='1'.cub", "ספר 'א'"},
        {"an empty cube name", "Provider=MSOLAP;Data Source=a;Initial Catalog=;X=1", "MSOLAP", "a", ""},
        {"the last of two counts", "Data Source=a;Data Source=b", "", "b", nullptr},
    };
    for (const auto& c : cases) {
        const auto read = ParseConnectionText(c.text);
        EXPECT_EQ(read.provider, c.provider) << c.what;
        EXPECT_EQ(read.dataSource, c.dataSource) << c.what;
        EXPECT_EQ(read.initialCatalog,
                  c.initialCatalog ? std::optional<std::string>(c.initialCatalog) : std::nullopt)
            << c.what;
    }
}

TEST(ConnectionText, TellsWhatCannotBeRead) {
    struct Case {
        const char* text;
        const char* part;
    };
    const Case cases[] = {
        {"", "no data source"},
        {"Provider=MSOLAP;Data Source= ;Initial Catalog=x", "no data source"},
        {"Provider=MSOLAP;Data Source=/a;b.cub;Initial Catalog=x", "'b.cub'"},
    };
    for (const auto& c : cases) {
        try {
            ParseConnectionText(c.text);
            ADD_FAILURE() << c.text << " was accepted";
        } catch (const AutomationError& error) {
            EXPECT_LT(error.Number(), 0);
            EXPECT_NE(error.Description().find(c.part), std::string::npos) << error.Description();
        }
    }
}

} // namespace
} // namespace qel
