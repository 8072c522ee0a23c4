#pragma once

#include "platform/value/AutomationDate.h"

#include <optional>
#include <string>

namespace qel::ledger {

/// The two cubes built from a ledger.
enum class LedgerCube { Months, Days };

/// What a formula selects. An empty text restricts nothing. Members are written as in their tables.
struct Selection {
    LedgerCube cube = LedgerCube::Months;
    std::string obsName = "OBS", obsNumber = "1"; ///< the name always restricts
    std::string obsLevel, obsMember; ///< "Cost_Centers" and a code, or "Level1", "Level2", ... and a name
    std::string activity, summaryLevel, summaryMember, account;
    std::string measure = "Amount";
    std::string moneySet, plbs, rh, firm, openingBalance;
    std::optional<CalendarDay> from; ///< nothing: only the period of `to`
    CalendarDay to;
};

/// Lists the restrictions, for test messages.
std::string Describe(const Selection& selection);

} // namespace qel::ledger
