#include "function/OrmQelFunction.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "tests/server/LedgerCall.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace qel::test {
namespace {

constexpr int calls = 100'000;

/// The private memory of this process.
std::size_t PrivateBytes() {
    std::size_t total = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; ::VirtualQuery(at, &region, sizeof region) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) {
            total += region.RegionSize;
        }
    }
    return total;
}

template <class Work>
double Seconds(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(Throughput, AHundredThousandCallsLeaveNoMemoryBehind) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const double expected = ValueInProcess({});
    Arguments arguments = ArgumentsOf({});
    const auto callMany = [&](int count) {
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(ValueThroughCom(object.Get(), arguments), expected);
        }
    };
    {
        const std::size_t empty = PrivateBytes();
        const std::vector<char> lost(20'000'000, 'x');
        ASSERT_GT(PrivateBytes(), empty + lost.size() / 2) << "the measure must see memory that is held";
    }
    callMany(calls / 10); // fills the caches
    const std::size_t before = PrivateBytes();
    const double throughCom = Seconds([&] { callMany(calls); });
    const std::size_t after = PrivateBytes();
    const auto grown = static_cast<std::int64_t>(after) - static_cast<std::int64_t>(before);
    EmbeddedDataAccess cubes;
    ModSetCube::ThreadState thread;
    const Locale locale;
    OrmQelFunction function({thread, cubes, locale});
    const ValueCall call = ValueCallOf({});
    const double inProcess = Seconds([&] {
        for (int i = 0; i < calls; ++i) {
            ASSERT_EQ(function.QeLF1(call).value.As<double>(), expected);
        }
    });
    std::printf("%.0f calls/s through IDispatch, %.0f in process, memory %+lld bytes over %d calls\n",
                calls / throughCom, calls / inProcess, static_cast<long long>(grown), calls);
    EXPECT_LT(grown, 1'000'000) << "ten bytes per call";
}

/// A host has a window before it has a second thread. Wine loads its display driver on first use, and two
/// threads that do so at once, one of them inside the loader, deadlock.
void UseTheScreen() { ::ReleaseDC(nullptr, ::GetDC(nullptr)); }

/// A thread of a host. Waits for its actual end, including the notifications to every DLL.
class HostThread {
public:
    explicit HostThread(std::function<void()> work) : work_(std::move(work)) {
        UseTheScreen();
        handle_ = ::CreateThread(nullptr, 0, Run, this, 0, nullptr);
    }
    ~HostThread() {
        EXPECT_EQ(::WaitForSingleObject(handle_, 60'000), WAIT_OBJECT_0) << "the thread does not end";
        ::CloseHandle(handle_);
    }
    HostThread(const HostThread&) = delete;
    HostThread& operator=(const HostThread&) = delete;

private:
    static DWORD WINAPI Run(void* self) {
        static_cast<HostThread*>(self)->work_();
        return 0;
    }

    std::function<void()> work_;
    HANDLE handle_ = nullptr;
};

std::atomic<int> faults{0};

LONG CALLBACK CountFault(EXCEPTION_POINTERS* exception) {
    faults += exception->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION;
    return EXCEPTION_CONTINUE_SEARCH;
}

/// The system ignores exceptions while a thread ends, so the test counts access violations.
TEST(Threads, EndWithoutTouchingWhatIsGone) {
    faults = 0;
    void* const handler = ::AddVectoredExceptionHandler(1, CountFault);
    std::vector<std::unique_ptr<HostThread>> threads(8);
    for (int turn = 0; turn < 1000; ++turn) {
        threads[static_cast<std::size_t>(turn) % threads.size()] = std::make_unique<HostThread>([] {
            const Apartment apartment;
            const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
            Arguments arguments = ArgumentsOf({});
            ValueThroughCom(object.Get(), arguments);
        });
    }
    threads.clear();
    ::RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(faults, 0);
}

TEST(Threads, TheServerIsUnloadedWhenNobodyUsesItAndCanComeBack) {
    const double expected = ValueInProcess({});
    for (int turn = 0; turn < 3; ++turn) {
        std::optional<HostThread> host(std::in_place, [&] {
            const Apartment apartment;
            const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
            Arguments arguments = ArgumentsOf({});
            EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);
            EXPECT_NE(::GetModuleHandleW(L"OrmFuncQel4.dll"), nullptr);
        });
        host.reset();
        EXPECT_EQ(::GetModuleHandleW(L"OrmFuncQel4.dll"), nullptr) << "turn " << turn;
    }
}

TEST(Threads, EightApartmentsGetTheirOwnValues) {
    std::vector<double> expected;
    for (int i = 0; i < 8; ++i) {
        LedgerCall call;
        call.from = 45292 + 31 * i;
        expected.push_back(ValueInProcess(call));
    }
    ASSERT_NE(expected.front(), expected.back());
    std::vector<int> wrong(expected.size(), 0);
    std::vector<std::unique_ptr<HostThread>> threads;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        threads.push_back(std::make_unique<HostThread>([&, i] {
            const Apartment apartment;
            const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
            LedgerCall call;
            call.from = 45292 + 31 * static_cast<double>(i);
            for (int turn = 0; turn < 500; ++turn) {
                call.cubeName =
                    turn % 50 == 0 ? "LedgerHebrewFNC" : "LedgerFNC"; // reopens the connection now and then
                Arguments arguments = ArgumentsOf(call);
                const double value = ValueThroughCom(object.Get(), arguments);
                wrong[i] += call.cubeName == "LedgerFNC" && value != expected[i];
            }
        }));
    }
    threads.clear();
    EXPECT_EQ(wrong, std::vector<int>(expected.size(), 0));
}

} // namespace
} // namespace qel::test
