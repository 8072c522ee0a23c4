#include "server/dispatch/CallFrame.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace qel::server {

using windows::Dereferenced;
using windows::DispatchObject;
using windows::OwnedVariant;

namespace {

bool IsMissing(const VARIANT* argument) {
    return argument == nullptr || (V_VT(argument) == VT_ERROR && V_ERROR(argument) == DISP_E_PARAMNOTFOUND);
}

IDispatch* ObjectIn(const VARIANT& value) {
    if (V_VT(&value) == VT_DISPATCH) {
        return V_DISPATCH(&value);
    }
    return V_VT(&value) == (VT_BYREF | VT_DISPATCH) ? *V_DISPATCHREF(&value) : nullptr;
}

/// The value of a scalar argument: a cell stands for its value.
Variant ScalarOf(const VARIANT& argument) {
    IDispatch* const object = ObjectIn(argument);
    if (object == nullptr) {
        return windows::FromAutomation(argument);
    }
    const DispatchObject cell(windows::ComPointer<IDispatch>(object), "The object", windows::macroLocale);
    return windows::FromAutomation(cell.SpecialProperty(DISPID_VALUE).Get());
}

std::int16_t ToInteger(const Variant& value, const Locale& locale) {
    const double number = std::nearbyint(ToDouble(value, locale)); // rounds half to even, like the platform
    if (number < std::numeric_limits<std::int16_t>::min() ||
        number > std::numeric_limits<std::int16_t>::max()) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    return static_cast<std::int16_t>(number);
}

OwnedVariant ObjectArgument(const VARIANT& argument) {
    OwnedVariant value;
    if (FAILED(::VariantChangeType(value.Receive(), const_cast<VARIANT*>(&argument), 0, VT_DISPATCH))) {
        throw PlatformError(ErrorNumber::TypeMismatch);
    }
    return value;
}

OwnedVariant DefaultOf(VARTYPE type) {
    OwnedVariant value;
    if (type == VT_BSTR) {
        return windows::ToAutomation(std::string());
    }
    V_VT(&value.Get()) = type; // all bits zero: a zero, an empty date or a null object
    V_I8(&value.Get()) = 0;
    return value;
}

OwnedVariant Converted(VARTYPE type, const VARIANT& argument, const Locale& locale) {
    switch (type) {
    case VT_BSTR:
        return windows::ToAutomation(ToText(ScalarOf(argument), locale));
    case VT_DATE:
        return windows::ToAutomation(ToDate(ScalarOf(argument), locale));
    case VT_I2:
        return windows::ToAutomation(ToInteger(ScalarOf(argument), locale));
    case VT_DISPATCH:
        return ObjectArgument(argument);
    default:
        throw PlatformError(ErrorNumber::TypeMismatch);
    }
}

/// The value passed to a member instead of the caller's variant: the missing-argument error, or a copy of an
/// array passed by value, because a member may change elements. Empty when the caller's variant can be passed
/// itself.
OwnedVariant Untouchable(const VARIANT* argument, bool isReference) {
    OwnedVariant value;
    if (argument == nullptr) {
        V_VT(&value.Get()) = VT_ERROR;
        V_ERROR(&value.Get()) = DISP_E_PARAMNOTFOUND;
    } else if (V_ISARRAY(argument) && !isReference) {
        windows::Check(::VariantCopy(value.Receive(), const_cast<VARIANT*>(argument)),
                       "The array cannot be copied");
    }
    return value;
}

/// The address of a variant's value.
void* ValueIn(VARIANT& value) { return &V_UI1(&value); }

} // namespace

HRESULT CallFrame::Bind(const DISPPARAMS& arguments, UINT& wrongArgument) {
    if (arguments.cArgs > slots_.size()) {
        return DISP_E_BADPARAMCOUNT;
    }
    for (UINT i = 0; i < arguments.cArgs;
         ++i) { // named arguments come first, then the others in reverse order
        const bool isNamed = i < arguments.cNamedArgs;
        const DISPID name = isNamed ? arguments.rgdispidNamedArgs[i] : 0;
        const std::size_t last = slots_.size() - 1;
        std::size_t parameter = arguments.cArgs - 1 - i;
        if (isNamed) {
            parameter = name == DISPID_PROPERTYPUT ? last : static_cast<std::size_t>(name);
        }
        wrongArgument = i;
        if (const HRESULT status = Place(parameter, arguments.rgvarg[i]); FAILED(status)) {
            return status;
        }
    }
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].argument == nullptr && !member_.parameters[i].isOptional) {
            return arguments.cNamedArgs == 0 ? DISP_E_BADPARAMCOUNT : DISP_E_PARAMNOTOPTIONAL;
        }
    }
    return S_OK;
}

