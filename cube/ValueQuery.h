#pragma once

#include "cube/ValueCall.h"

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::ModSetCube {

/// The periods to sum: `count` of them, ending with the member `last` (a unique name).
struct PeriodSpan {
    int count = 0;
    std::string last;

    auto operator<=>(const PeriodSpan&) const = default;
};

/// The unique names of the OBS members that [Obs].Sel sums.
using ObsMembers = std::vector<std::string>;

/// Element 0 of a call's lists; Empty for a list without elements. Statements use no other key.
struct ValueKeys {
    Variant ObsName, ObsNum, ObsLevel, ObsMember, ActivityList;
};

/// What else than its OBS name and number restricts a query to a part of the organisation.
enum class ObsPart : std::uint8_t { Nothing, CostCenter, LevelMember };

/// What a value call asks of its cube. Keys are trimmed; one that restricts nothing is empty.
struct ValueQuery {
    std::string cubeName, measure;
    PeriodSpan span;
    std::string summaryLevel, summaryMember; ///< an empty level for all groups; it is not trimmed
    std::string plbs, rh, firma, openingBalance, moneySet, activity, accounts;
    std::string obsName;
    std::optional<std::string> obsNumber; ///< not trimmed; none for every number of the name
    ObsPart obsPart = ObsPart::Nothing;
    std::string obsLevel, obsMember; ///< the level of a level's member; the member or cost centre
    std::shared_ptr<const ObsMembers> obsMembers; ///< of a level's member: all that have its name

    auto operator<=>(const ValueQuery&) const = default;
};

/// The key trimmed; empty when it restricts nothing.
std::string_view RestrictionOf(std::string_view key);
/// The level as a query has it; empty for all groups.
std::string_view SummaryLevelOf(std::string_view level);

/// True for a key that restricts nothing: "All" in any letter case, or nothing, blanks aside.
bool IsUnrestricted(std::string_view key);

/// The query without its periods and OBS members, which the cube tells. Raises as ToText for a key that is no
/// text.
ValueQuery QueryOf(const ValueCall& call, const ValueKeys& keys, const Locale& locale);

} // namespace qel::ModSetCube
