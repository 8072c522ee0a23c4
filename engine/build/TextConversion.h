#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qel::engine {

/// Converts text in an encoding to UTF-8, piece by piece.
class TextConversion {
public:
    TextConversion() = default;
    virtual ~TextConversion() = default;
    TextConversion(const TextConversion&) = delete;
    TextConversion& operator=(const TextConversion&) = delete;

    /// Takes what is complete, at the end of the text everything, out of `bytes` and returns it. What is no
    /// character becomes `notUtf8`.
    virtual std::string Take(std::vector<char>& bytes, bool isAtEnd) = 0;

    static constexpr char notUtf8 = '\xFF';
};

/// Null when this machine does not know the encoding.
std::unique_ptr<TextConversion> ConversionFrom(const std::string& encoding);

} // namespace qel::engine
