#include "platform/value/Conversion.h"

#include "platform/value/AutomationError.h"
#include "platform/value/NumberText.h"

#include <cmath>
#include <type_traits>

namespace qel {

namespace {

constexpr int singleDigits = 7;
constexpr int doubleDigits = 15;
constexpr double currencyUnit = 10000;

[[noreturn]] void RaiseTypeMismatch() { throw PlatformError(ErrorNumber::TypeMismatch); }

struct TextOf {
    const Locale& locale;

    std::string operator()(const Empty&) const { return {}; }
    [[noreturn]] std::string operator()(const Null&) const {
        throw PlatformError(ErrorNumber::InvalidUseOfNull);
    }
    template <class T>
        requires std::is_integral_v<T>
    std::string operator()(T number) const {
        return std::to_string(number);
    }
    std::string operator()(float number) const {
        return NumberToText(static_cast<double>(number), singleDigits, locale);
    }
    std::string operator()(double number) const { return NumberToText(number, doubleDigits, locale); }
    std::string operator()(const Currency& amount) const { return CurrencyToText(amount, locale); }
    std::string operator()(const Decimal& decimal) const { return DecimalToText(decimal, locale); }
    std::string operator()(const AutomationDate& date) const { return FormatShortDate(date, locale); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    [[noreturn]] std::string operator()(const ErrorValue&) const { RaiseTypeMismatch(); }
    [[noreturn]] std::string operator()(const std::shared_ptr<const Object>&) const { RaiseTypeMismatch(); }
    [[noreturn]] std::string operator()(const std::shared_ptr<const VariantArray>&) const {
        RaiseTypeMismatch();
    }
};

double DecimalToDouble(const Decimal& decimal) {
    const double magnitude =
        (std::ldexp(static_cast<double>(decimal.high), 64) + static_cast<double>(decimal.low)) /
        std::pow(10.0, decimal.scale);
    return decimal.negative ? -magnitude : magnitude;
}

struct DoubleOf {
    const Locale& locale;

    double operator()(const Empty&) const { return 0; }
    [[noreturn]] double operator()(const Null&) const { throw PlatformError(ErrorNumber::InvalidUseOfNull); }
    template <class T>
        requires std::is_arithmetic_v<T>
    double operator()(T number) const {
        return static_cast<double>(number);
    }
    double operator()(const Currency& amount) const {
        return static_cast<double>(amount.scaled) / currencyUnit;
    }
    double operator()(const Decimal& decimal) const { return DecimalToDouble(decimal); }
    double operator()(const AutomationDate& date) const { return date.days; }
    double operator()(const std::string& text) const {
        const auto number = ReadNumber(text, locale);
        if (!number) {
            RaiseTypeMismatch();
        }
        if (!std::isfinite(*number)) {
            throw PlatformError(ErrorNumber::Overflow);
        }
        return *number;
    }
    double operator()(bool value) const { return value ? -1 : 0; }
    [[noreturn]] double operator()(const ErrorValue&) const { RaiseTypeMismatch(); }
    [[noreturn]] double operator()(const std::shared_ptr<const Object>&) const { RaiseTypeMismatch(); }
    [[noreturn]] double operator()(const std::shared_ptr<const VariantArray>&) const { RaiseTypeMismatch(); }
};

} // namespace

std::string ToText(const Variant& value, const Locale& locale) {
    return std::visit(TextOf{locale}, value.Get());
}

double ToDouble(const Variant& value, const Locale& locale) {
    return std::visit(DoubleOf{locale}, value.Get());
}

AutomationDate ToDate(const Variant& value, const Locale& locale) {
    if (value.Is<std::string>()) {
        return ParseDate(value.As<std::string>(), locale);
    }
    const double days = ToDouble(value, locale);
    const bool isCounted = days != 0 && !value.Is<AutomationDate>();
    const AutomationDate date{isCounted ? days + locale.nullDate : days};
    DayFromDate(date); // raises for a day that does not exist
    return date;
}

bool IsNumeric(const Variant& value, const Locale& locale) {
    if (value.Is<std::string>()) {
        return IsNumericText(value.As<std::string>(), locale);
    }
    return !value.Is<Null>() && !value.Is<AutomationDate>() && !value.Is<ErrorValue>() && !value.IsArray() &&
           !value.Is<std::shared_ptr<const Object>>();
}

bool IsNumericText(std::string_view text, const Locale& locale) {
    const auto number = ReadNumber(text, locale);
    return number && std::isfinite(*number);
}

} // namespace qel
