#include "examples/ledger/Journal.h"

#include "examples/ledger/ChartOfAccounts.h"

#include <fmt/format.h>

#include <stdexcept>

namespace qel::ledger {

void Journal::Begin(const EntryHeader& header) {
    header_ = header;
    sum_ = 0;
    ++entry_;
}

void Journal::Post(std::string_view account, const Analysis& analysis, std::int64_t cents,
                   std::int64_t thousandths) {
    if (cents == 0) {
        return;
    }
    const std::string_view code = FindInChart(account).code;
    const bool isResult = IsProfitAndLoss(code);
    sink_({.entry = entry_,
           .date = header_.date,
           .firm = header_.firm,
           .account = code,
           .analysis = analysis,
           .plbs = isResult ? "P" : "B",
           .rh = header_.rh,
           .openingBalance = header_.openingBalance,
           .moneySet = header_.moneySet,
           .thousandths = thousandths,
           .cents = cents});
    sum_ += cents;
    balances_[{header_.firm, code}] += cents;
    if (isResult) {
        yearResults_[header_.firm] += cents;
    }
}

void Journal::PostRest(std::string_view account, const Analysis& analysis) { Post(account, analysis, -sum_); }

void Journal::End() {
    if (sum_ != 0) {
        throw std::logic_error(
            fmt::format("Entry {} of firm {} is out of balance by {} cents.", entry_, header_.firm, sum_));
    }
}

std::int64_t Journal::Balance(std::string_view firm, std::string_view account) const {
    const auto found = balances_.find({firm, account});
    return found == balances_.end() ? 0 : found->second;
}

std::int64_t Journal::YearResult(std::string_view firm) const {
    const auto found = yearResults_.find(firm);
    return found == yearResults_.end() ? 0 : found->second;
}

} // namespace qel::ledger
