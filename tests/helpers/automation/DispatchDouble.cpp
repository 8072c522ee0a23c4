#include "tests/helpers/automation/DispatchDouble.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/VariantConversion.h"

#include <algorithm>
#include <cwctype>
#include <memory>

namespace qel::test {

namespace {

std::wstring Folded(std::wstring name) {
    std::transform(name.begin(), name.end(), name.begin(), [](wchar_t c) { return std::towlower(c); });
    return name;
}

} // namespace

void DispatchDouble::Define(const std::wstring& name, Handler handler) {
    const auto id = static_cast<DISPID>(ids_.size()) + 100;
    ids_[Folded(name)] = id;
    handlers_[id] = std::move(handler);
}

STDMETHODIMP DispatchDouble::QueryInterface(REFIID id, void** object) {
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) DispatchDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        delete this; // NOLINT(cppcoreguidelines-owning-memory): a COM object is its references'
    }
    return left;
}

STDMETHODIMP DispatchDouble::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

STDMETHODIMP DispatchDouble::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    *info = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP DispatchDouble::GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT /*count*/,
                                           LCID /*locale*/, DISPID* ids) {
    const auto found = ids_.find(Folded(names[0]));
    ids[0] = found != ids_.end() ? found->second : DISPID_UNKNOWN;
    return found != ids_.end() ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP DispatchDouble::Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD /*flags*/,
                                    DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* details,
                                    UINT* /*wrongArgument*/) {
    const auto handler = handlers_.find(id);
    if (handler == handlers_.end()) {
        return DISP_E_MEMBERNOTFOUND;
    }
    std::vector<const VARIANT*> ordered;
    for (UINT i = arguments->cArgs; i > 0; --i) {
        ordered.push_back(&windows::Dereferenced(arguments->rgvarg[i - 1]));
    }
    try {
        OwnedVariant value = handler->second(ordered);
        if (result != nullptr) {
            *result = value.Release();
        }
        return S_OK;
    } catch (const ScriptedFailure& failure) {
        *details = {};
        details->scode = failure.code;
        details->bstrDescription = windows::Bstr(failure.description).Release();
        details->bstrSource = windows::Bstr(failure.source).Release();
        return DISP_E_EXCEPTION;
    }
}

OwnedVariant ObjectValue(ComPointer<IDispatch> object) {
    OwnedVariant value;
    V_VT(&value.Get()) = VT_DISPATCH;
    V_DISPATCH(&value.Get()) = object.Release();
    return value;
}

ComPointer<DispatchDouble> MakeDouble() {
    return ComPointer<DispatchDouble>::Adopt(std::make_unique<DispatchDouble>().release());
}

} // namespace qel::test
