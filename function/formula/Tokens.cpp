#include "function/formula/Tokens.h"

#include "function/formula/FormulaError.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace qel {

namespace {

/// What may stand between two tokens besides the ASCII blanks: people paste formulas from cells, mails and
/// web pages, and Hebrew texts come with marks of direction.
constexpr std::array<std::string_view, 12> wideBlanks = {"\u00A0", "\u2007", "\u2009", "\u202F",
                                                         "\u200B", "\u200E", "\u200F", "\u202A",
                                                         "\u202B", "\u202C", "\u3000", "\uFEFF"};

struct WrongQuote {
    std::string_view quote;
    bool isSingle;
};

constexpr std::array<WrongQuote, 9> wrongQuotes = {{{"\u201C", false},
                                                    {"\u201D", false},
                                                    {"\u201E", false},
                                                    {"\u00AB", false},
                                                    {"\u00BB", false},
                                                    {"\u2018", true},
                                                    {"\u2019", true},
                                                    {"'", true},
                                                    {"`", true}}};

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

/// The bytes of the first character; 1 for a byte that begins none.
std::size_t CharacterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    std::size_t length = 1;
    if (first >= 0xF0) {
        length = 4;
    } else if (first >= 0xE0) {
        length = 3;
    } else if (first >= 0xC0) {
        length = 2;
    }
    return std::min(length, text.size());
}

std::size_t CountCharacters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::size_t BlankLength(std::string_view text) {
    if (std::string_view(" \t\r\n").find(text.front()) != std::string_view::npos) {
        return 1;
    }
    const auto found = std::find_if(wideBlanks.begin(), wideBlanks.end(),
                                    [&](std::string_view blank) { return text.starts_with(blank); });
    return found == wideBlanks.end() ? 0 : found->size();
}

} // namespace

std::string Describe(const Token& token) {
    switch (token.kind) {
    case TokenKind::Name:
        return fmt::format("the name {}", token.text);
    case TokenKind::Text:
        return fmt::format("the text \"{}\"", token.text);
    case TokenKind::Number:
        return fmt::format("the number {}", token.text);
    case TokenKind::Symbol:
        return fmt::format("'{}'", token.text);
    case TokenKind::End:
        break;
    }
    return "the end of the formula";
}

Token TokenReader::Next() {
    SkipBlanks();
    if (text_.empty()) {
        return {TokenKind::End, "", 0, position_};
    }
    const char first = text_.front();
    if (first == '"') {
        return ReadText();
    }
    if (IsNameStart(first)) {
        return ReadName();
    }
    if (IsDigit(first) || (first == '.' && text_.size() > 1 && IsDigit(text_[1]))) {
        return ReadNumber();
    }
    return ReadSymbol();
}

void TokenReader::Advance(std::size_t bytes) {
    position_ += CountCharacters(text_.substr(0, bytes));
    text_.remove_prefix(bytes);
}

void TokenReader::SkipBlanks() {
    while (!text_.empty()) {
        const auto length = BlankLength(text_);
        if (length == 0) {
            return;
        }
        Advance(length);
    }
}

Token TokenReader::ReadText() {
    Token token{TokenKind::Text, "", 0, position_};
    std::size_t place = 1;
    while (true) {
        const auto quote = text_.find('"', place);
        if (quote == std::string_view::npos) {
            throw FormulaError(token.position, "The text that begins here has no closing quote");
        }
        token.text += text_.substr(place, quote - place);
        if (quote + 1 >= text_.size() || text_[quote + 1] != '"') {
            Advance(quote + 1);
            return token;
        }
        token.text += '"';
        place = quote + 2;
    }
}

Token TokenReader::ReadName() {
    const auto isPart = [](char c) { return IsNameStart(c) || IsDigit(c) || c == '.'; };
    const auto end = std::find_if_not(text_.begin(), text_.end(), isPart);
    Token token{TokenKind::Name, std::string(text_.begin(), end), 0, position_};
    Advance(token.text.size());
    return token;
}

Token TokenReader::ReadNumber() {
    Token token{TokenKind::Number, "", 0, position_};
    const auto [end, failed] = std::from_chars(text_.data(), text_.data() + text_.size(), token.number);
    token.text.assign(text_.data(), end);
    if (failed != std::errc() || !std::isfinite(token.number)) {
        throw FormulaError(token.position, fmt::format("The number {} is out of range", token.text));
    }
    Advance(token.text.size());
    if (!text_.empty() && (IsNameStart(text_.front()) || IsDigit(text_.front()) || text_.front() == '.')) {
        throw FormulaError(token.position, fmt::format("'{}{}' is not a number", token.text, text_.front()));
    }
    return token;
}

Token TokenReader::ReadSymbol() {
    for (const auto& wrong : wrongQuotes) {
        if (text_.starts_with(wrong.quote)) {
            throw FormulaError(position_,
                               fmt::format("Texts stand between straight double quotes (\"); this is "
                                           "a {} quote: {}",
                                           wrong.isSingle ? "single" : "curly", wrong.quote));
        }
    }
    const auto length = CharacterLength(text_);
    if (length > 1 || std::string_view("=(){},;\\+-").find(text_.front()) == std::string_view::npos) {
        throw FormulaError(position_, fmt::format("Unexpected '{}'", text_.substr(0, length)));
    }
    Token token{TokenKind::Symbol, std::string(text_.substr(0, length)), 0, position_};
    Advance(length);
    return token;
}

} // namespace qel
