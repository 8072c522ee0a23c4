#include "batch/StatementBatch.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <mutex>

namespace qel::batch {
namespace {

constexpr std::int32_t unknownMember = -77;

/// A server whose accounts 0 to 9 have in month m the value account * 100 + m, nothing in month 5, and which
/// does not know account 7. Its connection can be lost after some statements.
struct AccountsServer : DataAccess {
    struct Line : Connection {
        explicit Line(AccountsServer& server) : server_(server) {}
        void Open(const std::string& text, const std::string&, const std::string&, int) override {
            text_ = text;
            state_ = stateOpen;
        }
        void Close() override { state_ = stateClosed; }
        int State() const override { return server_.IsLost() ? stateClosed : state_; }
        std::string ConnectionString() const override { return text_; }

    private:
        AccountsServer& server_;
        std::string text_;
        int state_ = stateClosed;
    };

    struct Answer : Cellset {
        explicit Answer(AccountsServer& server) : server_(server) {}
        void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
            if (connection->State() != stateOpen) {
                throw AutomationError(3709, "closed");
            }
            server_.Note(source);
            accounts_ = NumbersBehind(source, "[AccountCodes].[All].[");
            months_ = NumbersBehind(source, "[Date].[");
            for (const int account : accounts_) {
                if (account == 7) {
                    throw AutomationError(unknownMember, "no account 7");
                }
            }
        }
        void Close() override {}
        std::int32_t AxisCount() const override { return 2; }
        std::int32_t PositionCount(std::int32_t) const override { return 0; }
        std::int32_t MemberCount(std::int32_t, std::int32_t) const override { return 0; }
        CellsetMember MemberAt(std::int32_t, std::int32_t, std::int32_t) const override { return {}; }
        Variant Value(const std::vector<std::int32_t>& place) const override {
            const int month = months_.at(static_cast<std::size_t>(place[0]));
            const int account = accounts_.at(static_cast<std::size_t>(place[1]));
            return month == 5 ? Variant(Null{}) : Variant(account * 100.0 + month);
        }

    private:
        static std::vector<int> NumbersBehind(const std::string& text, const std::string& what) {
            std::vector<int> numbers;
            for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
                numbers.push_back(std::stoi(text.substr(at + what.size())));
            }
            return numbers;
        }

        AccountsServer& server_;
        std::vector<int> accounts_, months_;
    };

    void Note(const std::string& statement) {
        const std::scoped_lock lock(mutex);
        if (lostAfter != 0 && statements.size() >= lostAfter) {
            isLost = true;
        }
        if (isLost) {
            throw AutomationError(-78, "lost");
        }
        statements.push_back(statement);
    }
    bool IsLost() const {
        const std::scoped_lock lock(mutex);
        return isLost;
    }
    std::shared_ptr<Connection> CreateConnection() override { return std::make_shared<Line>(*this); }
    std::unique_ptr<Catalog> CreateCatalog() override { return nullptr; }
    std::unique_ptr<Cellset> CreateCellset() override { return std::make_unique<Answer>(*this); }

    mutable std::mutex mutex;
    std::vector<std::string> statements;
    std::size_t lostAfter = 0;
    bool isLost = false;
};

std::string Statement(int account, int month) {
    return fmt::format(
        "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(1,[Date].[{}]),[Measures].[Amount])    ' SELECT "
        " {{ [Date].DateSel}} ON COLUMNS,  {{ [SuperSumery].[SumeryCode] }}ON ROWS  From x where (  "
        "[ActX].[OBSx].[All].[1],[Accounts].[AccountCodes].[All].[{}])",
        month, account);
}

/// What a formula over the batch sees: its number, "empty" or "error" with the number.
std::string Evaluate(StatementBatch& batch, const std::shared_ptr<Connection>& connection, int account,
                     int month) {
    try {
        const auto cellset = batch.CreateCellset();
        cellset->Open(Statement(account, month), connection);
        const Variant value = cellset->Value({0, 0});
        cellset->Close();
        return value.Is<Null>() ? "empty" : fmt::format("{}", value.As<double>());
    } catch (const AutomationError& error) {
        return fmt::format("error {}", error.Number());
    }
}

