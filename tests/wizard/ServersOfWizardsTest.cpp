#include "wizard/servers/ServersOfWizards.h"

#include "platform/data/xmla/ServerErrors.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/wizard/WizardBench.h"

#include <gtest/gtest.h>

#include <thread>

namespace qel::test {
namespace {

using IsStopped = std::shared_ptr<const std::atomic<bool>>;

/// A server that answers nothing until the person cancels.
class SilentConnection : public Connection {
public:
    explicit SilentConnection(IsStopped isStopped) : isStopped_(std::move(isStopped)) {}
    void Open(const std::string& /*text*/, const std::string& /*user*/, const std::string& /*password*/,
              int /*options*/) override {
        while (!*isStopped_) {
            std::this_thread::yield();
        }
        throw ServerError(errorServerUnreachable, "cancelled");
    }
    void Close() override {}
    int State() const override { return stateClosed; }
    std::string ConnectionString() const override { return {}; }

private:
    IsStopped isStopped_;
};

class SilentServers : public DataAccess {
public:
    explicit SilentServers(IsStopped isStopped) : isStopped_(std::move(isStopped)) {}
    std::shared_ptr<Connection> CreateConnection() override {
        return std::make_shared<SilentConnection>(isStopped_);
    }
    std::unique_ptr<Catalog> CreateCatalog() override { return nullptr; }
    std::unique_ptr<Cellset> CreateCellset() override { return nullptr; }
    std::unique_ptr<Recordset> CreateRecordset() override { return nullptr; }

private:
    IsStopped isStopped_;
};

TEST(ServersOfWizards, LeavesCellsAConnectionOfTheirOwnWhileABoxIsShown) {
    WizardBench bench;
    ServersOfWizards servers(
        {.ask = [](const ServerAddress&) {},
         .make = [](const IsStopped& flag) { return std::make_unique<SilentServers>(flag); },
         .thread = [&]() -> ModSetCube::ThreadState& { return bench.thread; }},
        bench.toolkit, bench.language);
    int boxes = 0;
    bench.toolkit.person = [&](DialogDouble& box) {
        ++boxes;
        EXPECT_EQ(box.Text("TxtServer"), "http://olap.example");
        EXPECT_EQ(bench.thread.CubeConnection, nullptr);
        const ModSetCube::OpenedCube other = {LedgerFile(), "LedgerFNC"};
        ModSetCube::OpenThreadConnection(bench.thread, bench.dataAccess, other); // as a cell does
        box.Press("CmdCancel");
    };
    const Providers providers(servers.Access());
    const ModSetCube::OpenedCube cube = {"http://olap.example/xmla", "LedgerFNC"};
    const ServerAction action(&servers);
    for (int i = 0; i < 2; ++i) { // once one is cancelled, the others of the action fail at once
        EXPECT_EQ(
            FailureOf([&] { ModSetCube::OpenThreadConnection(bench.thread, providers, cube); }).Description(),
            "cancelled");
    }
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(bench.thread.provider, &servers.Access());
    ASSERT_NE(bench.thread.CubeConnection, nullptr);
    EXPECT_EQ(bench.thread.CubeConnection->State(), stateClosed);
}

} // namespace
} // namespace qel::test
