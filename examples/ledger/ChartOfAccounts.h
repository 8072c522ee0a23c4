#pragma once

#include <span>
#include <string_view>

namespace qel::ledger {

/// A line of the chart. The number of digits gives the depth (1 to 3 a summary group, 4 an account), the
/// leading digits the groups.
struct ChartLine {
    std::string_view code, name, hebrewName;
};

/// The company group's chart; summary groups come before their members.
std::span<const ChartLine> ChartOfAccounts();

/// Raises std::out_of_range for an unknown code.
const ChartLine& FindInChart(std::string_view code);

/// Whether the account belongs to the profit and loss statement rather than the balance sheet.
bool IsProfitAndLoss(std::string_view account);

/// The kind of account by which the suite's listings group: "A" assets, "L" liabilities, "I" income, "E"
/// expenses.
std::string_view AccountKind(std::string_view account);

} // namespace qel::ledger
