#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qel {

enum class TokenKind : std::uint8_t { Name, Text, Number, Symbol, End };

/// One word of a formula.
struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;         ///< a name as written, a text without its quotes, a symbol's one character
    double number = 0;        ///< of a Number
    std::size_t position = 0; ///< in characters from 1

    bool IsSymbol(char symbol) const { return kind == TokenKind::Symbol && text.front() == symbol; }
};

/// What a person sees of a token in a message: "',' ", "the text \"4000\"", "the end of the formula".
std::string Describe(const Token& token);

/// Cuts a formula into tokens, one at a time. Blanks of every kind between tokens are skipped, no-break
/// blanks and the marks of writing direction among them.
class TokenReader {
public:
    explicit TokenReader(std::string_view text) : text_(text) {}

    /// The next token; End at the end, as often as asked. Raises FormulaError.
    Token Next();

private:
    void SkipBlanks();
    Token ReadText();
    Token ReadName();
    Token ReadNumber();
    Token ReadSymbol();
    void Advance(std::size_t bytes);

    std::string_view text_; ///< what is still to be read
    std::size_t position_ = 1;
};

} // namespace qel
