#pragma once

#include "platform/windows/WideText.h"
#include "server/dispatch/FailureReport.h"
#include "server/dispatch/LateBoundCall.h"

#include <atomic>

namespace qel::server {

/// What every automation object has: its reference count, IDispatch over its type information, and the
/// interfaces by which a caller learns its class and that its errors are described.
template <class Interface>
class AutomationObject : public Interface, public ISupportErrorInfo, public IProvideClassInfo {
public:
    AutomationObject(const ClassTypes& types, const Locale& locale) : types_(types), locale_(locale) {}
    virtual ~AutomationObject() = default;
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (id == IID_IUnknown || id == IID_IDispatch || id == types_.Class().interfaceId) {
            *object = static_cast<Interface*>(this);
        } else if (id == IID_ISupportErrorInfo) {
            *object = static_cast<ISupportErrorInfo*>(this);
        } else if (id == IID_IProvideClassInfo) {
            *object = static_cast<IProvideClassInfo*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this; // NOLINT(cppcoreguidelines-owning-memory): a COM object is its references'
        }
        return left;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 1;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) override {
        *info = nullptr;
        if (index != 0) {
            return DISP_E_BADINDEX;
        }
        *info = windows::ComPointer<ITypeInfo>(types_.Interface()).Release();
        return S_OK;
    }
    STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                               DISPID* ids) override {
        return FindNames(types_, names, count, ids);
    }
    STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* details, UINT* wrongArgument) override {
        return CallLateBound(types_, static_cast<Interface*>(this), locale_, id, flags, arguments, result,
                             details, wrongArgument);
    }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override {
        return id == types_.Class().interfaceId ? S_OK : S_FALSE;
    }
    STDMETHODIMP GetClassInfo(ITypeInfo** info) override {
        *info = windows::ComPointer<ITypeInfo>(types_.CoClass()).Release();
        return S_OK;
    }

protected:
    template <class Work>
    HRESULT Guard(const Work& work) const noexcept {
        return Guarded(types_.Class().interfaceId, source_, work);
    }
    const Locale& UserLocale() const { return locale_; }

private:
    const ClassTypes& types_;
    const Locale locale_;
    std::string source_ = windows::ToUtf8(types_.Class().progId);
    std::atomic<ULONG> references_{1};
};

} // namespace qel::server
