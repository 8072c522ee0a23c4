#pragma once

#include "engine/mdx/SourceRange.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a statement says, before any of its names is looked up.

namespace qel::engine::mdx {

using NodeId = std::uint32_t;
inline constexpr NodeId noNode = 0xFFFFFFFFU;

enum class NodeKind : std::uint8_t {
    Path,      ///< a dotted name; children: Part
    Part,      ///< text: the name; flags isKey, isWord
    Number,    ///< text: the digits
    Text,      ///< text: the text
    Set,       ///< { ... }; children: the elements, without empty ones
    Tuple,     ///< ( ... ) with one element or several
    Call,      ///< text: the function; children: the arguments
    Method,    ///< text: the name after the dot; children: the target, then the arguments
    Range,     ///< first : last
    TextChain, ///< children joined by ||
    Case,  ///< flags hasOperand, hasElse; children: the operand, pairs of WHEN and THEN, the value of ELSE
    Alias, ///< set AS text
    Chain, ///< children joined by left-associative operators of one precedence
    Comparison, ///< two children; op: the second child's joiner
    Negation,   ///< - x
    Not,        ///< NOT x
    Missing     ///< an omitted argument
};

enum class Operator : std::uint8_t {
    None,
    Add,
    Subtract,
    Multiply,
    Divide,
    And,
    Or,
    Xor,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Is,
    Concatenate
};

/// A node of the syntax tree. Children are a linked list through `next`, so the whole tree is one vector.
struct Node {
    NodeKind kind = NodeKind::Missing;
    Operator joiner = Operator::None; ///< the operator before this node in a Chain or a Comparison
    bool isKey = false;               ///< Part: written &[key]
    bool isWord = false;              ///< Part: written without brackets
    bool hasOperand = false;          ///< Case: CASE operand WHEN ...
    bool hasElse = false;             ///< Case
    std::uint32_t childCount = 0;
    NodeId firstChild = noNode;
    NodeId next = noNode;
    std::string_view text;
    SourceRange range;
};

/// WITH MEMBER or WITH SET.
struct Definition {
    bool isSet = false;
    NodeId name = noNode; ///< a Path
    NodeId formula = noNode;
    int depth = 0; ///< how many expressions stand inside one another in the formula
    int solveOrder = 0;
};

struct AxisClause {
    bool nonEmpty = false;
    NodeId set = noNode;
};

/// DRILLTHROUGH before the statement: the facts behind its cell are wanted.
struct DrillthroughClause {
    std::optional<std::uint64_t> mostRows; ///< MAXROWS
    std::uint64_t firstRow = 1;            ///< FIRSTROWSET, counted from 1
    std::vector<NodeId> columns;           ///< RETURN
};

/// The syntax tree of a statement, or of a text that is one expression. Texts are views into the source,
/// which must outlive the tree, or into `decoded`.
struct Statement {
    Source source = std::string_view();
    std::vector<Node> nodes;
    std::deque<std::string> decoded; ///< names and texts with escaped brackets or quotes
    std::vector<Definition> definitions;
    std::vector<AxisClause> axes; ///< columns first
    std::string_view cubeName;
    SourceRange cubeRange;
    NodeId slicer = noNode;
    std::optional<DrillthroughClause> drillthrough;

    const Node& At(NodeId id) const { return nodes[id]; }
};

} // namespace qel::engine::mdx
