#pragma once

#include "cube/CubeValue.h"
#include "cube/ValueCall.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// How far a value call came, which decides what its texts come back as.
enum class Reached : std::uint8_t {
    Nothing, ///< the cube could not be opened or is of an outdated layout
    OpenCube,
    Slicers ///< the selections became pieces of the where tuple
};

/// What a call shows, and what is behind it.
struct FormulaResult {
    Variant value = {};
    Reached reached = Reached::Nothing;
    std::string masked = {};                               ///< the text that a worksheet shows as 0
    std::optional<AutomationError> failure = std::nullopt; ///< what was trapped
};

/// A value call as far as it comes without reading its cell.
struct PreparedCall {
    FormulaResult result;                        ///< complete when there is no query
    std::optional<ModSetCube::ValueQuery> query; ///< what to ask for
    std::string key;                             ///< of the query, see WriteCallKey; empty for none
    bool isForWorksheet = false;                 ///< shows numbers alone
};

/// The call's texts as the interface hands them back: cube file, cube name and measure trimmed, RH, Firma,
/// Opening_Balance and MoneySet replaced by their slicers, as far as the call came.
ValueCall TextsAfter(ValueCall call, Reached reached);

/// The same of a name call: cube file and cube name trimmed.
NameCall TextsAfter(NameCall call);

/// Formulas carry the double quotes of an OBS member as no-break spaces.
bool HoldsCarriedQuotes(std::string_view key);
std::string QuotesRestored(std::string_view key);

/// The keys as texts, with double quotes in the place of the no-break spaces by which formulas carry them.
/// Raises as ToText.
std::vector<Variant> WithQuotesRestored(std::vector<Variant> keys, const Locale& locale);
/// The first of them; Empty without any. Raises for each of the keys, and 6 for more than 32,768.
Variant FirstWithQuotesRestored(std::span<const Variant> keys, const Locale& locale);

} // namespace qel
