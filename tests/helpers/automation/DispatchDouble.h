#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/ComObject.h"
#include "tests/helpers/automation/AutomationClient.h"

#include <functional>
#include <map>
#include <string>

namespace qel::test {

/// A failure reported by a double.
struct ScriptedFailure {
    HRESULT code = E_FAIL;
    std::string description, source;
};

/// A call's arguments in the order of a macro.
using Inputs = std::vector<const VARIANT*>;

std::string TextAt(const Inputs& inputs, std::size_t index);
std::int32_t NumberAt(const Inputs& inputs, std::size_t index);

/// An automation object whose members are functions of a test. They fail with ScriptedFailure, or with
/// AutomationError, which is numbered as the machine's objects number theirs.
class DispatchDouble : public windows::ComObject<IDispatch> {
public:
    using Handler = std::function<OwnedVariant(const Inputs& inputs)>;
    using Maker = std::function<ComPointer<IDispatch>()>;

    /// Refuses calls in other locales, as an English spreadsheet does under other regional settings.
    void RequireLocale(LCID locale) { locale_ = locale; }
    /// `kinds` are those of which a call must have one.
    void Define(const std::wstring& name, Handler handler,
                WORD kinds = DISPATCH_PROPERTYGET | DISPATCH_METHOD);
    void DefineNumber(DISPID id, Handler handler) {
        handlers_[id] = {std::move(handler), DISPATCH_PROPERTYGET};
    }
    void Value(const std::wstring& name, const Variant& value);
    /// Computed on every reading.
    void Property(const std::wstring& name, std::function<Variant()> value);
    /// Without a result.
    void Method(const std::wstring& name, std::function<void(const Inputs& inputs)> work);
    /// Set, not read.
    void Put(const std::wstring& name, std::function<void(const Inputs& inputs)> work);
    void Child(const std::wstring& name, Maker make);

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                               DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* details, UINT* wrongArgument) override;

private:
    void* Find(REFIID id) override;

    std::map<std::wstring, DISPID> ids_;
    struct Member {
        Handler handler;
        WORD kinds;
    };
    std::map<DISPID, Member> handlers_;
    LCID locale_ = LOCALE_USER_DEFAULT;
};

OwnedVariant ObjectValue(ComPointer<IDispatch> object);
ComPointer<DispatchDouble> MakeDouble();
/// A double with the members that `define` gives it.
ComPointer<IDispatch> MakeObject(const std::function<void(DispatchDouble& object)>& define);
/// A collection with Count and Item, whose key is a number or a name.
ComPointer<IDispatch> MakeCollection(std::int32_t count,
                                     std::function<ComPointer<IDispatch>(const Variant& key)> item);

} // namespace qel::test
