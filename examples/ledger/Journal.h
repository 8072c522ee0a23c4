#pragma once

#include "examples/ledger/LedgerLine.h"

#include <map>
#include <string_view>
#include <utility>

namespace qel::ledger {

/// What all lines of one entry share.
struct EntryHeader {
    std::chrono::year_month_day date;
    std::string_view firm;
    std::string_view rh = "R";             ///< "R" regular, "H" year-end adjustment
    std::string_view openingBalance = "0"; ///< "1" for balances brought forward
    std::string_view moneySet = "ILS";
};

/// Double entry: an entry goes out line by line and must sum to zero when it ends. Keeps every firm's
/// balances.
class Journal {
public:
    explicit Journal(LineSink sink) : sink_(std::move(sink)) {}

    void Begin(const EntryHeader& header);
    /// Debit positive, credit negative. A line of no amount is left out.
    void Post(std::string_view account, const Analysis& analysis, std::int64_t cents,
              std::int64_t thousandths = 0);
    /// The line that balances what was posted since Begin.
    void PostRest(std::string_view account, const Analysis& analysis);
    /// Raises std::logic_error when the entry does not sum to zero.
    void End();

    /// Debit positive.
    std::int64_t Balance(std::string_view firm, std::string_view account) const;
    /// Profit (negative) or loss (positive) of the firm since StartYear.
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
