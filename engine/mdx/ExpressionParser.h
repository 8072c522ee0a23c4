#pragma once

#include "engine/mdx/Ast.h"
#include "engine/mdx/Lexer.h"

#include <string_view>
#include <utility>

namespace qel::engine::mdx {

/// Parses expressions. Sets, tuples, members, numbers, texts and conditions share one grammar; the binder
/// decides which of them is valid where.
class ExpressionParser {
public:
    explicit ExpressionParser(Statement& statement);

    /// Parses one expression. `expected` names it in error messages.
    NodeId ParseExpression(std::string_view expected);
    /// Parses a dotted name without methods.
    NodeId ParsePath(std::string_view expected);

    const Token& Current() const { return current_; }
    /// Whether the current token is this keyword.
    bool IsAt(std::string_view word) const;
    bool IsAt(TokenKind kind) const { return current_.kind == kind; }
    /// Moves to the next token.
    void Advance() { current_ = lexer_.Next(); }
    bool Skip(std::string_view word);
    bool Skip(TokenKind kind);
    void Expect(std::string_view word);
    void Expect(TokenKind kind, std::string_view what);
    /// Raises a SyntaxError at the current token.
    [[noreturn]] void Fail(std::string_view expected) const;
    /// The current token's text, unescaped.
    std::string_view DecodedText();
    Lexer& Source() { return lexer_; }
    /// Whether a comma, a word and "=" come next: a property of a calculated member.
    bool IsAtProperty() const;
    /// How many expressions stood inside one another at most since this was last asked.
    int TakeDepth() { return std::exchange(deepest_, 0); }

private:
    class Nesting;

    /// `leftmost` is the first operand if it was already parsed.
    NodeId ParseOperators(std::size_t precedence, std::string_view expected, NodeId leftmost = noNode);
    bool EndsExpression() const;
    NodeId ParseRange(std::string_view expected);
    NodeId ParseSign(std::string_view expected);
    NodeId ParsePostfix(std::string_view expected);
    NodeId ParsePrimary(std::string_view expected);
    NodeId ParseElement(std::string_view expected);
    NodeId ParseCase();
    NodeId ParseSet();
    NodeId ParseTuple();
    NodeId ParseCall(const Token& name);
    void ParsePart(NodeId path);
    NodeId ParseMethods(NodeId target);
    void ParseArguments(NodeId call);
    /// One step down; raises TooLarge when the limit is passed.
    void Descend();

    NodeId NewNode(NodeKind kind, SourceRange range, std::string_view text = {});
    void AddChild(NodeId parent, NodeId child);
    /// The current token as an operator of this precedence, or None.
    Operator Joiner(std::size_t precedence) const;
    Operator TakeJoiner(std::size_t precedence);

    Statement& statement_;
    Lexer lexer_;
    Token current_;
    std::vector<NodeId> lastChild_; ///< by node, to append children in constant time
    int nesting_ = 0;
    int deepest_ = 0;
};

} // namespace qel::engine::mdx
