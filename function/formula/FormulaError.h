#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace qel {

/// A formula's text that cannot be read, or a call whose arguments do not fit its function. The message ends
/// with the place.
class FormulaError : public std::runtime_error {
public:
    /// `position` counts the formula's characters from 1.
    FormulaError(std::size_t position, const std::string& message);

    std::size_t Position() const { return position_; }

private:
    std::size_t position_;
};

} // namespace qel
