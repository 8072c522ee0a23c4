#include "engine/mdx/Parser.h"

#include "engine/mdx/ExpressionParser.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace qel::engine::mdx {

namespace {

constexpr std::size_t lengthLimit = 16U << 20U;
constexpr std::size_t axisLimit = 16;

/// Parses the clauses around the expressions.
class StatementParser {
public:
    explicit StatementParser(Statement& statement) : statement_(statement), expressions_(statement) {}

    void Parse();

private:
    void ParseDrillthrough();
    std::uint64_t ParseRowNumber();
    void ParseReturn();
    void ParseDefinitions();
    void ParseMember();
    void ParseNamedSet();
    /// Parses the formula after AS, in single quotes or bare.
    void ParseFormula(Definition& definition);
    void ParseProperties(Definition& definition);
    void ParseAxes();
    void ParseAxis();
    std::size_t ParseAxisNumber();
    void ParseCube();
    void ParseSlicer();
    /// Skips PROPERTIES a, b.c: accepted and ignored.
    void SkipPropertyList();

    Statement& statement_;
    ExpressionParser expressions_;
};

void StatementParser::Parse() {
    if (expressions_.Skip("drillthrough")) {
        ParseDrillthrough();
    }
    if (expressions_.Skip("with")) {
        ParseDefinitions();
    }
    if (!expressions_.IsAt("select")) {
        expressions_.Fail(statement_.definitions.empty() ? "SELECT or WITH" : "MEMBER, SET or SELECT");
    }
    expressions_.Advance();
    ParseAxes();
    ParseCube();
    ParseSlicer();
    if (expressions_.Skip("cell")) {
        SkipPropertyList();
    }
    if (statement_.drillthrough && expressions_.Skip("return")) {
        ParseReturn();
    }
    if (!expressions_.IsAt(TokenKind::End)) {
        expressions_.Fail("the end of the statement");
    }
}

void StatementParser::ParseDrillthrough() {
    DrillthroughClause& clause = statement_.drillthrough.emplace();
    if (expressions_.Skip("maxrows")) {
        clause.mostRows = ParseRowNumber();
    }
    if (expressions_.Skip("firstrowset")) {
        clause.firstRow = std::max<std::uint64_t>(1, ParseRowNumber());
    }
}

std::uint64_t StatementParser::ParseRowNumber() {
    const std::string_view digits = expressions_.Current().text;
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (!expressions_.IsAt(TokenKind::Number) || error != std::errc() ||
        end != digits.data() + digits.size()) {
        expressions_.Fail("a whole number of rows");
    }
    expressions_.Advance();
    return number;
}

void StatementParser::ParseReturn() {
    do {
        statement_.drillthrough->columns.push_back(expressions_.ParseExpression("a column"));
    } while (expressions_.Skip(TokenKind::Comma));
}

void StatementParser::ParseDefinitions() {
    do {
        if (expressions_.Skip("member")) {
            ParseMember();
        } else if (expressions_.Skip("set")) {
            ParseNamedSet();
        } else {
            expressions_.Fail("MEMBER or SET");
        }
        expressions_.Skip(TokenKind::Comma);
    } while (expressions_.IsAt("member") || expressions_.IsAt("set"));
}

void StatementParser::ParseMember() {
    Definition definition;
    definition.name = expressions_.ParsePath("the name of the calculated member");
    ParseFormula(definition);
    ParseProperties(definition);
    statement_.definitions.push_back(definition);
}

void StatementParser::ParseNamedSet() {
    Definition definition;
    definition.isSet = true;
    definition.name = expressions_.ParsePath("the name of the set");
    ParseFormula(definition);
    statement_.definitions.push_back(definition);
}

void StatementParser::ParseFormula(Definition& definition) {
    if (!expressions_.IsAt("as")) {
        expressions_.Fail("AS");
    }
    const bool quoted = expressions_.Source().EnterFormula();
    expressions_.Advance();
    expressions_.TakeDepth();
    definition.formula = expressions_.ParseExpression("an expression");
    definition.depth = expressions_.TakeDepth();
    if (quoted) {
        expressions_.Expect(TokenKind::FormulaEnd, "the end of the formula");
    }
}

void StatementParser::ParseProperties(Definition& definition) {
    while (expressions_.IsAtProperty()) {
        expressions_.Advance();
        const bool isSolveOrder = expressions_.IsAt("solve_order");
        expressions_.Advance();
        expressions_.Advance();
        const SourceRange range = expressions_.Current().range;
        if (!isSolveOrder) {
            expressions_.ParseExpression("the property's value");
            continue;
        }
        const std::string_view sign = expressions_.Skip(TokenKind::Minus) ? "-" : "";
        const std::string digits = fmt::format("{}{}", sign, expressions_.Current().text);
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), definition.solveOrder);
        if (!expressions_.IsAt(TokenKind::Number) || error != std::errc() ||
            end != digits.data() + digits.size()) {
            RaiseAt(ErrorKind::SyntaxError, statement_.source, range, "the solve order is no whole number");
        }
        expressions_.Advance();
    }
}

