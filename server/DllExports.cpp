// The DLL's entry points.

#include "server/ClassFactory.h"
#include "server/Classes.h"
#include "server/Registration.h"
#include "server/dispatch/FailureReport.h"

#include <cwchar>
#include <memory>

using namespace qel::server;

namespace {

HRESULT Try(void (*work)(RegistrationScope), RegistrationScope scope) {
    return Guarded(IID_IUnknown, "OrmFuncQel4", [&] { work(scope); });
}

/// Makes objects of the class; null for a class of another server.
ClassFactory::Maker MakerOf(REFCLSID classId) {
    if (classId == ClassOfRibbon().classId) {
        return ClassOfRibbon().create;
    }
    for (const ServerClass& serverClass : ServerClasses()) {
        if (serverClass.automation.classId == classId) {
            return [&serverClass] { return serverClass.create(TypesOf(serverClass)); };
        }
    }
    return nullptr;
}

} // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, LPVOID* object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    HRESULT found = CLASS_E_CLASSNOTAVAILABLE;
    const HRESULT made = Guarded(IID_IClassFactory, "OrmFuncQel4", [&] {
        if (auto maker = MakerOf(classId)) {
            const auto factory = qel::windows::ComPointer<ClassFactory>::Adopt(
                std::make_unique<ClassFactory>(std::move(maker)).release());
            found = factory->QueryInterface(id, object);
        }
    });
    return FAILED(made) ? made : found;
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
