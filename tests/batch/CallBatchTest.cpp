#include "batch/CallBatch.h"

#include "tests/helpers/doubles/RecordingProvider.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <mutex>

namespace qel::batch {
namespace {

constexpr std::int32_t unknownMember = -77;

/// A server whose accounts 0 to 9 have in month m of 2020 the value account * 100 + m, nothing in month 5,
/// and which does not know account 7. Its connection can be lost after some statements.
struct AccountsServer : test::RecordingProvider {
    AccountsServer() : RecordingProvider(test::LedgerProvider()) {}

    struct Line : Connection {
        explicit Line(AccountsServer& server) : server_(server) {}
        void Open(const std::string& text, const std::string&, const std::string&, int) override {
            if (server_.isGone) {
                throw AutomationError(-79, "gone");
            }
            text_ = text;
            state_ = stateOpen;
            server_.isLost = false;
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
            accounts_ = NumbersBehind(source, accountsPath);
            months_ = NumbersBehind(source, monthsPath);
            for (const int account : accounts_) {
                if (account == 7) {
                    server_.fail();
                }
            }
        }
        void Close() override {}
        std::int32_t AxisCount() const override { return 2; }
        std::int32_t PositionCount(std::int32_t axis) const override {
            return static_cast<std::int32_t>(axis == 0 ? months_.size() : accounts_.size());
        }
        std::int32_t MemberCount(std::int32_t, std::int32_t) const override { return 1; }
        CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t) const override {
            const auto& numbers = axis == 0 ? months_ : accounts_;
            CellsetMember member;
            member.uniqueName = fmt::format("{}{}]", axis == 0 ? monthsPath : accountsPath,
                                            numbers.at(static_cast<std::size_t>(position)));
            return member;
        }
        Variant Value(const std::vector<std::int32_t>& place) const override {
            const int month = months_.at(static_cast<std::size_t>(place[0]));
            const int account = accounts_.at(static_cast<std::size_t>(place[1]));
            return month == 5 ? Variant(Null{}) : Variant(account * 100.0 + month);
        }

    private:
        static constexpr const char* accountsPath = "[Accounts].[AccountCodes].[All].[";
        static constexpr const char* monthsPath = "[Date].[2020].[";

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
    std::unique_ptr<Cellset> CreateCellset() override { return std::make_unique<Answer>(*this); }

    mutable std::mutex mutex;
    std::vector<std::string> statements;
    std::size_t lostAfter = 0;
    bool isLost = false, isGone = false;
    /// What a statement over account 7 does.
    std::function<void()> fail = [] { throw AutomationError(unknownMember, "no account 7"); };
};

/// Ten accounts by six months, twice the same.
struct Sheet {
    explicit Sheet(DataAccess& server) : batch(server) {
        for (int account = 0; account < 10; ++account) {
            for (int month = 1; month <= 6; ++month) {
                const AutomationDate day = DateFromDay({2020, month, 1});
                const Variant key = Variant::List({"1"}), all = Variant::List({"All"});
                ValueCall call{.cubeFile = "http://server",
                               .CubeName = "x",
                               .Accounts = std::to_string(account),
                               .Measure = "Amount"};
                call.ObsName = call.ObsNum = key;
                call.ObsLevel = call.ObsMember = call.ActivityList = all;
                call.From_Date = call.To_Date = day;
                calls.push_back(std::move(call));
            }
        }
    }

    std::vector<std::string> Together() {
        std::vector<BatchedCall> batched;
        for (const ValueCall& call : calls) {
            batched.push_back({&call, &locale, true});
            batched.push_back({&call, &locale, true});
        }
        std::vector<std::string> shown;
        const auto results = batch.Evaluate(batched);
        for (std::size_t i = 0; i < results.size(); i += 2) {
            EXPECT_EQ(results[i].has_value(), results[i + 1].has_value());
            shown.push_back(results[i] ? Shown(*results[i]) : "");
        }
        return shown;
    }

    /// As a door does: what was not answered is evaluated by itself.
    std::vector<std::string> Values() {
        std::vector<std::string> shown = Together();
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (shown[i].empty()) {
                shown[i] = Shown(batch.FunctionOf("http://server", "x", locale).QelFuncDemo(calls[i]));
            }
        }
        return shown;
    }

    static std::string Shown(const FormulaResult& result) {
        if (result.value.Is<double>()) {
            return fmt::format("{}", result.value.As<double>());
        }
        return result.value.Is<std::string>() ? result.value.As<std::string>() : "0";
    }

    Locale locale;
    CallBatch batch;
    std::vector<ValueCall> calls;
};

/// What each of the calls gives by itself.
std::vector<std::string> ValuesAlone(const std::string& ofUnknown = fmt::format("#ERR {}", unknownMember)) {
    std::vector<std::string> values;
    for (int account = 0; account < 10; ++account) {
        for (int month = 1; month <= 6; ++month) {
            values.push_back(account == 7 ? ofUnknown
                             : month == 5 ? "0"
                                          : fmt::format("{}", account * 100 + month));
        }
    }
    return values;
}

TEST(CallBatch, GivesEveryCallWhatItsOwnStatementGives) {
    AccountsServer server;
    Sheet sheet(server);
    EXPECT_EQ(sheet.Values(), ValuesAlone());
    // The unknown account fails its grid, which is halved until the others are there; it then speaks for
    // itself.
    EXPECT_LE(server.statements.size(), 9U + 6U);
}

TEST(CallBatch, AnyExceptionIsTheFailureOfItsCalls) {
    const struct {
        std::function<void()> fail;
        const char* shown;
    } cases[] = {{[] { throw std::bad_alloc(); }, "#ERR 7"},
                 {[] { throw std::runtime_error("broken"); }, "#ERR 51"},
                 {[] { throw 5; }, "#ERR 51"}};
    for (const auto& c : cases) {
        AccountsServer server;
        server.fail = c.fail;
        Sheet sheet(server);
        const auto values = sheet.Together();
        EXPECT_EQ(values, std::vector<std::string>(60, c.shown)) << "one grid for all accounts";
        sheet.calls.erase(sheet.calls.begin() + 42 + 1, sheet.calls.begin() + 42 + 6);
        for (ValueCall& call : sheet.calls) { // no two in one grid
            call.Firma = call.Plbs = call.Accounts + call.Measure;
        }
        EXPECT_EQ(sheet.Together()[42], c.shown) << "alone";
    }
}

TEST(CallBatch, StaysRightWhenTheServerIsLostOnTheWay) {
    const auto alone = ValuesAlone();
    for (std::size_t lostAfter = 1; lostAfter < 9; ++lostAfter) {
        AccountsServer server;
        server.lostAfter = lostAfter;
        Sheet sheet(server);
        const auto values = sheet.Together();
        int told = 0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            told += values[i] == alone[i];
            EXPECT_TRUE(values[i].empty() || values[i] == alone[i]) << lostAfter << " " << i;
        }
        if (lostAfter == 2) { // the grid with the unknown account fails, one half of it is answered
            EXPECT_EQ(told, 30) << "what came before is told";
        }
        server.isGone = true;
        if (server.isLost) {
            EXPECT_EQ(sheet.Together(), std::vector<std::string>(60, "#err -79")) << lostAfter;
        }
        server.lostAfter = 0;
        server.isGone = false; // it can be opened again
        EXPECT_EQ(sheet.Values(), alone) << lostAfter;
    }
}

} // namespace
} // namespace qel::batch
