#include "engine/mdx/ExpressionParser.h"

#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

namespace qel::engine::mdx {

namespace {

/// More than people write, and safe on threads with small stacks.
constexpr int nestingLimit = 100;

struct OperatorToken {
    std::string_view word; ///< for TokenKind::Word
    TokenKind kind;
    Operator op;
};

/// Operators by precedence, from the lowest to the highest.
constexpr OperatorToken disjunction[] = {{"or", TokenKind::Word, Operator::Or},
                                         {"xor", TokenKind::Word, Operator::Xor}};
constexpr OperatorToken conjunction[] = {{"and", TokenKind::Word, Operator::And}};
constexpr OperatorToken comparison[] = {
    {"", TokenKind::Equal, Operator::Equal},     {"", TokenKind::NotEqual, Operator::NotEqual},
    {"", TokenKind::Less, Operator::Less},       {"", TokenKind::LessOrEqual, Operator::LessOrEqual},
    {"", TokenKind::Greater, Operator::Greater}, {"", TokenKind::GreaterOrEqual, Operator::GreaterOrEqual},
    {"is", TokenKind::Word, Operator::Is}};
constexpr OperatorToken concatenation[] = {{"", TokenKind::DoubleBar, Operator::Concatenate}};
constexpr OperatorToken addition[] = {{"", TokenKind::Plus, Operator::Add},
                                      {"", TokenKind::Minus, Operator::Subtract}};
constexpr OperatorToken multiplication[] = {{"", TokenKind::Star, Operator::Multiply},
                                            {"", TokenKind::Slash, Operator::Divide}};
constexpr std::array<std::span<const OperatorToken>, 6> precedences{
    disjunction, conjunction, comparison, concatenation, addition, multiplication};
constexpr std::size_t comparisonPrecedence = 2;
constexpr std::size_t concatenationPrecedence = 3;

NodeKind KindOfChain(std::size_t precedence) {
    return precedence == comparisonPrecedence      ? NodeKind::Comparison
           : precedence == concatenationPrecedence ? NodeKind::TextChain
                                                   : NodeKind::Chain;
}

std::string Found(const Token& token) {
    switch (token.kind) {
    case TokenKind::End:
        return "the end of the statement";
    case TokenKind::FormulaEnd:
        return "the end of the formula";
    case TokenKind::Name:
        return fmt::format("[{}]", token.text);
    case TokenKind::Text:
        return fmt::format("the text \"{}\"", token.text);
    default:
        return fmt::format("'{}'", token.text);
    }
}

} // namespace

/// Counts a nesting level; raises TooLarge beyond the limit.
class ExpressionParser::Nesting {
public:
    explicit Nesting(ExpressionParser& parser) : parser_(parser) { parser_.Descend(); }
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    ExpressionParser& parser_;
};

ExpressionParser::ExpressionParser(Statement& statement) : statement_(statement), lexer_(statement.source) {
    statement_.nodes.reserve(64);
    lastChild_.reserve(64);
    Advance();
}

NodeId ExpressionParser::ParseExpression(std::string_view expected) {
    const Nesting nesting(*this);
    if (IsAt("not")) {
        return ParseOperators(0, expected);
    }
    const NodeId operand = ParseRange(expected);
    return EndsExpression() ? operand : ParseOperators(0, expected, operand);
}

/// A fast test for tokens that end an expression.
bool ExpressionParser::EndsExpression() const {
    return IsAt(TokenKind::Comma) || IsAt(TokenKind::RightBrace) || IsAt(TokenKind::RightParenthesis) ||
           IsAt(TokenKind::FormulaEnd) || IsAt(TokenKind::End);
}

NodeId ExpressionParser::ParseOperators(std::size_t precedence, std::string_view expected, NodeId leftmost) {
    if (precedence == precedences.size()) {
        return leftmost == noNode ? ParseRange(expected) : leftmost;
    }
    if (leftmost == noNode && precedence == comparisonPrecedence && IsAt("not")) {
        const Nesting nesting(*this);
        const NodeId negated = NewNode(NodeKind::Not, current_.range);
        Advance();
        AddChild(negated, ParseOperators(precedence, "a condition"));
        return negated;
    }
    const NodeId first = ParseOperators(precedence + 1, expected, leftmost);
    NodeId chain = noNode;
    for (Operator op = TakeJoiner(precedence); op != Operator::None; op = TakeJoiner(precedence)) {
        if (chain == noNode) {
            chain = NewNode(KindOfChain(precedence), statement_.At(first).range);
            AddChild(chain, first);
        }
        const NodeId operand = ParseOperators(precedence + 1, "an operand");
        statement_.nodes[operand].joiner = op;
        AddChild(chain, operand);
        if (precedence == comparisonPrecedence && Joiner(precedence) != Operator::None) {
            Fail("AND, OR or the end of the comparison");
        }
    }
    return chain == noNode ? first : chain;
}

Operator ExpressionParser::Joiner(std::size_t precedence) const {
    for (const OperatorToken& token : precedences[precedence]) {
        if (token.kind == current_.kind && (token.word.empty() || IsWord(current_.text, token.word))) {
            return token.op;
        }
    }
    return Operator::None;
}

Operator ExpressionParser::TakeJoiner(std::size_t precedence) {
    const Operator op = Joiner(precedence);
    if (op != Operator::None) {
        Advance();
    }
    return op;
}

NodeId ExpressionParser::ParseRange(std::string_view expected) {
    const NodeId first = ParseSign(expected);
    if (!IsAt(TokenKind::Colon)) {
        return first;
    }
    const NodeId range = NewNode(NodeKind::Range, statement_.At(first).range);
    Advance();
    AddChild(range, first);
    AddChild(range, ParseSign("the last member of the range"));
    return range;
}

NodeId ExpressionParser::ParseSign(std::string_view expected) {
    if (Skip(TokenKind::Plus)) {
        const Nesting nesting(*this);
        return ParseSign("a number");
    }
    if (!IsAt(TokenKind::Minus)) {
        return ParsePostfix(expected);
    }
    const Nesting nesting(*this);
    const NodeId negation = NewNode(NodeKind::Negation, current_.range);
    Advance();
    AddChild(negation, ParseSign("a number"));
    return negation;
}

NodeId ExpressionParser::ParsePostfix(std::string_view expected) {
    return ParseMethods(ParsePrimary(expected));
}

NodeId ExpressionParser::ParsePrimary(std::string_view expected) {
    const Token token = current_;
    switch (token.kind) {
    case TokenKind::LeftBrace:
        return ParseSet();
    case TokenKind::LeftParenthesis:
        return ParseTuple();
    case TokenKind::Number:
    case TokenKind::Text: {
        const NodeKind kind = token.kind == TokenKind::Number ? NodeKind::Number : NodeKind::Text;
        const NodeId literal = NewNode(kind, token.range, DecodedText());
        Advance();
        return literal;
    }
    case TokenKind::Name:
        return ParsePath(expected);
    case TokenKind::Word:
        if (IsAt("case") && !lexer_.IsBefore(TokenKind::Dot)) {
            return ParseCase();
        }
        if (IsReserved(token.text)) {
            Fail(expected);
        }
        if (lexer_.IsBefore(TokenKind::LeftParenthesis)) {
            Advance();
            return ParseCall(token);
        }
        return ParsePath(expected);
    default:
        Fail(expected);
    }
}

NodeId ExpressionParser::ParseSet() {
    const NodeId set = NewNode(NodeKind::Set, current_.range);
    Advance();
    while (!IsAt(TokenKind::RightBrace)) {
        // Generated statements may contain empty elements: { , [a] }.
        if (Skip(TokenKind::Comma)) {
            continue;
        }
        AddChild(set, ParseElement("a member or a set"));
        if (!IsAt(TokenKind::Comma) && !IsAt(TokenKind::RightBrace)) {
            Fail("',' or '}'");
        }
    }
    Advance();
    return set;
}

NodeId ExpressionParser::ParseTuple() {
    const NodeId tuple = NewNode(NodeKind::Tuple, current_.range);
    Advance();
    do {
        AddChild(tuple, ParseElement("a member"));
    } while (Skip(TokenKind::Comma));
    Expect(TokenKind::RightParenthesis, "',' or ')'");
    return tuple;
}

/// An expression inside brackets, which may be a set with a name: set AS name.
NodeId ExpressionParser::ParseElement(std::string_view expected) {
    const NodeId element = ParseExpression(expected);
    if (!IsAt("as")) {
        return element;
    }
    Advance();
    if (!IsAt(TokenKind::Name) && (!IsAt(TokenKind::Word) || IsReserved(current_.text))) {
        Fail("the name of the set");
    }
    const NodeId alias = NewNode(NodeKind::Alias, current_.range, DecodedText());
    Advance();
    AddChild(alias, element);
    return alias;
}

NodeId ExpressionParser::ParseCase() {
    const Nesting nesting(*this);
    const NodeId node = NewNode(NodeKind::Case, current_.range);
    Advance();
    if (!IsAt("when")) {
        statement_.nodes[node].hasOperand = true;
        AddChild(node, ParseExpression("WHEN or a value"));
    }
    if (!IsAt("when")) {
        Fail("WHEN");
    }
    while (Skip("when")) {
        AddChild(node, ParseExpression("a condition or a value"));
        Expect("then");
        AddChild(node, ParseExpression("a value"));
    }
    if (Skip("else")) {
        statement_.nodes[node].hasElse = true;
        AddChild(node, ParseExpression("a value"));
    }
    if (!Skip("end")) {
        Fail("WHEN, ELSE or END");
    }
    return node;
}

NodeId ExpressionParser::ParseCall(const Token& name) {
    const NodeId call = NewNode(NodeKind::Call, name.range, name.text);
    ParseArguments(call);
    return call;
}

void ExpressionParser::ParseArguments(NodeId call) {
    Expect(TokenKind::LeftParenthesis, "'('");
    if (Skip(TokenKind::RightParenthesis)) {
        return;
    }
    do {
        const bool missing = IsAt(TokenKind::Comma) || IsAt(TokenKind::RightParenthesis);
        AddChild(call, missing ? NewNode(NodeKind::Missing, current_.range) : ParseElement("an argument"));
    } while (Skip(TokenKind::Comma));
    Expect(TokenKind::RightParenthesis, "',' or ')'");
}

NodeId ExpressionParser::ParsePath(std::string_view expected) {
    const NodeId path = NewNode(NodeKind::Path, current_.range);
    if (!IsAt(TokenKind::Name) && !(IsAt(TokenKind::Word) && !IsReserved(current_.text))) {
        Fail(expected);
    }
    ParsePart(path);
    while (IsAt(TokenKind::Dot) && !lexer_.IsBeforeMethod(statement_.At(path).childCount == 1)) {
        Advance();
        ParsePart(path);
    }
    statement_.nodes[path].range.end = statement_.At(lastChild_[path]).range.end;
    return path;
}

void ExpressionParser::ParsePart(NodeId path) {
    const SourceRange start = current_.range;
    const bool isKey = Skip(TokenKind::Ampersand);
    const bool isWord = IsAt(TokenKind::Word);
    if (!isWord && !IsAt(TokenKind::Name) && !(isKey && IsAt(TokenKind::Number))) {
        Fail("a name");
    }
    const NodeId part = NewNode(NodeKind::Part, {start.begin, current_.range.end}, DecodedText());
    statement_.nodes[part].isKey = isKey;
    statement_.nodes[part].isWord = isWord;
    Advance();
    AddChild(path, part);
}

NodeId ExpressionParser::ParseMethods(NodeId target) {
    const int outerNesting = nesting_;
    while (IsAt(TokenKind::Dot)) {
        Descend();
        Advance();
        if (!IsAt(TokenKind::Word) || !(IsMethod(current_.text) || IsSetNameMethod(current_.text))) {
            Fail("a function of a member or a set, such as Parent, Children or Members");
        }
        const NodeId method = NewNode(NodeKind::Method, current_.range, current_.text);
        Advance();
        AddChild(method, target);
        if (IsAt(TokenKind::LeftParenthesis)) {
            ParseArguments(method);
        }
        target = method;
    }
    nesting_ = outerNesting;
    return target;
}

void ExpressionParser::Descend() {
    if (++nesting_ > nestingLimit) {
        RaiseAt(ErrorKind::TooLarge, statement_.source, current_.range,
                fmt::format("more than {} expressions stand inside one another", nestingLimit));
    }
    deepest_ = std::max(deepest_, nesting_);
}

bool ExpressionParser::IsAt(std::string_view word) const {
    return current_.kind == TokenKind::Word && IsWord(current_.text, word);
}

bool ExpressionParser::Skip(std::string_view word) {
    const bool found = IsAt(word);
    if (found) {
        Advance();
    }
    return found;
}

bool ExpressionParser::Skip(TokenKind kind) {
    const bool found = IsAt(kind);
    if (found) {
        Advance();
    }
    return found;
}

void ExpressionParser::Expect(std::string_view word) {
    if (!Skip(word)) {
        Fail(word);
    }
}

void ExpressionParser::Expect(TokenKind kind, std::string_view what) {
    if (!Skip(kind)) {
        Fail(what);
    }
}

void ExpressionParser::Fail(std::string_view expected) const {
    RaiseAt(ErrorKind::SyntaxError, statement_.source, current_.range,
            fmt::format("expected {}, found {}", expected, Found(current_)));
}

bool ExpressionParser::IsAtProperty() const {
    if (!IsAt(TokenKind::Comma)) {
        return false;
    }
    Lexer ahead = lexer_;
    return ahead.Next().kind == TokenKind::Word && ahead.Next().kind == TokenKind::Equal;
}

std::string_view ExpressionParser::DecodedText() {
    std::string decoded;
    if ((current_.kind == TokenKind::Name || current_.kind == TokenKind::Text) &&
        lexer_.Decode(current_, decoded)) {
        return statement_.decoded.emplace_back(std::move(decoded));
    }
    return current_.text;
}

NodeId ExpressionParser::NewNode(NodeKind kind, SourceRange range, std::string_view text) {
    const auto id = static_cast<NodeId>(statement_.nodes.size());
    Node& node = statement_.nodes.emplace_back();
    node.kind = kind;
    node.range = range;
    node.text = text;
    lastChild_.push_back(noNode);
    return id;
}

void ExpressionParser::AddChild(NodeId parent, NodeId child) {
    Node& node = statement_.nodes[parent];
    ++node.childCount;
    if (node.firstChild == noNode) {
        node.firstChild = child;
    } else {
        statement_.nodes[lastChild_[parent]].next = child;
    }
    lastChild_[parent] = child;
}

} // namespace qel::engine::mdx
