#include "server/ClassFactory.h"

#include "server/dispatch/FailureReport.h"

namespace qel::server {

void* ClassFactory::Find(REFIID id) {
    return id == IID_IUnknown || id == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID id, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
        return CLASS_E_NOAGGREGATION;
    }
    HRESULT found = E_NOINTERFACE;
    const HRESULT made =
        Guarded(IID_IClassFactory, "OrmFuncQel4", [&] { found = make_()->QueryInterface(id, object); });
    return FAILED(made) ? made : found;
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
    server::LockServer(lock != FALSE);
    return S_OK;
}

} // namespace qel::server
