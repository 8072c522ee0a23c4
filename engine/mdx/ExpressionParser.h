#pragma once

#include "engine/mdx/Ast.h"
#include "engine/mdx/Lexer.h"

#include <string_view>
#include <utility>

namespace qel::engine::mdx {

/// Parses expressions: sets, tuples, members, numbers, texts and conditions share one grammar; which of them
/// a place takes is decided when names are resolved.
class ExpressionParser {
public:
    explicit ExpressionParser(Statement& statement);

    /// One expression; `expected` says in an error what should have stood here.
    NodeId ParseExpression(std::string_view expected);
    /// A dotted name without methods.
    NodeId ParsePath(std::string_view expected);

    const Token& Current() const { return current_; }
    /// True when the current token is this word of the language.
    bool IsAt(std::string_view word) const;
    bool IsAt(TokenKind kind) const { return current_.kind == kind; }
    /// Goes to the next token.
    void Advance() { current_ = lexer_.Next(); }
    bool Skip(std::string_view word);
    bool Skip(TokenKind kind);
    void Expect(std::string_view word);
    void Expect(TokenKind kind, std::string_view what);
    /// Raises a SyntaxError at the current token.
    [[noreturn]] void Fail(std::string_view expected) const;
    /// The current token's text, with doubled brackets and quotes made single.
    std::string_view DecodedText();
    Lexer& Source() { return lexer_; }
    /// True when a comma, a word and "=" come next: a property of a calculated member.
    bool IsAtProperty() const;
    /// How many expressions stood inside one another at most since this was last asked.
    int TakeDepth() { return std::exchange(deepest_, 0); }

private:
    class Nesting;

    /// `leftmost` is the first operand when it was read already.
    NodeId ParseOperators(std::size_t precedence, std::string_view expected, NodeId leftmost = noNode);
    bool EndsExpression() const;
    NodeId ParseRange(std::string_view expected);
    NodeId ParseSign(std::string_view expected);
    NodeId ParsePostfix(std::string_view expected);
    NodeId ParsePrimary(std::string_view expected);
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
    /// The operator of this precedence that the current token is, or None.
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
