#include "text/CaseFold.h"

#include "text/CaseRanges.h"
#include "text/UpperCase.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace qel {

namespace {

constexpr unsigned char firstContinuationByte = 0x80;
constexpr unsigned char lastContinuationByte = 0xBF;

/// A character of a text: its code point and its bytes; zero bytes when the text is not UTF-8 at that place.
struct Decoded {
    char32_t codePoint = 0;
    std::size_t bytes = 0;
};

struct LeadByte {
    std::size_t bytes = 0;
    char32_t bits = 0;
    // The range of the second byte excludes overlong forms, surrogates and code points past the last plane.
    unsigned char secondFirst = firstContinuationByte, secondLast = lastContinuationByte;
};

LeadByte ReadLeadByte(unsigned char byte) {
    if (byte < 0x80) {
        return {1, byte};
    }
    if (byte < 0xC2 || byte > 0xF4) {
        return {};
    }
    if (byte < 0xE0) {
        return {2, byte & 0x1FU};
    }
    const unsigned char lowest = byte == 0xE0 ? 0xA0 : byte == 0xF0 ? 0x90 : firstContinuationByte;
    const unsigned char highest = byte == 0xED ? 0x9F : byte == 0xF4 ? 0x8F : lastContinuationByte;
    if (byte < 0xF0) {
        return {3, byte & 0x0FU, lowest, highest};
    }
    return {4, byte & 0x07U, lowest, highest};
}

Decoded DecodeAt(std::string_view text, std::size_t position) {
    const LeadByte lead = ReadLeadByte(static_cast<unsigned char>(text[position]));
    if (lead.bytes == 0 || text.size() - position < lead.bytes) {
        return {};
    }
    char32_t codePoint = lead.bits;
    for (std::size_t i = 1; i < lead.bytes; ++i) {
        const auto byte = static_cast<unsigned char>(text[position + i]);
        const unsigned char lowest = i == 1 ? lead.secondFirst : firstContinuationByte;
        const unsigned char highest = i == 1 ? lead.secondLast : lastContinuationByte;
        if (byte < lowest || byte > highest) {
            return {};
        }
        codePoint = codePoint << 6U | (byte & 0x3FU);
    }
    return {codePoint, lead.bytes};
}

char32_t LowerCase(char32_t codePoint) {
    const auto* range = std::lower_bound(std::begin(caseRanges), std::end(caseRanges), codePoint,
                                         [](const CaseRange& r, char32_t c) { return r.last < c; });
    if (range == std::end(caseRanges) || codePoint < range->first ||
        (codePoint - range->first) % range->step != 0) {
        return codePoint;
    }
    return static_cast<char32_t>(static_cast<std::int32_t>(codePoint) + range->delta);
}

/// For the lower-case letters of the table: ASCII up to three bytes.
void AppendUtf8(char32_t codePoint, std::string& text) {
    const auto continuation = [](char32_t bits) { return static_cast<char>(0x80U | (bits & 0x3FU)); };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0U | codePoint >> 6U);
        text += continuation(codePoint);
    } else {
        text += static_cast<char>(0xE0U | codePoint >> 12U);
        text += continuation(codePoint >> 6U);
        text += continuation(codePoint);
    }
}

/// The length of the run of ASCII at `position`, counted in whole words of eight bytes.
std::size_t AsciiWords(std::string_view text, std::size_t position) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::size_t end = position;
    for (std::uint64_t word = 0; text.size() - end >= sizeof word; end += sizeof word) {
        std::memcpy(&word, text.data() + end, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
    }
    return end - position;
}

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

/// Appends one character that is not ASCII, or one stray byte, and returns its length in the source.
std::size_t AppendFoldedCharacter(std::string_view text, std::size_t position, std::string& folded) {
    const Decoded character = DecodeAt(text, position);
    const std::size_t bytes = std::max<std::size_t>(character.bytes, 1);
    const char32_t lower = LowerCase(character.codePoint);
    if (character.bytes == 0 || lower == character.codePoint) {
        folded.append(text, position, bytes);
    } else {
        AppendUtf8(lower, folded);
    }
    return bytes;
}

/// The upper-case letter of the table, or the character itself. Two upper-case letters whose lower-case one
/// has another upper case are left out.
char32_t UpperCase(char32_t codePoint) {
    constexpr char32_t dottedI = 0x0130, sharpS = 0x1E9E;
    for (const CaseRange& range : caseRanges) {
        const auto upper = static_cast<char32_t>(static_cast<std::int32_t>(codePoint) - range.delta);
        if (upper >= range.first && upper <= range.last && (upper - range.first) % range.step == 0 &&
            upper != dottedI && upper != sharpS) {
            return upper;
        }
    }
    return codePoint;
}

/// Appends the character `bytes` in upper case.
void AppendUpper(char32_t codePoint, std::string_view bytes, std::string& text) {
    if (bytes.size() == 1) {
        text += bytes[0] >= 'a' && bytes[0] <= 'z' ? static_cast<char>(bytes[0] - ('a' - 'A')) : bytes[0];
        return;
    }
    const char32_t upper = UpperCase(codePoint);
    if (upper == codePoint) {
        text += bytes;
    } else {
        AppendUtf8(upper, text);
    }
}

} // namespace

void AppendFolded(std::string_view text, std::string& folded) {
    folded.reserve(folded.size() + text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (IsAscii(text[i])) {
            folded += LowerAscii(text[i++]);
        } else {
            i += AppendFoldedCharacter(text, i, folded);
        }
    }
}

std::string FoldCase(std::string_view text) {
    std::string folded;
    AppendFolded(text, folded);
    return folded;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    std::size_t i = 0;
    for (; i < left.size() && i < right.size() && IsAscii(left[i]) && IsAscii(right[i]); ++i) {
        if (LowerAscii(left[i]) != LowerAscii(right[i])) {
            return false;
        }
    }
    if (i == left.size() && i == right.size()) {
        return true;
    }
    return FoldCase(left.substr(i)) == FoldCase(right.substr(i));
}

bool IsValidUtf8(std::string_view text) {
    for (std::size_t i = AsciiWords(text, 0); i < text.size();) {
        const std::size_t bytes = DecodeAt(text, i).bytes;
        if (bytes == 0) {
            return false;
        }
        i += bytes;
        i += AsciiWords(text, i);
    }
    return true;
}

std::string UpperCase(std::string_view text) {
    std::string upper;
    upper.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const Decoded character = DecodeAt(text, i);
        if (character.bytes == 0) {
            upper += text[i++];
            continue;
        }
        AppendUpper(character.codePoint, text.substr(i, character.bytes), upper);
        i += character.bytes;
    }
    return upper;
}

} // namespace qel
