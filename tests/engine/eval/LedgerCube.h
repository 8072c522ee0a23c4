#pragma once

#include "qel/engine/Cellset.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A line of the tests' ledger.
struct LedgerLine {
    const char* month; ///< yyyy-mm
    const char* account;
    const char* obs;
    const char* obsNumber;
    const char* costCentre;
    const char* activity;
    const char* firm;
    std::int64_t cents;
};

/// An account and its position in two trees of groups.
struct LedgerAccount {
    const char *code, *name, *group1, *group1Name, *group2, *group2Name;
};

inline constexpr LedgerAccount ledgerAccounts[] = {
    {"4000", "Sales", "1", "Income", "10", "Trade"},
    {"4100", "Sales, export", "1", "Income", "10", "Trade"},
    {"4200", "Interest [net]", "1", "Income", "11", "Other"},
    {"5000", "Wages & \"13th\"", "2", "Costs", "20", "Staff"},
    {"5100", "O'Neil's rent", "2", "Costs", "21", "Other"},
    {"5200", "שכירות", "2", "Costs", "21", "Other"},
};

/// The leaves of the OBS tree: a code and its names on two levels. "Other" and "O'Neil" have two parents.
struct LedgerObs {
    const char *code, *level1, *level2;
};

inline constexpr LedgerObs ledgerObs[] = {
    {"n1", "North", "Haifa"}, {"n2", "North", "Other"}, {"n3", "North", "O'Neil"},
    {"s1", "South", "Eilat"}, {"s2", "South", "Other"}, {"s3", "South", "O'Neil"},
};

/// OBS numbers overlap: code A belongs to 11 and 12, B only to 12, C to 21 of the other name.
struct LedgerObsNumber {
    const char *code, *name, *number;
};

inline constexpr LedgerObsNumber ledgerObsNumbers[] = {
    {"A", "1", "11"}, {"A", "1", "12"}, {"B", "1", "12"}, {"C", "2", "21"}};

inline constexpr const char* ledgerFirms[] = {"1", "2"};
inline constexpr const char* ledgerCostCentres[] = {"100", "200", "300"};
inline constexpr const char* ledgerActivities[] = {"7", "8"};

/// A cube "Finance" in the suite's layout with these facts, from January 2023 to December 2024. `keys` are
/// more keys of its definition, each behind a comma.
std::shared_ptr<const Cube> BuildLedgerCube(const std::vector<LedgerLine>& lines,
                                            const std::string& keys = "");

/// The ledger that most tests of statements ask. Account 4200 has no lines, and the lines of 5100 sum to 0.
const Cube& CommonLedger();
/// Its lines in a cube with more keys in its definition.
std::shared_ptr<const Cube> BuildCommonLedger(const std::string& keys);

/// The cellset as text: "columns: a | b", then one line per row (none without rows), empty cells as "-".
/// Members show their unique names; tuples are joined by "+".
std::string Show(const Cellset& cellset);
std::string ShowValue(const CellValue& value);

} // namespace qel::engine
