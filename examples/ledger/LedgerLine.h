#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::ledger {

/// The codes of a ledger line besides its account.
struct Analysis {
    std::string_view activity, costCentre, obs, obsNumber;
};

/// A line of a journal entry. Codes refer to tables that outlive the line.
struct LedgerLine {
    std::uint64_t entry = 0;
    std::chrono::year_month_day date;
    std::string_view firm, account;
    Analysis analysis;
    std::string_view plbs, rh, openingBalance, moneySet;
    std::int64_t thousandths = 0; ///< quantity: pieces or kilograms
    std::int64_t cents = 0;       ///< debit positive, credit negative
};

using LineSink = std::function<void(const LedgerLine&)>;

/// A table with the meaning of the codes in one column of the ledger.
struct DimensionTable {
    std::string file; ///< "accounts.csv"
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
};

} // namespace qel::ledger
