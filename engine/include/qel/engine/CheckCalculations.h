#pragma once

#include "qel/engine/Cube.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// What is wrong with one of a cube's calculations.
struct CalculationFault {
    bool isSet = false;
    std::size_t index = 0; ///< among the members, or among the sets
    std::string text;      ///< names the calculation and the place in it
};

/// The first name or formula that is no MDX, whatever the cube holds.
std::optional<CalculationFault> FindSyntaxFault(const Calculations& calculations);

/// The first calculation whose name is taken or has no place in the cube, whose formula names what the cube
/// lacks, or that needs itself. Evaluates no cell.
std::optional<CalculationFault> FindCalculationFault(const Cube& cube);

/// Why cells cannot have this format; empty when they can.
std::string FindFormatFault(std::string_view format);

/// Where a calculated member of the cube stands.
struct CalculationPlace {
    std::optional<std::size_t> hierarchy; ///< in Cube::Hierarchies(); nothing for a measure
    MemberId parent = noMember;           ///< noMember on the top level
    std::string name;
};

struct CalculationPlaces {
    std::vector<CalculationPlace> members;
    std::vector<std::string> setNames; ///< without brackets
};

/// Where the cube's calculations stand. Raises EngineError at a wrong name.
CalculationPlaces FindCalculationPlaces(const Cube& cube);

} // namespace qel::engine
