#pragma once

#include "reason/ValueReason.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel {

/// The reason of a value as a person reads it.
struct WhyTexts {
    std::vector<std::string> arguments;   ///< a line for each: its name, what was given, and what it became
    std::vector<std::string> explanation; ///< what is wrong, the periods, how many lines, the time
    std::string statement;                ///< exactly as it was sent; empty if none was
};

WhyTexts ComposeWhyTexts(const ValueReason& reason, std::int16_t language);

/// The value over another cube file: the file, the values, and an error that the other one hides.
std::vector<std::string> ComparisonTexts(const FormulaResult& result, const FormulaResult& other,
                                         const std::string& file, std::int16_t language,
                                         const Locale& locale);

/// The texts in rows of about so many characters; rows of one text read in one direction.
std::vector<std::string> Wrapped(const std::vector<std::string>& texts, std::size_t width);

} // namespace qel
