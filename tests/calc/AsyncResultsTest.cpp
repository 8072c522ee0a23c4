#include "calc/AsyncResults.h"

#include "platform/value/AutomationError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <com/sun/star/sheet/XResultListener.hpp>
#include <condition_variable>
#include <set>

namespace qel::calc {
namespace {

namespace sheet = com::sun::star::sheet;
namespace uno = com::sun::star::uno;
using Any = uno::Any;

/// Servers that no memory is left for. What a call gives, most tests say themselves.
struct NoServers : DataAccess {
    std::shared_ptr<Connection> CreateConnection() override { throw std::bad_alloc(); }
    std::unique_ptr<Catalog> CreateCatalog() override { throw std::bad_alloc(); }
    std::unique_ptr<Cellset> CreateCellset() override { throw std::bad_alloc(); }
    std::unique_ptr<Recordset> CreateRecordset() override { throw std::bad_alloc(); }
};

/// What Calc does for the cells of one formula.
struct Cells : cppu::WeakImplHelper1<sheet::XResultListener> {
    void SAL_CALL modified(const sheet::ResultEvent& event) override { told.push_back(event.Value); }
    void SAL_CALL disposing(const com::sun::star::lang::EventObject&) override {}

    std::vector<Any> told;
};

/// Something that several threads wait for.
class Signal {
public:
    void Set() {
        const std::scoped_lock lock(mutex_);
        isSet_ = true;
        changed_.notify_all();
    }
    void Wait() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isSet_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isSet_ = false;
};

/// An office that gets results: its main thread is the test's.
class Office {
public:
    Office() = default;
    ~Office() { results->Stop(); }
    Office(const Office&) = delete;
    Office& operator=(const Office&) = delete;

    /// Gives the plain value, or listens to the late one.
    Any Ask(const std::string& key, const std::function<Variant()>& evaluate,
            const rtl::Reference<Cells>& cells, const std::string& server = "http://a/xmla") {
        return Ask(
            {server, "LedgerFNC", key, {}, nullptr, [evaluate](OrmQelFunction&) { return evaluate(); }},
            cells);
    }

    Any Ask(ServerCall call, const rtl::Reference<Cells>& cells) {
        const Any answer = results->Ask(std::move(call));
        if (uno::Reference<sheet::XVolatileResult> late; answer >>= late) {
            late->addResultListener(cells.get());
            listening = late;
        }
        return answer;
    }

    /// Goes on as a main thread does until the cells were told so often.
    void Until(const Cells& cells, std::size_t times) {
        while (cells.told.size() < times) {
            std::unique_lock lock(mutex_);
            woken_.wait(lock, [this] { return isWoken_; });
            isWoken_ = false;
            lock.unlock();
            results->Deliver();
        }
    }

