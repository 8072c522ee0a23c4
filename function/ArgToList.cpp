#include "function/ArgToList.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"

#include <utility>

namespace qel {

namespace {

constexpr std::int32_t largestUpperBound = 5;
constexpr std::size_t mostCells = 32768; // cells are counted in 16 bits

/// Keeps every key.
struct AllKeys {
    KeyList list;
    void Take(std::string key) { list.emplace_back(std::move(key)); }
};

/// Keeps the first key: a formula needs no list for it.
struct OneKey {
    Variant first;
    bool isFound = false;
    void Take(std::string key) {
        if (!std::exchange(isFound, true)) {
            first = std::move(key);
        }
    }
};

template <class Keys>
void TakeRange(const Range& range, const Locale& locale, Keys& keys) {
    std::size_t count = 0;
    range.ForEachCell([&](const Variant& value) {
        if (count++ == mostCells) {
            throw PlatformError(ErrorNumber::Overflow);
        }
        keys.Take(std::string(Trimmed(ToText(value, locale))));
    });
}

template <class Keys>
void TakeArray(const VariantArray& array, const Locale& locale, Keys& keys) {
    if (array.bounds.DimensionCount() == 0) { // an array that was never dimensioned
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    const ArrayBounds bounds = array.bounds[0];
    if (bounds.upper > largestUpperBound) {
        throw PlatformError(ErrorNumber::ToManyDimensions);
    }
    if (array.bounds.DimensionCount() > 1 || bounds.upper < bounds.lower) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    for (const Variant& element : array.elements) {
        keys.Take(ToText(element, locale));
    }
}

template <class Keys>
void TakeFlattened(const Variant& value, const Locale& locale, Keys& keys) {
    if (value.IsArray()) {
        TakeArray(*value.As<std::shared_ptr<const VariantArray>>(), locale, keys);
    } else {
        keys.Take(ToText(value, locale));
    }
}

bool HoldsKeys(ElementType type) {
    switch (type) {
    case ElementType::Integer:
    case ElementType::Long:
    case ElementType::Single:
    case ElementType::Double:
    case ElementType::Currency:
    case ElementType::Decimal:
    case ElementType::Variant:
        return true;
    default:
        return false;
    }
}

bool IsFlattened(const Variant& value) {
    if (value.IsArray()) {
        return HoldsKeys(value.As<std::shared_ptr<const VariantArray>>()->elementType);
    }
    return value.Is<std::int16_t>() || value.Is<std::int32_t>() || value.Is<float>() || value.Is<double>() ||
           value.Is<Currency>() || value.Is<Decimal>();
}

/// Texts, logical values and dates are no keys: a formula gives its keys as numbers, cells or arrays.
template <class Keys>
void TakeArgument(const Variant& value, const Locale& locale, Keys& keys) {
    if (IsFlattened(value)) {
        TakeFlattened(value, locale, keys);
    } else if (value.Is<std::shared_ptr<const Object>>()) {
        const Object* const object = value.As<std::shared_ptr<const Object>>().get();
        if (const auto* range = dynamic_cast<const Range*>(object)) {
            TakeRange(*range, locale, keys);
        }
    }
}

} // namespace

KeyList ArgToList(const Variant& value, const Locale& locale) {
    AllKeys keys;
    TakeArgument(value, locale, keys);
    return keys.list.empty() ? KeyList(1) : std::move(keys.list);
}

KeyList ArrayToList(const Variant& value, const Locale& locale) {
    AllKeys keys;
    TakeFlattened(value, locale, keys);
    return std::move(keys.list);
}

Variant FirstKey(const Variant& value, const Locale& locale) {
    OneKey keys;
    TakeArgument(value, locale, keys);
    return std::move(keys.first);
}

const std::string* PlainFirstKey(const Variant& value) {
    static const std::string nothing;
    if (!value.IsArray()) {
        return value.Is<std::string>() ? &nothing : nullptr;
    }
    const VariantArray& array = *value.As<std::shared_ptr<const VariantArray>>();
    const bool isPlain = array.elementType == ElementType::Variant && array.bounds.DimensionCount() == 1 &&
                         array.elements.size() == 1 && array.bounds[0].upper == array.bounds[0].lower &&
                         array.bounds[0].upper <= largestUpperBound;
    return isPlain ? std::get_if<std::string>(&array.elements.front().Get()) : nullptr;
}

} // namespace qel
