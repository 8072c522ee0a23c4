#include "engine/mdx/Lexer.h"

#include "engine/mdx/ReservedWords.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <array>

namespace qel::engine::mdx {

namespace {

bool IsWordStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80U;
}
bool IsWordPart(char c) { return IsWordStart(c) || IsDigit(c) || c == '$'; }

SourceRange PlaceOf(std::size_t begin, std::size_t end) {
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
}

/// The byte length of the blank at the start of the text, or 0.
std::size_t BlankLength(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    if (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r')) {
        return 1;
    }
    // No-break space, byte order mark, left-to-right and right-to-left marks.
    for (const std::string_view blank : {"\xC2\xA0", "\xEF\xBB\xBF", "\xE2\x80\x8E", "\xE2\x80\x8F"}) {
        if (text.substr(0, blank.size()) == blank) {
            return blank.size();
        }
    }
    return 0;
}

} // namespace

Token Lexer::Next() {
    SkipBlanks();
    const char c = At(position_);
    if (position_ == statement_.size()) {
        return Take(TokenKind::End, 0);
    }
    if (c == '[') {
        return ReadName();
    }
    if (IsWordStart(c)) {
        return ReadWord();
    }
    if (IsDigit(c)) {
        return ReadNumber();
    }
    if (c == '"' || c == '\'') {
        return ReadText();
    }
    return ReadSymbol();
}

bool Lexer::IsBefore(TokenKind kind) const {
    Lexer ahead = *this;
    return ahead.Next().kind == kind;
}

bool Lexer::IsBeforeMethod(bool ofSetName) const {
    if (At(position_) == '[') {
        return false;
    }
    if (IsWordStart(At(position_)) || BlankLength(statement_.substr(position_, 3)) != 0) {
        Lexer ahead = *this;
        const Token token = ahead.Next();
        return token.kind == TokenKind::Word &&
               (IsMethod(token.text) || (ofSetName && IsSetNameMethod(token.text)));
    }
    return false;
}

bool Lexer::EnterFormula() {
    SkipBlanks();
    if (At(position_) != '\'') {
        return false;
    }
    ++position_;
    inFormula_ = true;
    return true;
}

Token Lexer::RawUpTo(std::string_view word, std::string_view other) {
    SkipBlanks();
    const std::size_t begin = position_;
    std::size_t end = begin;
    while (position_ < statement_.size()) {
        const std::size_t start = position_;
        if (!IsWordStart(At(position_))) {
            ++position_;
        } else if (const std::string_view found = ReadWord().text;
                   IsWord(found, word) || IsWord(found, other)) {
            position_ = start;
            break;
        }
        end = position_;
        SkipBlanks();
    }
    return {TokenKind::Word, statement_.substr(begin, end - begin), PlaceOf(begin, end)};
}

void Lexer::SkipBlanks() {
    while (position_ < statement_.size()) {
        // Fast path: most tokens follow directly or after single blanks.
        const char c = statement_[position_];
        if (c == ' ') {
            ++position_;
            continue;
        }
        if (c > ' ' && c != '-' && c != '/') {
            return;
        }
        const std::size_t blank = BlankLength(statement_.substr(position_, 3));
        if (blank == 0 && !SkipComment()) {
            return;
        }
        position_ += blank;
    }
}

bool Lexer::SkipComment() {
    const std::string_view start = statement_.substr(position_, 2);
    if (start == "--" || start == "//") {
        const std::size_t end = statement_.find_first_of("\r\n", position_);
        position_ = end == std::string_view::npos ? statement_.size() : end;
        return true;
    }
    if (start != "/*") {
        return false;
    }
    const std::size_t end = statement_.find("*/", position_ + 2);
    if (end == std::string_view::npos) {
        RaiseAt(ErrorKind::SyntaxError, source_, PlaceOf(position_, position_ + 2),
                "the comment that starts here has no closing \"*/\"");
    }
    position_ = end + 2;
    return true;
}

Token Lexer::ReadName() {
    const std::size_t begin = position_;
    std::size_t end = begin + 1;
    for (; end < statement_.size(); ++end) {
        if (statement_[end] == ']' && At(end + 1) != ']') {
            position_ = end + 1;
            return {TokenKind::Name, statement_.substr(begin + 1, end - begin - 1), PlaceOf(begin, end + 1)};
        }
        if (statement_[end] == ']') {
            ++end;
        } else if (inFormula_ && statement_[end] == '\'') {
            if (At(end + 1) != '\'') {
                break; // the formula ends inside the name
            }
            ++end;
        }
    }
    RaiseAt(ErrorKind::SyntaxError, source_, PlaceOf(begin, end),
            "the name that starts here has no closing \"]\"");
}

