#include "engine/build/TextConversion.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <windows.h>

namespace qel::engine {

namespace {

void AppendUtf8(std::string& text, const wchar_t* units, int count) {
    std::array<char, 8> bytes = {};
    const int length = ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, units, count, bytes.data(),
                                             static_cast<int>(bytes.size()), nullptr, nullptr);
    if (length > 0) {
        text.append(bytes.data(), static_cast<std::size_t>(length));
    } else {
        text += TextConversion::notUtf8;
    }
}

class Utf16Conversion : public TextConversion {
public:
    /// Without an order of bytes the text's mark tells it.
    explicit Utf16Conversion(std::optional<bool> isBigEndian) : isBigEndian_(isBigEndian) {}

    std::string Take(std::vector<char>& bytes, bool isAtEnd) override {
        std::string text;
        std::size_t at = 0;
        if (!isBigEndian_ && bytes.size() >= 2) {
            isBigEndian_ = bytes[0] == '\xFE' && bytes[1] == '\xFF';
            at = *isBigEndian_ || UnitAt(bytes, 0) == 0xFEFF ? 2 : 0;
        }
        for (; bytes.size() - at >= 2; at += 2) {
            const std::array<wchar_t, 2> pair = {UnitAt(bytes, at),
                                                 bytes.size() - at >= 4 ? UnitAt(bytes, at + 2) : wchar_t{0}};
            const bool isPair = IS_SURROGATE_PAIR(pair[0], pair[1]);
            if (IS_HIGH_SURROGATE(pair[0]) && bytes.size() - at < 4 && !isAtEnd) {
                break; // the rest of the character is in the next chunk
            }
            AppendUtf8(text, pair.data(), isPair ? 2 : 1);
            at += isPair ? 2 : 0;
        }
        if (isAtEnd && at < bytes.size()) {
            text += notUtf8;
            at = bytes.size();
        }
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        return text;
    }

private:
    wchar_t UnitAt(const std::vector<char>& bytes, std::size_t at) const {
        const auto byte = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
        const bool isBig = isBigEndian_.value_or(false);
        return static_cast<wchar_t>(byte(at + (isBig ? 1 : 0)) | byte(at + (isBig ? 0 : 1)) << 8U);
    }

    std::optional<bool> isBigEndian_;
};

/// A code page whose characters have one byte or two.
class CodePageConversion : public TextConversion {
public:
    explicit CodePageConversion(UINT codePage) : codePage_(codePage) {}

    std::string Take(std::vector<char>& bytes, bool isAtEnd) override {
        std::string text;
        std::size_t at = 0;
        while (at < bytes.size()) {
            const bool isPair = ::IsDBCSLeadByteEx(codePage_, static_cast<BYTE>(bytes[at])) != FALSE;
            if (isPair && at + 1 == bytes.size() && !isAtEnd) {
                break; // the rest of the character is in the next chunk
            }
            const std::size_t length = isPair && at + 1 < bytes.size() ? 2 : 1;
            const std::string character = Character(bytes.data() + at, length);
            text += character;
            at += character.front() == notUtf8 ? 1 : length;
        }
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        return text;
    }

private:
    std::string Character(const char* bytes, std::size_t count) {
        if (count > 1) {
            return Converted(bytes, count);
        }
        std::string& known = known_[static_cast<unsigned char>(*bytes)];
        if (known.empty()) {
            known = Converted(bytes, count);
        }
        return known;
    }

    std::string Converted(const char* bytes, std::size_t count) const {
        std::array<wchar_t, 4> units = {};
        const int length =
            ::MultiByteToWideChar(codePage_, MB_ERR_INVALID_CHARS, bytes, static_cast<int>(count),
                                  units.data(), static_cast<int>(units.size()));
        std::string text;
        if (length > 0 && !IsUnassigned(units[0])) {
            AppendUtf8(text, units.data(), length);
        }
        return text.empty() ? std::string(1, notUtf8) : text;
    }

    /// The system has something for every byte of its own code pages.
    bool IsUnassigned(wchar_t unit) const {
        const bool isControl = unit >= 0x80 && unit < 0xA0;
        const bool isPrivate = unit >= 0xE000 && unit < 0xF900;
        const bool isOfWindows = codePage_ == 874 || (codePage_ >= 1250 && codePage_ <= 1258);
        return isPrivate || (isControl && isOfWindows);
    }

    UINT codePage_;
    std::array<std::string, 256> known_; ///< of single bytes; empty until it is asked for
};

/// The number that follows the prefix and nothing else; 0 for another text.
UINT NumberAfter(std::string_view text, std::string_view prefix) {
    UINT number = 0;
    if (text.starts_with(prefix)) {
        text.remove_prefix(prefix.size());
        const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
        number = failed == std::errc() && end == text.data() + text.size() ? number : 0;
    }
    return number;
}

/// 0 for a name that is not known.
UINT CodePageOf(std::string_view name) {
    for (const std::string_view prefix : {"windows-", "cp", "ibm", "ms-"}) {
        if (const UINT number = NumberAfter(name, prefix)) {
            return number;
        }
    }
    for (const std::string_view prefix : {"iso-8859-", "iso8859-", "iso_8859-"}) {
        constexpr UINT beforeFirst = 28590, last = 16;
        if (const UINT part = NumberAfter(name, prefix); part > 0 && part <= last) {
            return beforeFirst + part;
        }
    }
    constexpr struct {
        std::string_view name;
        UINT codePage;
    } others[] = {{"latin1", 28591},  {"hebrew", 28598},   {"ascii", 20127}, {"us-ascii", 20127},
                  {"koi8-r", 20866},  {"koi8-u", 21866},   {"big5", 950},    {"gbk", 936},
                  {"shift_jis", 932}, {"macintosh", 10000}};
    const auto* const found = std::find_if(std::begin(others), std::end(others),
                                           [&](const auto& other) { return other.name == name; });
    return found == std::end(others) ? 0 : found->codePage;
}

} // namespace

std::unique_ptr<TextConversion> ConversionFrom(const std::string& encoding) {
    const std::string name = FoldCase(encoding);
    if (name == "utf-16" || name == "utf16") {
        return std::make_unique<Utf16Conversion>(std::nullopt);
    }
    if (name == "utf-16le" || name == "utf-16be") {
        return std::make_unique<Utf16Conversion>(name == "utf-16be");
    }
    const UINT codePage = CodePageOf(name);
    CPINFO info = {};
    const bool isKnown = codePage != 0 && ::GetCPInfo(codePage, &info) != FALSE && info.MaxCharSize <= 2;
    return isKnown ? std::make_unique<CodePageConversion>(codePage) : nullptr;
}

} // namespace qel::engine
