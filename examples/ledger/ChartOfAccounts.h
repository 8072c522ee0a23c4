#pragma once

#include <span>
#include <string_view>

namespace qel::ledger {

/// A line of the chart: the number of digits is its depth (1 to 3 a summary group, 4 an account), and the
/// leading digits are its groups.
struct ChartLine {
    std::string_view code, name, hebrewName;
};

/// The group's chart, every group before its members.
std::span<const ChartLine> ChartOfAccounts();

/// Raises std::out_of_range for a code that the chart lacks.
const ChartLine& FindInChart(std::string_view code);

/// True for accounts of the profit and loss statement, false for the balance sheet's.
bool IsProfitAndLoss(std::string_view account);

/// The kind of account that the suite's listings group by: "A" assets, "L" liabilities, "I" income, "E"
/// expenses.
std::string_view AccountKind(std::string_view account);

} // namespace qel::ledger
