#pragma once

#include "cube/ValueCall.h"
#include "platform/database/DatabaseConnection.h"
#include "wizard/FormulaArgs.h"
#include "wizard/MemberChoice.h"

#include <string>
#include <vector>

namespace qel {

/// The choices in the function wizard, as the cube's member keys.
struct Selection {
    std::string cubeFile, cubeName;
    std::string obsName, obsNumber; ///< may be empty
    std::string obsLevel = allMembers;
    std::vector<std::string> obsMembers;
    std::string activity = allMembers;
    std::string summaryLevel = allMembers, summaryMember = allMembers;
    std::string account = allMembers;
    std::string measure;
    std::string moneySet = allMembers, plbs = allMembers, rh = allMembers, firma = allMembers,
                openingBalance = allMembers;
    AutomationDate from, to;
    bool isObsMemberShown = false; ///< the one OBS member is shown to choose from, not added to the list

    bool operator==(const Selection&) const = default;
};

/// The choices that differ from the offered ones. The others are empty, which no restoring takes for a
/// choice.
Selection ChangedChoices(const Selection& chosen, const Selection& offered);

/// The OBS level of cost centres.
inline constexpr const char* costCentersLevel = "Cost_Centers";

/// The value call of a selection: keys as statements have them. A key that was not chosen is an Empty one.
ValueCall CallOf(const Selection& selection);

/// The call's arguments as a formula's text has them.
FormulaArgs ArgumentsOf(const ValueCall& call, const Locale& locale);

/// Converts a selection to a row of the table DataTbl, and back. A Null field is an empty text or the zero
/// date. Raises 9 for a row with too few columns.
TableRow RowOf(const Selection& selection);
Selection SelectionOf(const TableRow& row, const Locale& locale);

} // namespace qel
