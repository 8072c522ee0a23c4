#pragma once

#include "engine/mdx/SourceRange.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::engine::mdx {

enum class TokenKind : std::uint8_t {
    End,
    Word,       ///< a keyword, a function or a name without brackets
    Name,       ///< [a name]; the text is what stands between the brackets, still escaped
    Number,     ///< without a sign
    Text,       ///< "a text" or 'a text'; the text is what stands between the quotes, still escaped
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
    NotEqual
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::string_view text; ///< a view into the statement
    SourceRange range;
};

/// Cuts a statement into tokens, one at a time. Blanks and comments lie between tokens; so do no-break spaces
/// and the marks of writing direction that come along with pasted Hebrew.
///
/// A formula between single quotes is read in place, with every quote inside it doubled: places in errors
/// stay those of the statement, and nothing is copied. Raises EngineError (SyntaxError).
class Lexer {
public:
    explicit Lexer(std::string_view statement) : statement_(statement) {}

    Token Next();
    /// True when the next token is of this kind; does not consume it.
    bool IsBefore(TokenKind kind) const;
    /// True when the next token is a word that after a dot is no name: Members, Parent, ...
    bool IsBeforeMethod() const;
    /// True when a quote comes next; the lexer is then inside a formula until FormulaEnd.
    bool EnterFormula();
    /// The rest of the statement up to a word (which is not consumed) or the end, without blanks at the ends.
    Token RawUpTo(std::string_view word);
    /// The text of a Name or Text token with doubled brackets and quotes made single. True when it differs
    /// from the token's own text and was written to `decoded`.
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

    std::string_view statement_;
    std::size_t position_ = 0;
    bool inFormula_ = false;
};

} // namespace qel::engine::mdx
