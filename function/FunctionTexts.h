#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace qel {

/// A text in the two languages of the suite.
struct Bilingual {
    const char* english;
    const char* hebrew;

    const char* In(bool isHebrew) const { return isHebrew ? hebrew : english; }
};

struct ArgumentTexts {
    Bilingual name, help;
};

/// What the office shows of a function when a person picks it, and how the function is stored.
struct FunctionTexts {
    const char* method;   ///< the name of the method that a formula calls
    const char* fullName; ///< the name in a formula, with the class before it
    Bilingual help;
    std::span<const ArgumentTexts> arguments;
};

extern const Bilingual categoryName;

/// The name of an argument of a value formula.
std::string ValueArgumentName(std::size_t argument, bool isHebrew);

/// Null for a method that is no worksheet function.
const FunctionTexts* FindByMethod(std::string_view method);
/// Compares as formulas do, without regard to letter case.
const FunctionTexts* FindByFullName(std::string_view fullName);

} // namespace qel
