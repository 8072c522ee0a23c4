#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueCall.h"
#include "function/formula/Formula.h"

#include <string>
#include <vector>

// What a formula's dates select, in words.

namespace qel {

/// The date rules, each with an example, as `qel explain --dates` prints them and docs/dates.md quotes them.
extern const char* const dateRules;

/// "13 January 2011".
std::string DayText(AutomationDate date);

/// The periods that the call adds, and what of them may surprise: days of a period that count though they lie
/// outside the dates, or do not count though they lie inside. Empty when no period counts.
std::vector<std::string> PeriodNotes(const ModSetCube::DateTable& dates, const ValueCall& call,
                                     const Locale& locale);

/// Why the dates select no period, and which dates select one. Empty when they select one. `given` is how
/// many arguments the formula has.
std::vector<std::string> ReasonsInDates(const ModSetCube::DateTable& dates, const ValueCall& call,
                                        std::size_t given, const Locale& locale);

/// Dates whose text does not fit the locale's order of day and month, and how they are read.
std::vector<std::string> SwappedDates(const Formula& formula, const ValueCall& call, const Locale& locale);

} // namespace qel
