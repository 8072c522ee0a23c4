#include "platform/windows/DispatchObject.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/UserLocale.h"
#include "platform/windows/VariantConversion.h"

#include <algorithm>

namespace qel::windows {

OwnedVariant ToArgument(std::string_view text) { return ToAutomation(std::string(text)); }

OwnedVariant ToArgument(std::int32_t number) { return ToAutomation(number); }

OwnedVariant MissingArgument() {
    OwnedVariant argument;
    V_VT(&argument.Get()) = VT_ERROR;
    V_ERROR(&argument.Get()) = DISP_E_PARAMNOTFOUND;
    return argument;
}

OwnedVariant ToArgument(const DispatchObject& object) {
    OwnedVariant argument;
    V_VT(&argument.Get()) = VT_DISPATCH;
    V_DISPATCH(&argument.Get()) = ComPointer<IDispatch>(object.Get()).Release();
    return argument;
}

DispatchObject::DispatchObject(ComPointer<IDispatch> object, std::string name, LCID locale)
    : object_(std::move(object)), name_(std::move(name)), locale_(locale) {
    if (!object_) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
}

DispatchObject DispatchObject::Create(const wchar_t* progId) {
    const std::string name = ToUtf8(progId);
    ::SetErrorInfo(0, nullptr);
    CLSID classId = {};
    Check(::CLSIDFromProgID(progId, &classId), name.c_str());
    ComPointer<IDispatch> object;
    Check(::CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveVoid()),
          name.c_str());
    return {std::move(object), name};
}

bool DispatchObject::Has(const wchar_t* member) const {
    DISPID id = DISPID_UNKNOWN;
    auto* name = const_cast<LPOLESTR>(member);
    return SUCCEEDED(object_->GetIDsOfNames(IID_NULL, &name, 1, locale_, &id));
}

OwnedVariant DispatchObject::Property(const wchar_t* member, CallArguments arguments) const {
    return Invoke(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD, std::move(arguments));
}

OwnedVariant DispatchObject::SpecialProperty(DISPID id) const {
    return Invoke(id, name_, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {});
}

std::string DispatchObject::Text(const wchar_t* member) const {
    return ToText(FromAutomation(Property(member).Get()), UserLocale());
}

std::int32_t DispatchObject::Number(const wchar_t* member) const {
    OwnedVariant number = Property(member);
    Check(::VariantChangeType(&number.Get(), &number.Get(), 0, VT_I4), Described(member).c_str());
    return static_cast<std::int32_t>(V_I4(&number.Get()));
}

DispatchObject DispatchObject::Child(const wchar_t* member, CallArguments arguments) const {
    const OwnedVariant child = Property(member, std::move(arguments));
    const VARIANT& value = Dereferenced(child.Get());
    if (V_VT(&value) != VT_DISPATCH) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return {ComPointer<IDispatch>(V_DISPATCH(&value)), Described(member), locale_};
}

void DispatchObject::Call(const wchar_t* member, CallArguments arguments) const {
    Invoke(member, DISPATCH_METHOD, std::move(arguments));
}

void DispatchObject::Put(const wchar_t* member, OwnedVariant value) const {
    const bool isObject = V_VT(&value.Get()) == VT_DISPATCH;
    CallArguments arguments;
    arguments.push_back(std::move(value));
    Invoke(member, isObject ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT, std::move(arguments));
}

OwnedVariant DispatchObject::Invoke(const wchar_t* member, WORD kind, CallArguments arguments) const {
    ::SetErrorInfo(0, nullptr);
    DISPID id = DISPID_UNKNOWN;
    auto* name = const_cast<LPOLESTR>(member);
    Check(object_->GetIDsOfNames(IID_NULL, &name, 1, locale_, &id), Described(member).c_str());
    return Invoke(id, Described(member), kind, std::move(arguments));
}

OwnedVariant DispatchObject::Invoke(DISPID id, const std::string& what, WORD kind,
                                    CallArguments arguments) const {
    ::SetErrorInfo(0, nullptr);
    std::vector<VARIANT> reversed; // views; the arguments keep ownership
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        reversed.push_back(argument->Get());
    }
    DISPID propertyPut = DISPID_PROPERTYPUT;
    const bool isPut = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters = {reversed.data(), isPut ? &propertyPut : nullptr,
                             static_cast<UINT>(reversed.size()), isPut ? 1U : 0U};
    OwnedVariant result;
    EXCEPINFO details = {};
    const HRESULT status = object_->Invoke(id, IID_NULL, locale_, kind, &parameters,
                                           isPut ? nullptr : result.Receive(), &details, nullptr);
    if (status == DISP_E_EXCEPTION) {
        throw FailureOf(details, what);
    }
    Check(status, what.c_str());
    return result;
}

std::string DispatchObject::Described(const wchar_t* member) const { return name_ + "." + ToUtf8(member); }

bool CanLoadClass(const wchar_t* progId) {
    CLSID classId = {};
    ComPointer<IUnknown> factory;
    return SUCCEEDED(::CLSIDFromProgID(progId, &classId)) &&
           SUCCEEDED(::CoGetClassObject(classId, CLSCTX_INPROC_SERVER, nullptr, IID_IUnknown,
                                        factory.ReceiveVoid()));
}

} // namespace qel::windows
