#include "engine/mdx/Parser.h"

#include "tests/engine/FaultOf.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::engine::mdx {
namespace {

/// The tree in a short notation: names in brackets, (kind child child).
std::string Show(const Statement& statement, NodeId id) {
    const Node& node = statement.At(id);
    std::string children;
    for (NodeId child = node.firstChild; child != noNode; child = statement.At(child).next) {
        children += (children.empty() ? "" : " ") + Show(statement, child);
    }
    std::string text(node.text);
    switch (node.kind) {
    case NodeKind::Path:
        return children;
    case NodeKind::Part:
        return (node.isKey ? "&[" : "[") + text + "]";
    case NodeKind::Number:
        return text;
    case NodeKind::Text:
        return "\"" + text + "\"";
    case NodeKind::Set:
        return "{" + children + "}";
    case NodeKind::Tuple:
        return "(" + children + ")";
    case NodeKind::Call:
        return text + "(" + children + ")";
    case NodeKind::Method:
        return "." + text + "(" + children + ")";
    case NodeKind::Range:
        return "range(" + children + ")";
    case NodeKind::Chain:
        return "chain(" + children + ")";
    case NodeKind::TextChain:
        return "join(" + children + ")";
    case NodeKind::Case:
        return std::string(node.hasOperand ? "case of(" : "case(") + children + ")" +
               (node.hasElse ? " else" : "");
    case NodeKind::Alias:
        return "alias " + text + "(" + children + ")";
    case NodeKind::Comparison:
        return "compare(" + children + ")";
    case NodeKind::Negation:
        return "minus(" + children + ")";
    case NodeKind::Not:
        return "not(" + children + ")";
    case NodeKind::Missing:
        return "_";
    }
    return "?";
}

std::string ShowStatement(const std::string& text) {
    const Statement statement = Parse(text);
    std::string shown;
    for (const Definition& definition : statement.definitions) {
        shown += (definition.isSet ? "set " : "member ") + Show(statement, definition.name) + " = " +
                 Show(statement, definition.formula);
        shown += definition.solveOrder == 0 ? "; " : " @" + std::to_string(definition.solveOrder) + "; ";
    }
    for (const AxisClause& axis : statement.axes) {
        shown += (axis.nonEmpty ? "nonempty " : "") + Show(statement, axis.set) + "; ";
    }
    shown += "from " + std::string(statement.cubeName);
    return statement.slicer == noNode ? shown : shown + " where " + Show(statement, statement.slicer);
}

struct TreeCase {
    const char *what, *text, *tree;
};

const TreeCase treeCases[] = {
    {"no axes", "SELECT FROM Finance", "from Finance"},
    {"any letter case, blanks missing and odd",
     "select{[A]}oN cOlUmNs,\r\n\tNon  empty\xC2\xA0{[B]}ON ROWS From[Finance]Where([C].[1],[D])",
     "{[A]}; nonempty {[B]}; from Finance where ([C] [1] [D])"},
    {"axes by number, in any order, and a slicer without parentheses",
     "SELECT {[R]} ON 1, {[C]} ON AXIS(0), [P] ON pages FROM f WHERE [A].[B]",
     "{[C]}; {[R]}; [P]; from f where [A] [B]"},
    {"a cube's name without brackets has whatever characters it has",
     "SELECT FROM  Ledger-2020 A&B  where [x]", "from Ledger-2020 A&B where [x]"},
    {"brackets doubled in names, keys, words as names", "SELECT {[a]]b].[].&[k]]].Word.&x} ON 0 FROM [c]]d]",
     "{[a]b] [] &[k]] [Word] &[x]}; from c]d"},
    {"empty elements of a set are left out", "SELECT { , [a] , , [b] ,} ON 0, {} ON 1 FROM c",
     "{[a] [b]}; {}; from c"},
    {"comments", "/* a */ SELECT -- b\n{[a]} // c\nON 0 /* ] */ FROM c", "{[a]}; from c"},
    {"a quoted formula, its quotes doubled in names and texts",
     "WITH MEMBER [M].Sel as '  SUM({ , [O].[O''Neil] , [x]]''] }, \"it''s\") ' SELECT FROM c",
     "member [M] [Sel] = SUM({[O] [O'Neil] [x]']} \"it's\"); from c"},
    {"definitions with and without commas and quotes, solve order and other properties",
     "WITH MEMBER [M].[a] AS [M].[b] * -2, SOLVE_ORDER = 5, FORMAT_STRING='#.0' SET s AS '{[x]}' , "
     "MEMBER b AS '1', SOLVE_ORDER=-1 SELECT s ON 0 FROM c",
     "member [M] [a] = chain([M] [b] minus(2)) @5; set [s] = {[x]}; member [b] = 1 @-1; [s]; from c"},
    {"methods end a name", "SELECT [A].[B].Members ON 0, [C].CurrentMember.Lag( 2 ).Children ON 1 FROM c",
     ".Members([A] [B]); .Children(.Lag(.CurrentMember([C]) 2)); from c"},
    {"operators bind as everywhere",
     "WITH MEMBER x AS 1 + 2 * 3 - 4 < 5 AND NOT a = b OR c <> 1.5e3 SELECT FROM c",
     "member [x] = chain(chain(compare(chain(1 chain(2 3) 4) 5) not(compare([a] [b]))) compare([c] 1.5e3)); "
     "from c"},
    {"ranges, left-out arguments, a tuple with one element",
     "SELECT {[a]:[b].[c]} ON 0, F(([a]),,1) ON 1 FROM c", "{range([a] [b] [c])}; F(([a]) _ 1); from c"},
    {"dimension and cell properties are accepted",
     "SELECT {[a]} DIMENSION PROPERTIES [a].[Key], MEMBER_TYPE ON 0 FROM [c] CELL PROPERTIES VALUE, "
     "FORMATTED_VALUE",
     "{[a]}; from c"},
    {"choices, names of sets, joined texts; their words are names elsewhere",
     "WITH MEMBER x AS CASE [a] WHEN 1 THEN 2 ELSE 3 END MEMBER y AS CASE WHEN 1 THEN \"a\" || \"b\" END "
     "SELECT Filter({[when]} AS s, s.Current.CurrentOrdinal) ON 0, {[a].end, [a].Current} ON 1 FROM c",
     "member [x] = case of([a] 1 2 3) else; member [y] = case(1 join(\"a\" \"b\")); "
     "Filter(alias s({[when]}) .CurrentOrdinal(.Current([s]))); {[a] [end] .Current([a])}; from c"},
    {"texts in either quotes", "WITH MEMBER x AS IIf('a''b' = \"c\"\"d\", 1, 2) SELECT FROM c",
     "member [x] = IIf(compare(\"a'b\" \"c\"d\") 1 2); from c"},
    {"texts inside a quoted formula",
     "WITH MEMBER x AS 'IIf(''a'' = \"c''d\", ''it''''s'', 2)' SELECT FROM c",
     "member [x] = IIf(compare(\"a\" \"c'd\") \"it's\" 2); from c"},
    {"Hebrew names, marks of direction between tokens", "SELECT {[חשבונות].[שכר]} ON 0 \xE2\x80\x8F FROM ספר",
     "{[חשבונות] [שכר]}; from ספר"},
};

TEST(Parser, BuildsTrees) {
    for (const TreeCase& c : treeCases) {
        EXPECT_EQ(ShowStatement(c.text), c.tree) << c.what;
    }
}

struct ErrorCase {
    const char *what, *text, *message;
};

const ErrorCase errorCases[] = {
    {"nothing", "", "line 1, column 1: expected SELECT or WITH, found the end of the statement, near \"\""},
    {"an axis without its name", "SELECT {[a]} FROM c",
     "line 1, column 14: expected ON, found 'FROM', near \"…ELECT {[a]} FROM c\""},
    {"a name that does not end", "SELECT {[a ON 0 FROM c",
     "line 1, column 9: the name that starts here has no closing \"]\", near \"SELECT {[a ON 0 FROM c\""},
    {"columns count characters and lines", "SELECT\n  {[שכר], ]} ON 0 FROM c",
     "line 2, column 11: unexpected character ']', near \"… {[שכר], ]} ON 0 FROM c\""},
    {"a formula that ends too early", "WITH MEMBER [a].b AS 'Sum({[x]}' SELECT FROM c",
     "line 1, column 32: expected ',' or ')', found the end of the formula, near \"…S 'Sum({[x]}' SELECT "
     "FROM c\""},
    {"what a member without a match leaves behind", "WITH MEMBER [a].b AS ' 1 ' }) ' SELECT FROM c",
     "line 1, column 28: expected MEMBER, SET or SELECT, found '}', near \"….b AS ' 1 ' }) ' SELECT FROM "
     "c\""},
    {"text after the slicer's parenthesis", "SELECT FROM c where( [a].[All]).[1]",
     "line 1, column 33: expected a function of a member or a set, such as Parent, Children or Members, "
     "found [1], near \"… [a].[All]).[1]\""},
    {"an axis given twice", "SELECT {[a]} ON 0, {[b]} ON COLUMNS FROM c",
     "line 1, column 20: axis 0 is given twice, near \"…{[a]} ON 0, {[b]} ON COLUMNS FROM c\""},
    {"rows without columns", "SELECT {[a]} ON ROWS FROM c",
     "line 1, column 22: the statement has axis 1 but no axis 0, near \"…a]} ON ROWS FROM c\""},
    {"an axis number beyond reason", "SELECT {[a]} ON 99 FROM c",
     "line 1, column 17: expected the number of an axis, 0 to 15, found '99', near \"…CT {[a]} ON 99 FROM "
     "c\""},
    {"a comment without an end", "SELECT /* FROM c",
     "line 1, column 8: the comment that starts here has no closing \"*/\", near \"SELECT /* FROM c\""},
    {"a character of control", "SELECT {\x01} ON 0 FROM c",
     "line 1, column 9: unexpected character number 1, near \"SELECT { } ON 0 FROM c\""},
    {"two comparisons", "WITH MEMBER a AS 1 < 2 < 3 SELECT FROM c",
     "line 1, column 24: expected AND, OR or the end of the comparison, found '<', near \"… a AS 1 < 2 < 3 "
     "SELECT FROM c\""},
    {"no cube", "SELECT FROM where [a]",
     "line 1, column 13: expected the name of a cube, found 'where', near \"SELECT FROM where [a]\""},
    {"a solve order that is no whole number", "WITH MEMBER a AS 1, SOLVE_ORDER = 1.5 SELECT FROM c",
     "line 1, column 35: the solve order is no whole number, near \"…LVE_ORDER = 1.5 SELECT FROM c\""},
};

TEST(Parser, SaysWhereAndWhatWasExpected) {
    for (const ErrorCase& c : errorCases) {
        const auto [kind, text] = FaultOf([&] { Parse(c.text); });
        EXPECT_EQ(kind, ErrorKind::SyntaxError) << c.what;
        EXPECT_EQ(text, c.message) << c.what;
    }
}

TEST(Parser, LimitsNestingButNotLength) {
    const auto nested = [](const std::string& open, const std::string& inner, const std::string& close,
                           int times) {
        std::string before, after;
        for (int i = 0; i < times; ++i) {
            before += open;
            after += close;
        }
        return "WITH MEMBER a AS " + before + inner + after + " SELECT FROM c";
    };
    EXPECT_NO_THROW(Parse(nested("(", "1", ")", 90)));
    EXPECT_NO_THROW(Parse(nested("1 + ", "1", "", 20'000)));
    const struct {
        const char *open, *inner, *close;
    } deep[] = {{"(", "1", ")"}, {"{", "[a]", "}"}, {"F(", "1", ")"},
                {"- ", "1", ""}, {"NOT ", "1", ""}, {"", "[a]", ".Parent"}};
    for (const auto& c : deep) {
        EXPECT_EQ(FaultOf([&] { Parse(nested(c.open, c.inner, c.close, 100'000)); }).kind,
                  ErrorKind::TooLarge)
            << c.open << c.close;
    }
}

} // namespace
} // namespace qel::engine::mdx
