#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueCall.h"
#include "function/formula/Formula.h"
#include "reason/Reason.h"

#include <optional>
#include <string>
#include <vector>

// What a formula's dates select.

namespace qel {

/// The date rules, each with an example, as `qel explain --dates` prints them and docs/dates.md quotes them.
extern const char* const dateRules;

/// The periods that a call adds.
struct PeriodChoice {
    int count = 0;
    std::string first, last;   ///< their members' unique names
    Reason periods;            ///< "2, from [Date].[All].[2024].[Q1].[2] to …"
    Reason rule;               ///< by which they were chosen
    std::vector<Reason> notes; ///< what may surprise: periods of which days count, or do not, by the rule
};

/// None when no period counts.
std::optional<PeriodChoice> ChosenPeriods(const ModSetCube::DateTable& dates, const ValueCall& call,
                                          const Locale& locale);

/// Why the dates select no period, and which dates select one. Empty when they select one. `given` is how
/// many arguments the formula has.
std::vector<Reason> ReasonsInDates(const ModSetCube::DateTable& dates, const ValueCall& call,
                                   std::size_t given, const Locale& locale);

/// Dates whose text does not fit the locale's order of day and month, and how they are read.
std::vector<Reason> SwappedDates(const Formula& formula, const ValueCall& call, const Locale& locale);

} // namespace qel
