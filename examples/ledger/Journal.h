#pragma once

#include "examples/ledger/LedgerLine.h"

#include <map>
#include <string_view>
#include <utility>

namespace qel::ledger {

/// What all lines of an entry share.
struct EntryHeader {
    std::chrono::year_month_day date;
    std::string_view firm;
    std::string_view rh = "R";             ///< "R" regular, "H" year-end adjustment
    std::string_view openingBalance = "0"; ///< "1" for balances brought forward
    std::string_view moneySet = "ILS";
};

/// Double-entry bookkeeping: lines are written as they are posted, and each entry must sum to zero when it
/// ends. Keeps the balances of every firm.
class Journal {
public:
    explicit Journal(LineSink sink) : sink_(std::move(sink)) {}

    void Begin(const EntryHeader& header);
    /// Posts a line: debit positive, credit negative. Skips zero amounts.
    void Post(std::string_view account, const Analysis& analysis, std::int64_t cents,
              std::int64_t thousandths = 0);
    /// Posts the line that balances everything since Begin.
    void PostRest(std::string_view account, const Analysis& analysis);
    /// Ends the entry. Raises std::logic_error when it does not sum to zero.
    void End();

    /// Debit positive.
    std::int64_t Balance(std::string_view firm, std::string_view account) const;
    /// The firm's profit (negative) or loss (positive) since StartYear.
    std::int64_t YearResult(std::string_view firm) const;
    void StartYear() { yearResults_.clear(); }

private:
    LineSink sink_;
    EntryHeader header_{};
    std::uint64_t entry_ = 0;
    std::int64_t sum_ = 0;
    std::map<std::pair<std::string_view, std::string_view>, std::int64_t> balances_;
    std::map<std::string_view, std::int64_t> yearResults_;
};

} // namespace qel::ledger
