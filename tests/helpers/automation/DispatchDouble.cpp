#include "tests/helpers/automation/DispatchDouble.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/VariantConversion.h"

#include <algorithm>
#include <cwctype>
#include <memory>

namespace qel::test {

namespace {

HRESULT Fail(EXCEPINFO& details, HRESULT code, const std::string& description, const std::string& source) {
    details = {};
    details.scode = code;
    details.bstrDescription = windows::Bstr(description).Release();
    details.bstrSource = windows::Bstr(source).Release();
    return DISP_E_EXCEPTION;
}

DispatchDouble::Handler WithoutResult(std::function<void(const Inputs& inputs)> work) {
    return [work = std::move(work)](const Inputs& inputs) {
        work(inputs);
        return OwnedVariant();
    };
}

std::wstring Folded(std::wstring name) {
    std::transform(name.begin(), name.end(), name.begin(), [](wchar_t c) { return std::towlower(c); });
    return name;
}

} // namespace

std::string TextAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::string>();
}

std::int32_t NumberAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::int32_t>();
}

void DispatchDouble::Define(const std::wstring& name, Handler handler, WORD kinds) {
    const auto id = static_cast<DISPID>(ids_.size()) + 100;
    ids_[Folded(name)] = id;
    handlers_[id] = {std::move(handler), kinds};
}

void DispatchDouble::Value(const std::wstring& name, const Variant& value) {
    Define(
        name, [value](const Inputs&) { return windows::ToAutomation(value); }, DISPATCH_PROPERTYGET);
}

void DispatchDouble::Property(const std::wstring& name, std::function<Variant()> value) {
    Define(
        name, [value = std::move(value)](const Inputs&) { return windows::ToAutomation(value()); },
        DISPATCH_PROPERTYGET);
}

void DispatchDouble::Method(const std::wstring& name, std::function<void(const Inputs& inputs)> work) {
    Define(name, WithoutResult(std::move(work)), DISPATCH_METHOD);
}

void DispatchDouble::Put(const std::wstring& name, std::function<void(const Inputs& inputs)> work) {
    Define(name, WithoutResult(std::move(work)), DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
}

void DispatchDouble::Child(const std::wstring& name, Maker make) {
    Define(
        name, [make = std::move(make)](const Inputs&) { return ObjectValue(make()); }, DISPATCH_PROPERTYGET);
}

void* DispatchDouble::Find(REFIID id) {
    return id == IID_IUnknown || id == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
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

STDMETHODIMP DispatchDouble::Invoke(DISPID id, REFIID /*reserved*/, LCID locale, WORD flags,
                                    DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* details,
                                    UINT* /*wrongArgument*/) {
    if (locale != locale_) {
        return TYPE_E_INVDATAREAD; // "Old format or invalid type library"
    }
    const auto member = handlers_.find(id);
    if (member == handlers_.end() || (flags & member->second.kinds) == 0) {
        return DISP_E_MEMBERNOTFOUND;
    }
    Inputs ordered;
    for (UINT i = arguments->cArgs; i > 0; --i) {
        ordered.push_back(&windows::Dereferenced(arguments->rgvarg[i - 1]));
    }
    try {
        OwnedVariant value = member->second.handler(ordered);
        if (result != nullptr) {
            *result = value.Release();
        }
        return S_OK;
    } catch (const ScriptedFailure& failure) {
        return Fail(*details, failure.code, failure.description, failure.source);
    } catch (const AutomationError& error) {
        return Fail(*details, windows::ResultOfNumber(error.Number()), error.Description(), error.Source());
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

ComPointer<IDispatch> MakeObject(const std::function<void(DispatchDouble& object)>& define) {
    auto object = MakeDouble();
    define(*object.Get());
    return ComPointer<IDispatch>::Adopt(object.Release());
}

ComPointer<IDispatch> MakeCollection(std::int32_t count,
                                     std::function<ComPointer<IDispatch>(const Variant& key)> item) {
    return MakeObject([&](DispatchDouble& collection) {
        collection.Value(L"Count", count);
        collection.Define(L"Item", [item](const Inputs& inputs) {
            return ObjectValue(item(windows::FromAutomation(*inputs.at(0))));
        });
    });
}

} // namespace qel::test
