#pragma once

#include "platform/windows/ComObject.h"
#include "platform/windows/WideText.h"
#include "server/dispatch/FailureReport.h"
#include "server/dispatch/LateBoundCall.h"

namespace qel::server {

/// An automation object: IDispatch over its type information, and the interfaces that tell a caller its class
/// and that its errors have descriptions.
template <class Interface>
class AutomationObject : public windows::ComObject<Interface, ISupportErrorInfo, IProvideClassInfo> {
public:
    AutomationObject(const ClassTypes& types, const Locale& locale) : types_(types), locale_(locale) {}

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) override {
        if (index == 0) {
            return GiveType(types_.Interface(), info);
        }
        return GiveType(nullptr, info) == S_OK ? DISP_E_BADINDEX : E_POINTER;
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
    STDMETHODIMP GetClassInfo(ITypeInfo** info) override { return GiveType(types_.CoClass(), info); }

protected:
    void* Find(REFIID id) override {
        if (id == IID_IUnknown || id == IID_IDispatch || id == types_.Class().interfaceId) {
            return static_cast<Interface*>(this);
        }
        if (id == IID_ISupportErrorInfo) {
            return static_cast<ISupportErrorInfo*>(this);
        }
        return id == IID_IProvideClassInfo ? static_cast<IProvideClassInfo*>(this) : nullptr;
    }

    template <class Work>
    HRESULT Guard(const Work& work) const noexcept {
        return Guarded(types_.Class().interfaceId, source_, work);
    }
    const Locale& UserLocale() const { return locale_; }

private:
    static HRESULT GiveType(ITypeInfo* type, ITypeInfo** info) {
        if (info == nullptr) {
            return E_POINTER;
        }
        *info = windows::ComPointer<ITypeInfo>(type).Release();
        return S_OK;
    }

    const ClassTypes& types_;
    const Locale locale_;
    std::string source_ = windows::ToUtf8(types_.Class().progId);
};

} // namespace qel::server
