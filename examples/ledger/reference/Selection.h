#pragma once

#include "platform/value/AutomationDate.h"

#include <optional>
#include <string>

namespace qel::ledger {

/// The two cubes that are built from a ledger.
enum class LedgerCube { Months, Days };

/// What a formula asks for. An empty text does not restrict. Members are written as their tables have them.
struct Selection {
    LedgerCube cube = LedgerCube::Months;
    std::string obsName = "OBS", obsNumber = "1"; ///< the name always restricts
    std::string obsLevel, obsMember; ///< "Cost_Centers" and a code, or "Level1" and so on and a name
    std::string activity, summaryLevel, summaryMember, account;
    std::string measure = "Amount";
    std::string moneySet, plbs, rh, firm, openingBalance;
    std::optional<CalendarDay> from; ///< none: the period of `to` alone
    CalendarDay to;
};

/// For a test's message: every part that restricts.
std::string Describe(const Selection& selection);

} // namespace qel::ledger