struct Sheet {
    explicit Sheet(AccountsServer& server) : batch(server), connection(server.CreateConnection()) {
        connection->Open("Data Source=x", "", "", optionsUnspecified);
    }
    void Each(const std::function<void(int account, int month)>& visit) const {
        for (int account = 0; account < 10; ++account) {
            for (int month = 1; month <= 6; ++month) {
                visit(account, month);
            }
        }
    }
    BatchTotals Run() {
        batch.StartCollecting();
        Each([&](int account, int month) { Evaluate(batch, connection, account, month); });
        return batch.Run();
    }

    StatementBatch batch;
    std::shared_ptr<Connection> connection;
};

std::string ValueAlone(int account, int month) {
    if (account == 7) {
        return fmt::format("error {}", unknownMember);
    }
    return month == 5 ? "empty" : fmt::format("{}", account * 100 + month);
}

TEST(StatementBatch, GivesEveryFormulaWhatItsOwnStatementGives) {
    AccountsServer server;
    Sheet sheet(server);
    const auto totals = sheet.Run();
    EXPECT_EQ(totals.cells, 60U);
    EXPECT_EQ(totals.grids, 1U);
    sheet.Each([&](int account, int month) {
        EXPECT_EQ(Evaluate(sheet.batch, sheet.connection, account, month), ValueAlone(account, month))
            << account << " " << month;
    });
    // The unknown account fails its grid, which is halved until the others are there; it then speaks for
    // itself.
    EXPECT_LE(server.statements.size(), 9U + 6U);
}

TEST(StatementBatch, AsksAnewAfterItForgot) {
    AccountsServer server;
    Sheet sheet(server);
    sheet.Run();
    sheet.batch.Forget();
    const std::size_t before = server.statements.size();
    EXPECT_EQ(Evaluate(sheet.batch, sheet.connection, 3, 2), "302");
    EXPECT_EQ(server.statements.size(), before + 1);
}

TEST(StatementBatch, StaysRightWhenTheServerIsLostOnTheWay) {
    for (std::size_t lostAfter = 1; lostAfter < 9; ++lostAfter) {
        AccountsServer server;
        server.lostAfter = lostAfter;
        Sheet sheet(server);
        sheet.Run();
        {
            const std::scoped_lock lock(server.mutex);
            server.isLost = false;
            server.lostAfter = 0;
        }
        sheet.Each([&](int account, int month) {
            EXPECT_EQ(Evaluate(sheet.batch, sheet.connection, account, month), ValueAlone(account, month))
                << lostAfter << " " << account << " " << month;
        });
    }
}

TEST(StatementBatch, TellsWhatCameBeforeTheServerWasLostForGood) {
    AccountsServer server;
    server.lostAfter = 2; // the grid with the unknown account fails, one half of it is answered
    StatementBatch batch(server);
    const auto connection = batch.CreateConnection();
    connection->Open("Data Source=x", "", "", optionsUnspecified);
    const auto each = [&](const auto& visit) {
        for (int account = 0; account < 10; ++account) {
            for (int month = 1; month <= 6; ++month) {
                visit(account, month);
            }
        }
    };
    batch.StartCollecting();
    each([&](int account, int month) { Evaluate(batch, connection, account, month); });
    batch.Run();
    EXPECT_TRUE(server.IsLost());
    EXPECT_EQ(connection->State(), stateOpen) << "a formula would open it again, in vain";
    int told = 0;
    each([&](int account, int month) {
        const std::string value = Evaluate(batch, connection, account, month);
        told += value == ValueAlone(account, month) && account != 7;
        EXPECT_TRUE(value == ValueAlone(account, month) || value.starts_with("error")) << value;
    });
    EXPECT_EQ(told, 30);
    batch.Forget();
    EXPECT_EQ(connection->State(), stateClosed);
}

} // namespace
} // namespace qel::batch