HRESULT CallFrame::Place(std::size_t parameter, VARIANT& argument) {
    if (parameter >= slots_.size() || slots_[parameter].argument != nullptr) {
        return DISP_E_PARAMNOTFOUND;
    }
    Slot& slot = slots_[parameter];
    slot.isReference = V_ISBYREF(&argument);
    slot.argument = &Dereferenced(argument);
    return S_OK;
}

void CallFrame::Convert(const Locale& locale) {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const ParameterDescription& parameter = member_.parameters[i];
        try {
            ConvertSlot(parameter, slots_[i], locale);
        } catch (const AutomationError& error) {
            throw AutomationError(error.Number(), fmt::format("{} (argument {}, {})", error.Description(),
                                                              i + 1, parameter.name));
        }
    }
}

void CallFrame::ConvertSlot(const ParameterDescription& parameter, Slot& slot, const Locale& locale) const {
    if (parameter.type == VT_VARIANT) {
        slot.value = Untouchable(slot.argument, slot.isReference);
        return;
    }
    slot.value = IsMissing(slot.argument) ? DefaultOf(parameter.type)
                                          : Converted(parameter.type, *slot.argument, locale);
    if (parameter.type == VT_BSTR && parameter.isReference) {
        slot.textBefore = windows::TextOfBstr(V_BSTR(&slot.value.Get()));
    }
}

VARIANT CallFrame::PassedValue(const ParameterDescription& parameter, Slot& slot) {
    VARIANT* const own = &slot.value.Get();
    if (parameter.type != VT_VARIANT && !parameter.isReference) {
        return *own;
    }
    VARIANT passed = {};
    V_VT(&passed) = static_cast<VARTYPE>(VT_BYREF | parameter.type);
    if (parameter.type == VT_VARIANT) {
        V_VARIANTREF(&passed) = V_VT(own) == VT_EMPTY && slot.argument != nullptr ? slot.argument : own;
    } else {
        V_BYREF(&passed) = ValueIn(*own);
    }
    return passed;
}

HRESULT CallFrame::Call(IDispatch* object) {
    std::vector<VARIANT> values;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        values.push_back(PassedValue(member_.parameters[i], slots_[i]));
    }
    if (member_.result) {
        VARIANT place = {};
        V_VT(&place) = static_cast<VARTYPE>(VT_BYREF | *member_.result);
        V_BYREF(&place) = *member_.result == VT_VARIANT ? &result_.Get() : ValueIn(result_.Get());
        values.push_back(place);
    }
    std::vector<VARTYPE> types;
    std::vector<VARIANT*> pointers;
    for (VARIANT& value : values) {
        types.push_back(V_VT(&value));
        pointers.push_back(&value);
    }
    VARIANT returned = {};
    const HRESULT status =
        ::DispCallFunc(object, member_.tableOffset, CC_STDCALL, VT_ERROR, static_cast<UINT>(values.size()),
                       types.data(), pointers.data(), &returned);
    if (FAILED(status)) {
        return status;
    }
    if (SUCCEEDED(V_ERROR(&returned)) && member_.result && *member_.result != VT_VARIANT) {
        V_VT(&result_.Get()) = *member_.result;
    }
    return V_ERROR(&returned);
}

void CallFrame::WriteBack() {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const ParameterDescription& parameter = member_.parameters[i];
        Slot& slot = slots_[i];
        if (parameter.type != VT_BSTR || !parameter.isReference || !slot.isReference) {
            continue;
        }
        if (windows::TextOfBstr(V_BSTR(&slot.value.Get())) != slot.textBefore) {
            WriteText(*slot.argument, slot.value);
        }
    }
}

void CallFrame::WriteText(VARIANT& target, OwnedVariant& text) {
    if (V_VT(&target) == (VT_BYREF | VT_BSTR)) {
        std::swap(*V_BSTRREF(&target), V_BSTR(&text.Get()));
        return;
    }
    if (V_ISBYREF(&target)) {
        return; // a reference to another type cannot hold a text
    }
    ::VariantClear(&target);
    target = text.Release();
}

VARIANT CallFrame::ReleaseResult() { return result_.Release(); }

} // namespace qel::server
