#include "function/ArgToList.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace qel {

namespace {

constexpr std::int32_t largestUpperBound = 5;
constexpr std::size_t mostCells = 32768; // cells are counted in 16 bits

constexpr std::string_view flattenedTypes[] = {
    "Integer",  "Integer()", "Long",       "Long()",  "Single",    "Single()", "Double",
    "Double()", "Currency",  "Currency()", "Decimal", "Decimal()", "Variant",  "Variant()",
};

KeyList NoKey() { return KeyList(1); }

KeyList RangeToList(const Range& range, const Locale& locale) {
    KeyList list;
    range.ForEachCell([&](const Variant& value) {
        if (list.size() == mostCells) {
            throw PlatformError(ErrorNumber::Overflow);
        }
        list.emplace_back(std::string(Trimmed(ToText(value, locale))));
    });
    return list.empty() ? NoKey() : list;
}

KeyList OneDimensionToList(const VariantArray& array, const Locale& locale) {
    if (array.bounds.empty()) { // an array that was never dimensioned
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    const ArrayBounds bounds = array.bounds.front();
    if (bounds.upper > largestUpperBound) {
        throw PlatformError(ErrorNumber::ToManyDimensions);
    }
    if (array.bounds.size() > 1 || bounds.upper < bounds.lower) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    KeyList list;
    for (const Variant& element : array.elements) {
        list.emplace_back(ToText(element, locale));
    }
    return list;
}

} // namespace

KeyList ArgToList(const Variant& value, const Locale& locale) {
    const std::string type = value.TypeName();
    if (std::find(std::begin(flattenedTypes), std::end(flattenedTypes), type) != std::end(flattenedTypes)) {
        return ArrayToList(value, locale);
    }
    if (type == "Range") {
        const auto range = std::dynamic_pointer_cast<const Range>(value.As<std::shared_ptr<const Object>>());
        return range ? RangeToList(*range, locale) : NoKey();
    }
    // Texts, logical values and dates are no keys: a formula gives its keys as numbers, cells or arrays.
    return NoKey();
}

KeyList ArrayToList(const Variant& value, const Locale& locale) {
    if (value.IsArray()) {
        return OneDimensionToList(*value.As<std::shared_ptr<const VariantArray>>(), locale);
    }
    return {Variant(ToText(value, locale))};
}

} // namespace qel
