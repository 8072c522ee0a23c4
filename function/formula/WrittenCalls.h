#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// A call of a worksheet function of the class, as it is written within a formula.
struct WrittenCall {
    std::string function;                    ///< without the class's name, in the letter case of the formula
    std::size_t begin = 0, end = 0;          ///< what stands between the parentheses
    std::vector<std::string> arguments = {}; ///< without blanks around them; empty ones are omitted
    std::vector<std::size_t> starts = {};    ///< where each argument begins
    char separator = ';';                    ///< of the arguments: ';' or ','
};

/// Whether the call gives a name, no amount.
bool IsNameCall(const WrittenCall& call);

/// The calls of QelF1, QeL1, QelName and RetQelName in a formula, in the order in which they begin. A call
/// may stand in an argument of another one. A call without its closing parenthesis is left out.
std::vector<WrittenCall> FindCalls(std::string_view formula);

/// The same, whatever stands before the function's name; QelFuncDemo's too.
std::vector<WrittenCall> FindCallsOfAnyName(std::string_view formula);

/// The formula with other arguments in the place of the call's; blanks around them stay.
std::string WithArguments(std::string_view formula, const WrittenCall& call,
                          const std::vector<std::string>& arguments);

} // namespace qel
