#include "cube/CallKey.h"

#include "text/Text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qel::ModSetCube {

namespace {

template <class Number>
void AppendBytes(std::string& key, Number number) {
    key.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// With its length, so that no two lists of texts have one key.
void AppendText(std::string& key, std::string_view text) {
    AppendBytes(key, static_cast<std::uint32_t>(text.size()));
    key += text;
}

constexpr std::array restrictions = {&ValueCall::Accounts, &ValueCall::MoneySet, &ValueCall::Plbs,
                                     &ValueCall::RH,       &ValueCall::Firma,    &ValueCall::Opening_Balance};

/// The text of a list's element; null when it has to be converted.
const std::string* TextOf(const Variant& element) {
    static const std::string nothing;
    return element.Is<Empty>() ? &nothing : std::get_if<std::string>(&element.Get());
}

} // namespace

bool WriteCallKey(std::string& key, const ValueCall& call, const ValueKeys& keys, DayRange days) {
    const std::string *const obsName = TextOf(keys.ObsName), *const obsNumber = TextOf(keys.ObsNum),
                             *const obsLevel = TextOf(keys.ObsLevel),
                             *const obsMember = TextOf(keys.ObsMember),
                             *const activity = TextOf(keys.ActivityList);
    if (obsName == nullptr || obsNumber == nullptr || obsLevel == nullptr || obsMember == nullptr ||
        activity == nullptr) {
        return false;
    }
    key.clear();
    AppendBytes(key, days.from.days);
    AppendBytes(key, days.to.days);
    AppendText(key, Trimmed(call.Measure));
    AppendText(key, SummaryLevelOf(call.Summary_Group));
    AppendText(key, Trimmed(call.Seif_level));
    for (const auto text : restrictions) {
        AppendText(key, RestrictionOf(call.*text));
    }
    AppendText(key, Trimmed(*obsName));
    AppendText(key, *obsNumber);
    AppendText(key, Trimmed(*obsLevel));
    AppendText(key, Trimmed(*obsMember));
    AppendText(key, RestrictionOf(*activity));
    return true;
}

} // namespace qel::ModSetCube
