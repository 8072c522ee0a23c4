// The DLL's entry points.

#include "platform/windows/ProviderFailure.h"
#include "server/ClassFactory.h"
#include "server/Registration.h"
#include "server/dispatch/FailureReport.h"

#include <cwchar>
#include <memory>

using namespace qel::server;

namespace {

HRESULT Try(void (*work)(RegistrationScope), RegistrationScope scope) {
    return Guarded(IID_IUnknown, "OrmFuncQel4", [&] { work(scope); });
}

} // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, LPVOID* object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    for (const ServerClass& serverClass : ServerClasses()) {
        if (serverClass.automation.classId != classId) {
            continue;
        }
        return Guarded(IID_IClassFactory, "OrmFuncQel4", [&] {
            const auto factory = qel::windows::ComPointer<ClassFactory>::Adopt(
                std::make_unique<ClassFactory>(serverClass).release());
            qel::windows::Check(factory->QueryInterface(id, object),
                                "The class factory has no such interface");
        });
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return IsServerInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return Try(Register, RegistrationScope::Machine); }

STDAPI DllUnregisterServer() { return Try(Unregister, RegistrationScope::Machine); }

/// "regsvr32 /n /i:user" registers for the user alone, which needs no administrator.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
    const bool forUser = commandLine != nullptr && _wcsicmp(commandLine, L"user") == 0;
    return Try(install != FALSE ? Register : Unregister,
               forUser ? RegistrationScope::User : RegistrationScope::Machine);
}
