#include "platform/windows/VariantConversion.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/SheetObject.h"

#include <limits>

namespace qel::windows {

namespace {

[[noreturn]] void RaiseTypeMismatch() { throw PlatformError(ErrorNumber::TypeMismatch); }

Variant FromMagnitude(std::uint64_t magnitude, bool negative) {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    if (magnitude > largest) {
        return Decimal{.high = 0, .low = magnitude, .scale = 0, .negative = negative};
    }
    const auto number = static_cast<std::int32_t>(magnitude);
    return negative ? -number : number;
}

Variant FromInteger(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    return FromMagnitude(number < 0 ? 0 - bits : bits, number < 0);
}

Variant FromDecimal(const DECIMAL& decimal) {
    return Decimal{.high = decimal.Hi32,
                   .low = decimal.Lo64,
                   .scale = decimal.scale,
                   .negative = (decimal.sign & DECIMAL_NEG) != 0};
}

Variant FromUnknown(IUnknown* object) {
    const auto dispatch = ComPointer<IUnknown>(object).As<IDispatch>(IID_IDispatch);
    return ObjectFrom(dispatch.Get());
}

Variant FromScalar(const VARIANT& value) {
    switch (V_VT(&value)) {
    case VT_EMPTY:
        return Empty{};
    case VT_NULL:
        return Null{};
    case VT_UI1:
        return V_UI1(&value);
    case VT_I1:
        return static_cast<std::int16_t>(V_I1(&value));
    case VT_I2:
        return V_I2(&value);
    case VT_UI2:
        return std::int32_t{V_UI2(&value)};
    case VT_I4:
    case VT_INT:
        return static_cast<std::int32_t>(V_I4(&value));
    case VT_UI4:
    case VT_UINT:
        return FromMagnitude(V_UI4(&value), false);
    case VT_I8:
        return FromInteger(V_I8(&value));
    case VT_UI8:
        return FromMagnitude(V_UI8(&value), false);
    case VT_R4:
        return V_R4(&value);
    case VT_R8:
        return V_R8(&value);
    case VT_CY:
        return Currency{V_CY(&value).int64};
    case VT_DECIMAL:
        return FromDecimal(V_DECIMAL(&value));
    case VT_DATE:
        return AutomationDate{V_DATE(&value)};
    case VT_BSTR:
        return TextOfBstr(V_BSTR(&value));
    case VT_BOOL:
        return V_BOOL(&value) != VARIANT_FALSE;
    case VT_ERROR:
        return ErrorValue{static_cast<std::int32_t>(V_ERROR(&value))};
    case VT_DISPATCH:
        return ObjectFrom(V_DISPATCH(&value));
    case VT_UNKNOWN:
        return FromUnknown(V_UNKNOWN(&value));
    default:
        RaiseTypeMismatch();
    }
}

/// Writes a value into an empty automation value.
struct WriteTo {
    VARIANT& target;

    void operator()(const Empty&) const {}
    void operator()(const Null&) const { V_VT(&target) = VT_NULL; }
    void operator()(std::uint8_t number) const { Set(VT_UI1, V_UI1(&target), number); }
    void operator()(std::int16_t number) const { Set(VT_I2, V_I2(&target), number); }
    void operator()(std::int32_t number) const { Set(VT_I4, V_I4(&target), number); }
    void operator()(float number) const { Set(VT_R4, V_R4(&target), number); }
    void operator()(double number) const { Set(VT_R8, V_R8(&target), number); }
    void operator()(const Currency& amount) const { Set(VT_CY, V_CY(&target).int64, amount.scaled); }
    void operator()(const Decimal& number) const {
        DECIMAL& decimal = V_DECIMAL(&target);
        decimal.Hi32 = number.high;
        decimal.Lo64 = number.low;
        decimal.scale = number.scale;
        decimal.sign = number.negative ? DECIMAL_NEG : 0;
        V_VT(&target) = VT_DECIMAL; // the type is stored in the decimal's reserved bytes
    }
    void operator()(const AutomationDate& date) const { Set(VT_DATE, V_DATE(&target), date.days); }
    void operator()(const std::string& text) const { Set(VT_BSTR, V_BSTR(&target), Bstr(text).Release()); }
    void operator()(bool value) const { Set(VT_BOOL, V_BOOL(&target), value ? VARIANT_TRUE : VARIANT_FALSE); }
    void operator()(const ErrorValue& error) const { Set(VT_ERROR, V_ERROR(&target), error.code); }
    [[noreturn]] void operator()(const std::shared_ptr<const Object>&) const { RaiseTypeMismatch(); }
    [[noreturn]] void operator()(const std::shared_ptr<const VariantArray>&) const { RaiseTypeMismatch(); }

private:
    template <class Field, class T>
    void Set(VARTYPE type, Field& field, T value) const {
        field = static_cast<Field>(value);
        V_VT(&target) = type;
    }
};

} // namespace

const VARIANT& Dereferenced(const VARIANT& value) {
    const VARIANT* target = &value;
    while (V_VT(target) == (VT_BYREF | VT_VARIANT)) {
        target = V_VARIANTREF(target);
    }
    return *target;
}

VARIANT& Dereferenced(VARIANT& value) {
    return const_cast<VARIANT&>(Dereferenced(static_cast<const VARIANT&>(value)));
}

Variant FromAutomation(const VARIANT& value) {
    const VARIANT& target = Dereferenced(value);
    const auto type = static_cast<VARTYPE>(V_VT(&target) & ~VT_BYREF);
    const bool isReference = V_ISBYREF(&target);
    if ((type & VT_ARRAY) != 0) {
        SAFEARRAY* const array = isReference ? *V_ARRAYREF(&target) : V_ARRAY(&target);
        return ArrayFrom(array, static_cast<VARTYPE>(type & VT_TYPEMASK));
    }
    if (!isReference) {
        return FromScalar(target);
    }
    OwnedVariant copy;
    if (FAILED(::VariantCopyInd(copy.Receive(), const_cast<VARIANT*>(&target)))) {
        RaiseTypeMismatch();
    }
    return FromScalar(copy.Get());
}

OwnedVariant ToAutomation(const Variant& value) {
    OwnedVariant result;
    std::visit(WriteTo{result.Get()}, value.Get());
    return result;
}

} // namespace qel::windows
