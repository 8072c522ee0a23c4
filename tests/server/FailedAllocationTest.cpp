#include "tests/helpers/FailEach.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/SheetObject.h"
#include "tests/platform/settings/windows/SuiteKey.h"
#include "tests/server/LedgerCall.h"
#include "text/Utf8Path.h"

#include <cstdlib>

// Every allocation of the DLL's own fails once during a call. Those of the system's (texts, arrays, windows)
// do not.

namespace qel::test {
namespace {

template <class Function>
Function Exported(const char* name) {
    static const HMODULE server = ::LoadLibraryW(L"failing_server.dll");
    EXPECT_NE(server, nullptr);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(server, name)));
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t number) {
    Exported<void (*)(std::size_t)>("FailAllocation")(number);
}
FailingAllocation::~FailingAllocation() { Exported<void (*)()>("EndFailing")(); }
bool FailingAllocation::HasFailed() { return Exported<bool (*)()>("HasAllocationFailed")(); }
std::size_t LivingAllocations() { return Exported<std::size_t (*)()>("CountLivingAllocations")(); }

namespace {

/// Closes each window that the thread shows, once it waits for a person.
class Closer {
public:
    Closer() : timer_(::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, CloseAll)) {}
    ~Closer() { ::KillTimer(nullptr, timer_); }
    Closer(const Closer&) = delete;
    Closer& operator=(const Closer&) = delete;

private:
    static void CALLBACK CloseAll(HWND /*window*/, UINT /*message*/, UINT_PTR /*timer*/, DWORD /*time*/) {
        ::EnumThreadWindows(::GetCurrentThreadId(), CloseOne, 0);
    }
    static BOOL CALLBACK CloseOne(HWND window, LPARAM /*unused*/) {
        return ::IsWindowVisible(window) == 0 || ::IsWindowEnabled(window) == 0 ||
               ::PostMessageW(window, WM_CLOSE, 0, 0);
    }

    UINT_PTR timer_;
};

class FailedAllocation : public testing::Test {
protected:
    FailedAllocation() {
        EXPECT_EQ(::CLSIDFromProgID(L"OrmFunctionQel4.OrmQelFunction", &classId_), S_OK);
        key_.SetText(L"MDBPath", PathToUtf8(folder_.Path("")));
        folder_.Write("Cub.ini", "[FileCube]\r\nF=" QEL_TEST_CUBE "\r\n");
    }

    /// A new object and one call.
    Outcome Call(const wchar_t* member, Arguments& arguments, std::size_t failing) const {
        Outcome outcome;
        const FailingAllocation failure(failing);
        ComPointer<IClassFactory> factory;
        ComPointer<IDispatch> object;
        HRESULT status = make_(classId_, IID_IClassFactory, reinterpret_cast<void**>(factory.Receive()));
        if (SUCCEEDED(status)) {
            status =
                factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object.Receive()));
        }
        CallResult result;
        if (SUCCEEDED(status)) {
            result = Invoke(object.Get(), member, arguments);
            status = result.status;
        }
        outcome.hasFailed = failing != 0 && FailingAllocation::HasFailed();
        if (FAILED(status)) {
            outcome.shown = "failed";
        } else if (SUCCEEDED(::VariantChangeType(&result.value.Get(), &result.value.Get(), 0, VT_BSTR))) {
            outcome.shown = TextIn(result.value);
        }
        return outcome;
    }

    const Apartment apartment_;
    const TemporaryFolder folder_;
    const SuiteKey key_;
    CLSID classId_ = {};
    HRESULT(STDAPICALLTYPE* make_)
    (REFCLSID, REFIID, void**) = Exported<decltype(make_)>("DllGetClassObject");
};

TEST_F(FailedAllocation, FailsAValueOrShows0) {
    Arguments arguments = ArgumentsOf({});
    EXPECT_EQ(Call(L"QeLF1", arguments, 0).shown, "-1826089.27");
    FailEach([&](std::size_t failing) { return Call(L"QeLF1", arguments, failing); }, {"failed", "0"});
}

TEST_F(FailedAllocation, FailsANameOrShowsADash) {
    const auto call = [&](std::size_t failing) {
        Arguments arguments;
        for (const char* text : {QEL_TEST_CUBE, "LedgerFNC", "SuperSum1", "1"}) {
            arguments.push_back(Text(text));
        }
        return Call(L"RetQelName", arguments, failing);
    };
    EXPECT_EQ(call(0).shown, "Fixed assets");
    FailEach(call, {"failed", "-"});
}

/// The wizards load the remembered cube, and list its members. The store's table of opened keys only grows.
/// An opening has thousands of allocations and takes half a second: QEL_EVERY_ALLOCATION tries all of them.
TEST_F(FailedAllocation, EndsNoWizard) {
    const std::size_t step = std::getenv("QEL_EVERY_ALLOCATION") != nullptr ? 1 : 199;
    constexpr std::size_t ofOpenedKeys = 3;
    const SheetObject sheet;
    const Closer closer;
    for (const wchar_t* wizard : {L"ShowFormGetVal", L"ShowFormQelName"}) {
        FailEach(
            [&](std::size_t failing) {
                Arguments arguments(1);
                V_VT(&arguments[0].Get()) = VT_DISPATCH;
                V_DISPATCH(&arguments[0].Get()) = sheet.Cell(1, 1).Release();
                return Call(wizard, arguments, failing);
            },
            {"failed", ""}, ofOpenedKeys, step);
    }
}

} // namespace
} // namespace qel::test
