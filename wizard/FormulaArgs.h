#pragma once

#include "platform/value/Variant.h"

#include <array>
#include <cstddef>

namespace qel {

/// The arguments of a value formula in the order of the call. Elements 2 to 6 hold arrays of texts, of which
/// an Empty element stands for an argument that is left empty; the others are texts.
using FormulaArgs = std::array<Variant, 18>;

namespace FormulaArg {
inline constexpr std::size_t CubeFile = 0;
inline constexpr std::size_t CubeName = 1;
inline constexpr std::size_t ObsName = 2;
inline constexpr std::size_t ObsNum = 3;
inline constexpr std::size_t ObsLevel = 4;
inline constexpr std::size_t ObsMember = 5;
inline constexpr std::size_t ActivityList = 6;
inline constexpr std::size_t SummaryGroup = 7;
inline constexpr std::size_t SeifLevel = 8;
inline constexpr std::size_t Accounts = 9;
inline constexpr std::size_t Measure = 10;
inline constexpr std::size_t MoneySet = 11;
inline constexpr std::size_t Plbs = 12;
inline constexpr std::size_t Rh = 13;
inline constexpr std::size_t Firma = 14;
inline constexpr std::size_t OpeningBalance = 15;
inline constexpr std::size_t FromDate = 16;
inline constexpr std::size_t ToDate = 17;
} // namespace FormulaArg

} // namespace qel
