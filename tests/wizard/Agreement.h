#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// How a user reads the function form in some toolkit.
struct FormReader {
    std::function<std::string(const char*)> text; ///< of a list: the chosen row
    std::function<bool(const char*)> isTicked;
    std::function<std::vector<std::string>(const char*)> items;
};

using Keys = std::vector<std::string>;

/// The form's content, one entry per argument.
std::vector<Keys> ReadOff(const FormReader& form);

/// Fails the test where an argument is not what was shown.
void ExpectArguments(const std::string& formula, const std::vector<Keys>& shown);

} // namespace qel::test