Token Lexer::ReadText() {
    const std::size_t begin = position_;
    const char quote = statement_[begin];
    if (inFormula_ && quote == '\'' && At(begin + 1) != '\'') {
        inFormula_ = false;
        return Take(TokenKind::FormulaEnd, 1);
    }
    // Inside a formula single quotes are doubled, so an escaped one takes four characters.
    const std::size_t width = inFormula_ && quote == '\'' ? 2 : 1;
    for (std::size_t end = begin + width; end < statement_.size();) {
        if (statement_[end] != quote) {
            end += 1;
            continue;
        }
        std::size_t run = end;
        while (At(run) == quote) {
            ++run;
        }
        const std::size_t quotes = (run - end) / width;
        if (quotes % 2 == 1) {
            const std::size_t close = end + (quotes - 1) * width;
            position_ = close + width;
            return {TokenKind::Text, statement_.substr(begin + width, close - begin - width),
                    PlaceOf(begin, position_)};
        }
        end = run;
    }
    RaiseAt(ErrorKind::SyntaxError, source_, PlaceOf(begin, statement_.size()),
            fmt::format("the text that starts here has no closing {}", quote));
}

Token Lexer::ReadNumber() {
    std::size_t end = position_;
    const auto skipDigits = [&] {
        while (IsDigit(At(end))) {
            ++end;
        }
    };
    skipDigits();
    if (At(end) == '.' && IsDigit(At(end + 1))) {
        ++end;
        skipDigits();
    }
    const bool hasExponent = At(end) == 'e' || At(end) == 'E';
    const std::size_t sign = hasExponent && (At(end + 1) == '+' || At(end + 1) == '-') ? 1 : 0;
    if (hasExponent && IsDigit(At(end + 1 + sign))) {
        end += 1 + sign;
        skipDigits();
    }
    return Take(TokenKind::Number, end - position_);
}

Token Lexer::ReadWord() {
    std::size_t end = position_;
    while (IsWordPart(At(end)) && (At(end) > 0 || BlankLength(statement_.substr(end, 3)) == 0)) {
        ++end;
    }
    return Take(TokenKind::Word, end - position_);
}

Token Lexer::ReadSymbol() {
    switch (At(position_)) {
    case '.':
        return Take(TokenKind::Dot, 1);
    case ',':
        return Take(TokenKind::Comma, 1);
    case '{':
        return Take(TokenKind::LeftBrace, 1);
    case '}':
        return Take(TokenKind::RightBrace, 1);
    case '(':
        return Take(TokenKind::LeftParenthesis, 1);
    case ')':
        return Take(TokenKind::RightParenthesis, 1);
    default:
        return ReadOperator();
    }
}

Token Lexer::ReadOperator() {
    struct Symbol {
        std::string_view text;
        TokenKind kind;
    };
    static constexpr std::array<Symbol, 14> symbols{{{"<>", TokenKind::NotEqual},
                                                     {"||", TokenKind::DoubleBar},
                                                     {"<=", TokenKind::LessOrEqual},
                                                     {">=", TokenKind::GreaterOrEqual},
                                                     {":", TokenKind::Colon},
                                                     {"&", TokenKind::Ampersand},
                                                     {"+", TokenKind::Plus},
                                                     {"-", TokenKind::Minus},
                                                     {"*", TokenKind::Star},
                                                     {"/", TokenKind::Slash},
                                                     {"<", TokenKind::Less},
                                                     {">", TokenKind::Greater},
                                                     {"=", TokenKind::Equal},
                                                     {"!=", TokenKind::NotEqual}}};
    for (const Symbol& symbol : symbols) {
        if (statement_.substr(position_, symbol.text.size()) == symbol.text) {
            return Take(symbol.kind, symbol.text.size());
        }
    }
    const char c = statement_[position_];
    const bool printable = c > ' ' && c < '\x7F';
    RaiseAt(ErrorKind::SyntaxError, source_, PlaceOf(position_, position_ + 1),
            printable ? fmt::format("unexpected character '{}'", c)
                      : fmt::format("unexpected character number {}", static_cast<int>(c)));
}

Token Lexer::Take(TokenKind kind, std::size_t length) {
    const std::size_t begin = position_;
    position_ += length;
    return {kind, statement_.substr(begin, length), PlaceOf(begin, position_)};
}

bool Lexer::Decode(const Token& token, std::string& decoded) const {
    const char quote = token.kind == TokenKind::Name ? ']' : statement_[token.range.begin];
    const bool doubleQuotes = inFormula_;
    if (token.text.find(quote) == std::string_view::npos &&
        (!doubleQuotes || token.text.find('\'') == std::string_view::npos)) {
        return false;
    }
    const auto halve = [](std::string_view text, char doubled) {
        std::string halved;
        for (std::size_t i = 0; i < text.size(); ++i) {
            halved += text[i];
            i += text[i] == doubled && i + 1 < text.size() && text[i + 1] == doubled ? 1U : 0U;
        }
        return halved;
    };
    decoded = doubleQuotes ? halve(token.text, '\'') : std::string(token.text);
    decoded = halve(decoded, quote);
    return true;
}

} // namespace qel::engine::mdx
