#pragma once

#include "engine/mdx/SourceRange.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::engine::mdx {

enum class TokenKind : std::uint8_t {
    End,
    Word,       ///< a keyword, a function or a name without brackets
    Name,       ///< [a name]; the text between the brackets, still escaped
    Number,     ///< unsigned
    Text,       ///< "a text" or 'a text'; the text between the quotes, still escaped
    FormulaEnd, ///< the quote that closes a calculated member's formula
    LeftBrace,
    RightBrace,
    LeftParenthesis,
    RightParenthesis,
    Comma,
    Dot,
    Colon,
    Ampersand,
    Plus,
    Minus,
    Star,
    Slash,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Equal,
    NotEqual,
    DoubleBar
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::string_view text; ///< a view into the statement
    SourceRange range;
};

/// Splits a statement into tokens, one at a time. Skips blanks, comments, no-break spaces and the directional
/// marks that come with pasted Hebrew.
///
/// A formula between single quotes is tokenised in place, with its inner quotes doubled, so that error
/// positions refer to the statement and nothing is copied. Raises EngineError (SyntaxError).
class Lexer {
public:
    explicit Lexer(const Source& source) : source_(source), statement_(source.text) {}

    Token Next();
    /// Whether the next token is of this kind. Does not consume it.
    bool IsBefore(TokenKind kind) const;
    /// Whether the next token is a word that names a method after a dot: Members, Parent, ...
    /// With `ofSetName` also Current and CurrentOrdinal, which elsewhere are names.
    bool IsBeforeMethod(bool ofSetName) const;
    /// Enters a formula when a quote comes next, until FormulaEnd. Returns whether it did.
    bool EnterFormula();
    /// The trimmed text up to one of two words, which is not consumed, or to the end of the statement.
    Token RawUpTo(std::string_view word, std::string_view other);
    /// Unescapes a Name or Text token. Returns whether that changed the text, which is then in `decoded`.
    bool Decode(const Token& token, std::string& decoded) const;
    std::string_view Statement() const { return statement_; }

private:
    void SkipBlanks();
    bool SkipComment();
    Token ReadName();
    Token ReadText();
    Token ReadNumber();
    Token ReadWord();
    Token ReadSymbol();
    Token ReadOperator();
    Token Take(TokenKind kind, std::size_t length);
    char At(std::size_t offset) const { return offset < statement_.size() ? statement_[offset] : '\0'; }

    Source source_;
    std::string_view statement_; ///< the source's text
    std::size_t position_ = 0;
    bool inFormula_ = false;
};

} // namespace qel::engine::mdx
