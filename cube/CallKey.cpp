#include "cube/CallKey.h"

#include "text/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace qel::ModSetCube {

namespace {

template <class Number>
void AppendBytes(std::string& key, Number number) {
    key.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// With its length, so that no two lists of texts have one key. Most lengths take a byte.
void AppendText(std::string& key, std::string_view text) {
    constexpr std::size_t isLong = 255;
    key += static_cast<char>(std::min(text.size(), isLong));
    if (text.size() >= isLong) {
        AppendBytes(key, text.size());
    }
    key += text;
}

constexpr std::array restrictions = {&ValueCall::Accounts, &ValueCall::MoneySet, &ValueCall::Plbs,
                                     &ValueCall::RH,       &ValueCall::Firma,    &ValueCall::Opening_Balance};

} // namespace

void WriteCallKey(std::string& key, const ValueCall& call, const KeyTexts& keys, DayRange days) {
    key.clear();
    AppendBytes(key, days.from.days);
    AppendBytes(key, days.to.days);
    AppendText(key, Trimmed(call.Measure));
    const std::string_view summaryLevel = SummaryLevelOf(call.Summary_Group);
    AppendText(key, summaryLevel);
    if (!summaryLevel.empty()) { // otherwise no query has the member
        AppendText(key, Trimmed(call.Seif_level));
    }
    for (const auto text : restrictions) {
        AppendText(key, RestrictionOf(call.*text));
    }
    AppendText(key, Trimmed(keys.obsName));
    AppendText(key, keys.obsNumber);
    AppendText(key, Trimmed(keys.obsLevel));
    AppendText(key, Trimmed(keys.obsMember));
    AppendText(key, RestrictionOf(keys.activity));
}

} // namespace qel::ModSetCube
