#include "text/ShownText.h"

#include "text/CaseFold.h"

namespace qel {

namespace {

constexpr std::string_view notUtf8 = "\xEF\xBF\xBD";

/// The length of the character with this first byte; 0 for a byte that is no first byte.
std::size_t LengthFrom(unsigned char byte) {
    if (byte < 0x80) {
        return 1;
    }
    if (byte < 0xC2 || byte > 0xF4) {
        return 0;
    }
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

bool IsControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character.front());
    return (character.size() == 1 && (first < 0x20 || first == 0x7F)) ||
           (character >= "\xC2\x80" && character <= "\xC2\x9F"); // U+0080 to U+009F
}

bool ReordersText(std::string_view character) {
    return (character >= "\xE2\x80\xAA" && character <= "\xE2\x80\xAE") || // U+202A to U+202E
           (character >= "\xE2\x81\xA6" && character <= "\xE2\x81\xA9");   // U+2066 to U+2069
}

} // namespace

void ShownText::Append(std::string_view bytes, std::string& shown) {
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xC0U) == 0x80U;
        if (!unfinished_.empty() && !continues) {
            shown += notUtf8;
            unfinished_.clear();
        }
        if (unfinished_.empty()) {
            length_ = LengthFrom(byte);
        }
        if (length_ == 0) {
            shown += notUtf8;
            continue;
        }
        unfinished_ += c;
        if (unfinished_.size() == length_) {
            AppendFinished(shown);
        }
    }
}

void ShownText::AppendFinished(std::string& shown) {
    const bool isKept = lines_ == Lines::Keep && (unfinished_ == "\n" || unfinished_ == "\t");
    if (!IsValidUtf8(unfinished_)) {
        shown += notUtf8;
    } else if (!isKept && IsControl(unfinished_)) {
        shown += ' ';
    } else if (!ReordersText(unfinished_)) {
        shown += unfinished_;
    }
    unfinished_.clear();
}

std::string OnOneShownLine(std::string_view text) {
    ShownText filter(ShownText::Lines::Join);
    std::string shown;
    filter.Append(text, shown);
    return filter.HasUnfinished() ? shown.append(notUtf8) : shown;
}

} // namespace qel
