#include "function/FormulaResult.h"

#include "cube/ValueStatement.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"

namespace qel {

namespace {

constexpr std::size_t mostKeys = 32768; // keys are counted in 16 bits

constexpr std::string_view carriedQuote = "\xC2\xA0";

std::string RestoreQuotes(const Variant& key, const Locale& locale) {
    std::string text = ToText(key, locale);
    return HoldsCarriedQuotes(text) ? QuotesRestored(text) : text;
}

} // namespace

ValueCall TextsAfter(ValueCall call, Reached reached) {
    using ModSetCube::MemberSlicer;
    Trim(call.cubeFile);
    Trim(call.CubeName);
    if (reached == Reached::Nothing) {
        return call;
    }
    Trim(call.Measure);
    if (reached == Reached::OpenCube) {
        return call;
    }
    if (!ModSetCube::IsUnrestricted(call.RH)) { // the others come back empty
        call.RH = MemberSlicer("[RH]", call.RH);
    }
    call.Firma = MemberSlicer("[Firma]", call.Firma);
    call.Opening_Balance = MemberSlicer("[Opening_Balance]", call.Opening_Balance);
    call.MoneySet = MemberSlicer("[MoneySet]", call.MoneySet);
    return call;
}

NameCall TextsAfter(NameCall call) {
    Trim(call.cubeFile);
    Trim(call.CubeName);
    return call;
}

bool HoldsCarriedQuotes(std::string_view key) { return key.find(carriedQuote) != std::string_view::npos; }

std::string QuotesRestored(std::string_view key) { return ReplaceAll(key, carriedQuote, "\""); }

std::vector<Variant> WithQuotesRestored(std::vector<Variant> keys, const Locale& locale) {
    for (Variant& key : keys) {
        key = RestoreQuotes(key, locale);
    }
    return keys;
}

Variant FirstWithQuotesRestored(std::span<const Variant> keys, const Locale& locale) {
    if (keys.size() > mostKeys) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    Variant first;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        std::string key = RestoreQuotes(keys[i], locale);
        if (i == 0) {
            first = std::move(key);
        }
    }
    return first;
}

} // namespace qel
