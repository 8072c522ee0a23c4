#include "cube/ValueQuery.h"

#include "platform/value/Conversion.h"
#include "text/CaseFold.h"
#include "text/Text.h"

namespace qel::ModSetCube {

namespace {

constexpr std::string_view everything = "All";
constexpr std::string_view costCenters = "Cost_Centers";
/// How a call says that it has no OBS number.
constexpr std::string_view noNumber{"\0", 1};

std::string TrimmedKey(const Variant& key, const Locale& locale) {
    std::string text = ToText(key, locale);
    Trim(text);
    return text;
}

std::optional<std::string> NumberOf(const Variant& key, const Locale& locale) {
    std::string number = ToText(key, locale);
    return number == noNumber ? std::nullopt : std::optional(std::move(number));
}

/// The letter case of the two words counts: in any other one they are names of levels.
ObsPart PartOf(std::string_view level) {
    if (level == everything) {
        return ObsPart::Nothing;
    }
    return level == costCenters ? ObsPart::CostCenter : ObsPart::LevelMember;
}

} // namespace

std::string_view RestrictionOf(std::string_view key) {
    return IsUnrestricted(key) ? std::string_view() : Trimmed(key);
}

/// Compared as it stands: with blanks around it, "All" is a level's name.
std::string_view SummaryLevelOf(std::string_view level) {
    return Trimmed(level).empty() || EqualIgnoringCase(level, everything) ? std::string_view() : level;
}

bool IsUnrestricted(std::string_view key) {
    const std::string_view trimmed = Trimmed(key);
    // No letter of another length becomes one of these.
    return trimmed.empty() || (trimmed.size() == everything.size() && EqualIgnoringCase(trimmed, everything));
}

ValueQuery QueryOf(const ValueCall& call, const ValueKeys& keys, const Locale& locale) {
    ValueQuery query;
    query.cubeName = Trimmed(call.CubeName);
    query.measure = Trimmed(call.Measure);
    query.summaryLevel = SummaryLevelOf(call.Summary_Group);
    query.summaryMember = Trimmed(call.Seif_level);
    query.plbs = RestrictionOf(call.Plbs);
    query.rh = RestrictionOf(call.RH);
    query.firma = RestrictionOf(call.Firma);
    query.openingBalance = RestrictionOf(call.Opening_Balance);
    query.moneySet = RestrictionOf(call.MoneySet);
    query.accounts = RestrictionOf(call.Accounts);
    query.obsName = TrimmedKey(keys.ObsName, locale);
    query.obsNumber = NumberOf(keys.ObsNum, locale);
    query.obsLevel = TrimmedKey(keys.ObsLevel, locale);
    query.obsPart = PartOf(query.obsLevel);
    query.obsMember = TrimmedKey(keys.ObsMember, locale);
    query.activity = RestrictionOf(ToText(keys.ActivityList, locale));
    return query;
}

} // namespace qel::ModSetCube
