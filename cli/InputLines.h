#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>

namespace qel {

/// The lines of a text that people typed or programs wrote: with any line end, with or without a byte order
/// mark.
class InputLines {
public:
    explicit InputLines(std::istream& input) : input_(input) {}

    /// The next line that holds more than blanks, or none at the end. Raises std::runtime_error when the
    /// input cannot be read to its end.
    std::optional<std::string> NextFilled();
    /// The number of the line that was returned last, from 1.
    std::size_t Number() const { return number_; }

private:
    std::istream& input_;
    std::size_t number_ = 0;
};

/// The whole text without its byte order mark. Raises std::runtime_error when it cannot be read to its end.
std::string ReadAll(std::istream& input);

} // namespace qel
