#include "server/ClassFactory.h"

#include "server/dispatch/FailureReport.h"

namespace qel::server {

STDMETHODIMP ClassFactory::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IClassFactory) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) ClassFactory::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        delete this; // NOLINT(cppcoreguidelines-owning-memory): a COM object is its references'
    }
    return left;
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
    const HRESULT made = Guarded(IID_IClassFactory, "OrmFuncQel4", [&] {
        const auto instance = class_.create(TypesOf(class_));
        found = instance->QueryInterface(id, object);
    });
    return FAILED(made) ? made : found;
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
    server::LockServer(lock != FALSE);
    return S_OK;
}

} // namespace qel::server
