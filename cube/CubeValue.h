#pragma once

#include "cube/ThreadState.h"

#include <string>

namespace qel::ModSetCube {

/// The arguments of one value call, by reference: firma, openingBalance, moneySet and rh come back
/// overwritten with their piece of the slicer.
struct ValueArguments {
    const std::string& cubeName;
    const KeyList &obsNames, &obsNumbers, &obsLevels, &obsMembers, &activities;
    const std::string &summaryLevel, &summaryMember, &accounts, &measure;
    std::string& moneySet;
    const std::string& plbs;
    std::string &rh, &firma, &openingBalance;
    const std::string &fromDate, &toDate; ///< in the locale's short form
};

/// GetCubeValue without its trap: raises what goes wrong.
Variant ComputeCubeValue(const ThreadState& thread, DataAccess& dataAccess, const Locale& locale,
                         const ValueArguments& arguments);

/// Composes the statement, runs it over the open CubeConnection and returns the cell's value; 0 (16-bit) for
/// an empty cell or a period outside the cube, "#ERR 11111111" for a period that ends before it starts,
/// "#ERR " and the number for any error. Raises nothing.
Variant GetCubeValue(const ThreadState& thread, DataAccess& dataAccess, const Locale& locale,
                     const ValueArguments& arguments);

} // namespace qel::ModSetCube