    std::shared_ptr<AsyncResults> results = std::make_shared<AsyncResults>(
        [this](const auto& isStopped) {
            stopped = isStopped;
            return std::make_unique<NoServers>();
        },
        ServerPermission{
            .isUndecided = [this](const std::string& server) { return undecided.contains(server); },
            .decide =
                [this](const std::string& server) {
                    questions.push_back(server);
                    if (onQuestion) {
                        onQuestion();
                    }
                    undecided.erase(server);
                }},
        [this] {
            const std::scoped_lock lock(mutex_);
            isWoken_ = true;
            woken_.notify_all();
        });
    std::set<std::string> undecided;    ///< servers that the person has to be asked about
    std::vector<std::string> questions; ///< that the person was asked
    std::function<void()> onQuestion;   ///< what happens while a question is open
    std::shared_ptr<const std::atomic<bool>> stopped;
    uno::Reference<sheet::XVolatileResult> listening; ///< the last one

private:
    std::mutex mutex_;
    std::condition_variable woken_;
    bool isWoken_ = false;
};

rtl::Reference<Cells> NewCells() { return new Cells; }

/// Calc's error 519, #VALUE!.
bool IsFailure(const Any& value) {
    double number = 0;
    return (value >>= number) && std::bit_cast<std::uint64_t>(number) == 0x7FF8000000000207U;
}

TEST(AsyncResults, TellWhatACellShows) {
    const struct {
        const char* what;
        std::function<Variant()> gives;
        std::function<bool(const Any&)> isShown;
    } cases[] = {
        {"a number", [] { return Variant(2.5); }, [](const Any& value) { return value == Any(2.5); }},
        {"a text", [] { return Variant("Outdated Cube Version"); },
         [](const Any& value) { return value == Any(rtl::OUString("Outdated Cube Version")); }},
        {"a failed call", []() -> Variant { throw AutomationError(13, "no"); }, IsFailure},
        {"a value that no cell can show is such a failure", [] { return Variant(Null{}); },
         [](const Any& value) {
             double number = 0;
             return (value >>= number) && number != number;
         }},
    };
    Office office;
    for (const auto& [what, gives, isShown] : cases) {
        const auto cells = NewCells();
        office.Ask(what, gives, cells);
        office.Until(*cells, 1);
        EXPECT_TRUE(isShown(cells->told.front())) << what;
        const Any again = office.Ask(
            what, [] { return Variant(0.0); }, cells);
        EXPECT_TRUE(isShown(again)) << what << ": the cell that is calculated for it gets it";
    }
}

TEST(AsyncResults, SendAFormulaOnceWhileItIsOnItsWay) {
    Office office;
    Signal answer;
    std::atomic<int> sent = 0;
    const auto evaluate = [&] {
        ++sent;
        answer.Wait();
        return Variant(7.0);
    };
    const auto first = NewCells(), second = NewCells();
    const Any one = office.Ask("same", evaluate, first);
    const Any other = office.Ask("same", evaluate, second);
    EXPECT_EQ(one, other) << "Calc knows results by their objects";
    answer.Set();
    office.Until(*first, 1);
    office.Until(*second, 1);
    EXPECT_EQ(sent, 1);
    EXPECT_EQ(second->told, std::vector{Any(7.0)});
}

TEST(AsyncResults, DropAFormulaThatNobodyWaitsForAnyMore) {
    Office office;
    Signal hasBegun, answer;
    bool isDroppedEvaluated = false;
    const auto slow = NewCells(), dropped = NewCells(), last = NewCells();
    office.Ask(
        "slow",
        [&] {
            hasBegun.Set();
            answer.Wait();
            return Variant(1.0);
        },
        slow);
    hasBegun.Wait();
    office.Ask(
        "dropped",
        [&] {
            isDroppedEvaluated = true;
            return Variant(2.0);
        },
        dropped);
    office.listening->removeResultListener(dropped.get());
    office.Ask(
        "last", [] { return Variant(3.0); }, last);
    answer.Set();
    office.Until(*last, 1);
    EXPECT_FALSE(isDroppedEvaluated);
    EXPECT_TRUE(dropped->told.empty());
    EXPECT_EQ(slow->told, std::vector{Any(1.0)});
}

TEST(AsyncResults, OfOneServerDoNotWaitForAnother) {
    Office office;
    Signal answer;
    const auto slow = NewCells(), quick = NewCells();
    office.Ask(
        "slow",
        [&] {
            answer.Wait();
            return Variant(1.0);
        },
        slow, "http://slow/xmla");
    office.Ask(
        "quick", [] { return Variant(2.0); }, quick, "http://quick/xmla");
    office.Until(*quick, 1);
    EXPECT_TRUE(slow->told.empty());
    answer.Set();
    office.Until(*slow, 1);
}

TEST(AsyncResults, WaitForThePersonsDecisionAboutTheirServer) {
    Office office;
    office.undecided = {"http://new/xmla"};
    std::atomic<int> sent = 0;
    const auto evaluate = [&] { return Variant(static_cast<double>(++sent)); };
    const auto waiting = NewCells(), dropped = NewCells(), late = NewCells(), known = NewCells();
    office.Ask("dropped", evaluate, dropped, "http://new/xmla");
    office.listening->removeResultListener(dropped.get());
    office.Ask("waiting", evaluate, waiting, " http://new/xmla ");
    office.Ask(
        "known", [] { return Variant(7.0); }, known, "http://known/xmla");
    office.onQuestion = [&] {
        EXPECT_EQ(sent, 0) << "nothing is sent before the answer";
        office.Ask("late", evaluate, late, "http://new/xmla");
        office.Until(*known, 1); // the office goes on while the question is open
    };
    office.Until(*waiting, 1);
    office.Until(*late, 1);
    EXPECT_EQ(office.questions, std::vector<std::string>{"http://new/xmla"}) << "once per server";
    EXPECT_EQ(sent, 2);
    EXPECT_TRUE(dropped->told.empty());
}

TEST(AsyncResults, EndWithTheOfficeInTheMiddleOfARequest) {
    Office office;
    Signal hasBegun;
    const auto cells = NewCells();
    office.Ask(
        "endless",
        [&]() -> Variant {
            hasBegun.Set();
            while (!*office.stopped) {
                std::this_thread::yield();
            }
            throw AutomationError(1, "ended");
        },
        cells);
    hasBegun.Wait();
    office.results->Stop();
    office.results->Deliver();
    EXPECT_TRUE(cells->told.empty());
    office.listening->removeResultListener(cells.get());
    EXPECT_TRUE(office
                    .Ask(
                        "later", [] { return Variant(1.0); }, cells)
                    .hasValue())
        << "it waits";
}

TEST(AsyncResults, NoExceptionOnTheirThreadEndsTheOffice) {
    Office office;
    std::vector<rtl::Reference<Cells>> cells;
    for (const char* account : {"1", "2", "3"}) { // asked for together
        cells.push_back(NewCells());
        const ValueCall call{.cubeFile = "http://a/xmla", .CubeName = "LedgerFNC", .Accounts = account};
        office.Ask(ServerCallOf(call, {}), cells.back());
    }
    for (const auto& waiting : cells) {
        office.Until(*waiting, 1);
        EXPECT_EQ(waiting->told.front(), Any(0.0)) << "what the function gives when memory lacks";
    }
    cells.push_back(NewCells());
    office.Ask(
        "odd", []() -> Variant { throw 5; }, cells.back());
    office.Until(*cells.back(), 1);
    EXPECT_TRUE(IsFailure(cells.back()->told.front()));
}

TEST(ServerCall, HasAKeyOfItsOwn) {
    ValueCall plain;
    plain.cubeFile = "http://a/xmla";
    plain.CubeName = "LedgerFNC";
    const auto changed = [&](const std::function<void(ValueCall&)>& change) {
        ValueCall call = plain;
        change(call);
        return ServerCallOf(call, {}).key;
    };
    const Variant missing = ErrorValue{parameterNotFound};
    const std::string keys[] = {
        ServerCallOf(plain, {}).key,
        ServerCallOf(plain, {.dateOrder = DateOrder::MonthDayYear}).key,
        ServerCallOf(NameCall{plain.cubeFile, plain.CubeName, "", ""}, {}).key,
        changed([](auto& a) { a.cubeFile = "http://b/xmla"; }),
        changed([](auto& a) { a.Accounts = "10"; }),
        changed([](auto& a) { a.Measure = "10"; }),
        changed([](auto& a) { a.Accounts = "1", a.Measure = "0"; }),
        changed([](auto& a) { a.To_Date = {45000}; }),
        changed([](auto& a) { a.To_Date = {45000.5}; }),
        changed([](auto& a) { a.From_Date = {45000}; }),
        changed([](auto& a) { a.ObsName = 1.0; }),
        changed([](auto& a) { a.ObsName = "1"; }),
        changed([](auto& a) { a.ObsNum = 1.0; }),
        changed([&](auto& a) { a.ObsName = missing; }),
        changed([](auto& a) {
            a.ObsName = Variant::List({"a", "b"});
        }),
        changed([](auto& a) { a.ObsName = Variant::List({"a"}), a.ObsNum = Variant::List({"b"}); }),
        changed([](auto& a) { a.ObsName = Variant::List({"a\"]'"}); }),
    };
    for (const auto& key : keys) {
        EXPECT_EQ(std::count(std::begin(keys), std::end(keys), key), 1) << key;
    }
    EXPECT_EQ(ServerCallOf(plain, {}).key, keys[0]);
}

} // namespace
} // namespace qel::calc
