#pragma once

#include "tests/helpers/automation/AutomationClient.h"

#include <functional>
#include <map>
#include <string>

namespace qel::test {

/// A failure that a double reports as its own.
struct ScriptedFailure {
    HRESULT code = E_FAIL;
    std::string description, source;
};

/// An automation object whose members are functions of a test.
class DispatchDouble : public IDispatch {
public:
    /// Gets the arguments in the order of a macro; raises ScriptedFailure.
    using Handler = std::function<OwnedVariant(const std::vector<const VARIANT*>& arguments)>;

    virtual ~DispatchDouble() = default;

    void Define(const std::wstring& name, Handler handler);
    void DefineNumber(DISPID id, Handler handler) { handlers_[id] = std::move(handler); }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                               DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* details, UINT* wrongArgument) override;

private:
    std::map<std::wstring, DISPID> ids_;
    std::map<DISPID, Handler> handlers_;
    ULONG references_ = 1;
};

OwnedVariant ObjectValue(ComPointer<IDispatch> object);
ComPointer<DispatchDouble> MakeDouble();

} // namespace qel::test