void StatementParser::ParseAxes() {
    if (expressions_.IsAt("from")) {
        return;
    }
    do {
        ParseAxis();
    } while (expressions_.Skip(TokenKind::Comma));
    for (std::size_t i = 0; i < statement_.axes.size(); ++i) {
        if (statement_.axes[i].set == noNode) {
            RaiseAt(ErrorKind::SyntaxError, statement_.source, expressions_.Current().range,
                    fmt::format("the statement has axis {} but no axis {}", statement_.axes.size() - 1, i));
        }
    }
}

void StatementParser::ParseAxis() {
    AxisClause axis;
    if (expressions_.Skip("non")) {
        expressions_.Expect("empty");
        axis.nonEmpty = true;
    }
    const SourceRange range = expressions_.Current().range;
    axis.set = expressions_.ParseExpression("a set");
    if (expressions_.Skip("dimension")) {
        SkipPropertyList();
    }
    if (!expressions_.Skip("on")) {
        expressions_.Fail("ON");
    }
    const std::size_t number = ParseAxisNumber();
    statement_.axes.resize(std::max(statement_.axes.size(), number + 1));
    if (statement_.axes[number].set != noNode) {
        RaiseAt(ErrorKind::SyntaxError, statement_.source, range,
                fmt::format("axis {} is given twice", number));
    }
    statement_.axes[number] = axis;
}

std::size_t StatementParser::ParseAxisNumber() {
    constexpr std::string_view names[] = {"columns", "rows", "pages", "chapters", "sections"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
        if (expressions_.Skip(names[i])) {
            return i;
        }
    }
    const bool inParentheses = expressions_.Skip("axis");
    if (inParentheses) {
        expressions_.Expect(TokenKind::LeftParenthesis, "'('");
    }
    if (!expressions_.IsAt(TokenKind::Number)) {
        expressions_.Fail("COLUMNS, ROWS, PAGES, AXIS(n) or a number");
    }
    const std::string_view digits = expressions_.Current().text;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number >= axisLimit) {
        expressions_.Fail(fmt::format("the number of an axis, 0 to {}", axisLimit - 1));
    }
    expressions_.Advance();
    if (inParentheses) {
        expressions_.Expect(TokenKind::RightParenthesis, "')'");
    }
    return number;
}

void StatementParser::ParseCube() {
    if (!expressions_.IsAt("from")) {
        expressions_.Fail(statement_.axes.empty() ? "a set or FROM" : "',' or FROM");
    }
    if (expressions_.Source().IsBefore(TokenKind::Name)) {
        expressions_.Advance();
        statement_.cubeRange = expressions_.Current().range;
        statement_.cubeName = expressions_.DecodedText();
        expressions_.Advance();
        return;
    }
    // Generated statements insert the cube's name unquoted, whatever characters it has.
    const Token name = expressions_.Source().RawUpTo("where", statement_.drillthrough ? "return" : "where");
    expressions_.Advance();
    if (name.text.empty()) {
        expressions_.Fail("the name of a cube");
    }
    statement_.cubeName = name.text;
    statement_.cubeRange = name.range;
}

void StatementParser::ParseSlicer() {
    if (expressions_.Skip("where")) {
        statement_.slicer = expressions_.ParseExpression("a member or a tuple");
    }
}

void StatementParser::SkipPropertyList() {
    expressions_.Expect("properties");
    do {
        expressions_.ParsePath("the name of a property");
        while (expressions_.Skip(TokenKind::Dot)) { // a property may have a method's name
            expressions_.Advance();
        }
    } while (expressions_.Skip(TokenKind::Comma));
}

} // namespace

Statement Parse(std::string_view text) {
    Statement statement;
    statement.source = text;
    if (text.size() > lengthLimit) {
        throw EngineError(ErrorKind::TooLarge, fmt::format("the statement has {} bytes; {} is the limit",
                                                           text.size(), lengthLimit));
    }
    StatementParser(statement).Parse();
    return statement;
}

Statement ParseText(const Source& text, Definition& parsed) {
    Statement statement;
    statement.source = text;
    ExpressionParser expressions(statement);
    parsed.formula = expressions.ParseExpression("an expression");
    parsed.depth = expressions.TakeDepth();
    if (!expressions.IsAt(TokenKind::End)) {
        expressions.Fail("the end of the text");
    }
    return statement;
}

Statement ParseName(const Source& text, Definition& parsed) {
    Statement statement;
    statement.source = text;
    ExpressionParser expressions(statement);
    parsed.name = expressions.ParsePath("a name such as [Measures].[Profit]");
    if (!expressions.IsAt(TokenKind::End)) {
        expressions.Fail("the end of the name, which takes brackets unless it is one word");
    }
    return statement;
}

} // namespace qel::engine::mdx
