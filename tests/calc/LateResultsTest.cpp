#include "calc/LateResults.h"

#include "platform/value/AutomationError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <com/sun/star/sheet/XResultListener.hpp>
#include <condition_variable>

namespace qel::calc {
namespace {

namespace sheet = com::sun::star::sheet;
namespace uno = com::sun::star::uno;
using Any = uno::Any;

/// Objects that are made and never opened: what a call gives, the tests say themselves.
struct NoServers : DataAccess {
    std::shared_ptr<Connection> CreateConnection() override { return nullptr; }
    std::unique_ptr<Catalog> CreateCatalog() override { return nullptr; }
    std::unique_ptr<Cellset> CreateCellset() override { return nullptr; }
    std::unique_ptr<Recordset> CreateRecordset() override { return nullptr; }
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
        const Any answer = results->Ask(
            {server, "LedgerFNC", key, {}, true, [evaluate](OrmQelFunction&) { return evaluate(); }});
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

    std::shared_ptr<LateResults> results = std::make_shared<LateResults>(
        [this](const auto& isStopped) {
            stopped = isStopped;
            return std::make_unique<NoServers>();
        },
        [this] {
            const std::scoped_lock lock(mutex_);
            isWoken_ = true;
            woken_.notify_all();
        });
    std::shared_ptr<const std::atomic<bool>> stopped;
    uno::Reference<sheet::XVolatileResult> listening; ///< the last one

private:
    std::mutex mutex_;
    std::condition_variable woken_;
    bool isWoken_ = false;
};

rtl::Reference<Cells> NewCells() { return new Cells; }

TEST(LateResults, TellWhatACellShows) {
    const struct {
        const char* what;
        std::function<Variant()> gives;
        std::function<bool(const Any&)> isShown;
    } cases[] = {
        {"a number", [] { return Variant(2.5); }, [](const Any& value) { return value == Any(2.5); }},
        {"a text", [] { return Variant("Outdated Cube Version"); },
         [](const Any& value) { return value == Any(rtl::OUString("Outdated Cube Version")); }},
        {"a failed call is Calc's error 519", []() -> Variant { throw AutomationError(13, "no"); },
         [](const Any& value) {
             double number = 0;
             return (value >>= number) && std::bit_cast<std::uint64_t>(number) == 0x7FF8000000000207U;
         }},
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

TEST(LateResults, SendAFormulaOnceWhileItIsOnItsWay) {
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

TEST(LateResults, DropAFormulaThatNobodyWaitsForAnyMore) {
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

TEST(LateResults, OfOneServerDoNotWaitForAnother) {
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

TEST(LateResults, EndWithTheOfficeInTheMiddleOfARequest) {
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

TEST(ServerCall, HasAKeyOfItsOwn) {
    ValueArguments plain;
    plain.cubeFile = "http://a/xmla";
    plain.cubeName = "LedgerFNC";
    const auto changed = [&](const std::function<void(ValueArguments&)>& change) {
        ValueArguments arguments = plain;
        change(arguments);
        return CallOf(arguments, {}).key;
    };
    const Variant missing = ErrorValue{parameterNotFound};
    const std::string keys[] = {
        CallOf(plain, {}).key,
        CallOf(plain, {.dateOrder = DateOrder::MonthDayYear}).key,
        CallOf(NameArguments{plain.cubeFile, plain.cubeName, "", ""}, {}).key,
        changed([](auto& a) { a.cubeFile = "http://b/xmla"; }),
        changed([](auto& a) { a.accounts = "10"; }),
        changed([](auto& a) { a.measure = "10"; }),
        changed([](auto& a) { a.accounts = "1", a.measure = "0"; }),
        changed([](auto& a) { a.toDate = {45000}; }),
        changed([](auto& a) { a.toDate = {45000.5}; }),
        changed([](auto& a) { a.fromDate = {45000}; }),
        changed([](auto& a) { a.obsName = 1.0; }),
        changed([](auto& a) { a.obsName = "1"; }),
        changed([](auto& a) { a.obsNumber = 1.0; }),
        changed([&](auto& a) { a.obsName = missing; }),
        changed([](auto& a) {
            a.obsName = Variant::List({"a", "b"});
        }),
        changed([](auto& a) { a.obsName = Variant::List({"a"}), a.obsNumber = Variant::List({"b"}); }),
        changed([](auto& a) { a.obsName = Variant::List({"a\"]'"}); }),
    };
    for (const auto& key : keys) {
        EXPECT_EQ(std::count(std::begin(keys), std::end(keys), key), 1) << key;
    }
    EXPECT_EQ(CallOf(plain, {}).key, keys[0]);
}

} // namespace
} // namespace qel::calc
