#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// Makes text of foreign servers, files and cubes harmless where people see it. Control characters become
/// blanks, bytes that are not UTF-8 become U+FFFD, and characters that reorder the text around them (U+202A
/// to U+202E, U+2066 to U+2069) are left out. Marks that only give a direction of their own (U+200E, U+200F,
/// U+061C), as Hebrew texts have them, stay.
class ShownText {
public:
    enum class Lines { Keep, Join }; ///< line ends and tabs stay, or become blanks

    explicit ShownText(Lines lines) : lines_(lines) {}

    /// Appends what can be shown; a character that is not complete yet is kept back.
    void Append(std::string_view bytes, std::string& shown);
    /// Whether the text ended within a character, which then counts as not UTF-8.
    bool HasUnfinished() const { return !unfinished_.empty(); }

private:
    void AppendFinished(std::string& shown);

    Lines lines_;
    std::string unfinished_; ///< the bytes of a character whose end has not come
    std::size_t length_ = 0; ///< of that character
};

/// The whole text on one line.
std::string OnOneShownLine(std::string_view text);

} // namespace qel
