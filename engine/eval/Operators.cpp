#include "engine/eval/Binder.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/ReservedWords.h"

#include <functional>

// Operators: + - * / on numbers and sets, comparisons, AND, OR, XOR.

namespace qel::engine {

using mdx::NodeId;
using mdx::noNode;
using mdx::Operator;

namespace {

CellValue Join(Operator op, const CellValue& left, const CellValue& right) {
    switch (op) {
    case Operator::Add:
        return Add(left, right);
    case Operator::Subtract:
        return Add(left, Negate(right));
    case Operator::Multiply:
        return Multiply(left, right);
    default:
        return Divide(left, right);
    }
}

/// Whether the operator accepts the comparison result `order` (negative, 0 or positive).
bool Holds(Operator op, int order) {
    switch (op) {
    case Operator::Equal:
        return order == 0;
    case Operator::NotEqual:
        return order != 0;
    case Operator::Less:
        return order < 0;
    case Operator::LessOrEqual:
        return order <= 0;
    case Operator::Greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

SetPtr JoinSets(Binder& binder, std::vector<SetPart> parts) {
    const Operator kind = binder.At(parts[1].node).joiner; // + and -, or * and /
    if (kind != Operator::Add && kind != Operator::Subtract) {
        for (std::size_t i = 1; i < parts.size(); ++i) {
            if (binder.At(parts[i].node).joiner == Operator::Divide) {
                binder.Fail(parts[i].node, "a set cannot be divided");
            }
        }
        return MakeCrossJoin(binder, std::move(parts));
    }
    std::vector<SetOperand> operands;
    for (SetPart& part : parts) {
        const bool isSubtracted = binder.At(part.node).joiner == Operator::Subtract && !operands.empty();
        operands.push_back(
            {isSubtracted ? SetOperation::Except : SetOperation::Union, std::move(part.set), part.node});
    }
    return MakeSetOperation(binder, std::move(operands), false);
}

} // namespace

Bound Binder::BindChain(NodeId id) {
    const NodeId first = At(id).firstChild;
    const Operator kind = At(At(first).next).joiner;
    if (kind == Operator::And || kind == Operator::Or || kind == Operator::Xor) {
        return BindConditions(id);
    }
    std::vector<Bound> operands;
    bool hasSet = false;
    for (NodeId child = first; child != noNode; child = At(child).next) {
        operands.push_back(Bind(child));
        hasSet = hasSet || IsSet(operands.back());
    }
    RejectTexts(first, operands);
    if (hasSet) {
        std::vector<SetPart> parts;
        NodeId child = first;
        for (Bound& operand : operands) {
            parts.push_back({ToSet(std::move(operand), child), child});
            child = At(child).next;
        }
        return JoinSets(*this, std::move(parts));
    }
    struct Operand {
        Operator joiner;
        NumberPtr number;
    };
    std::vector<Operand> numbers;
    bool isConstant = true;
    NodeId child = first;
    for (Bound& operand : operands) {
        numbers.push_back({At(child).joiner, ToNumber(std::move(operand), child)});
        isConstant = isConstant && numbers.back().number->IsConstant();
        child = At(child).next;
    }
    return MakeNumber(isConstant, [numbers = std::move(numbers)](Evaluator& evaluator) {
        CellValue result = numbers[0].number->Evaluate(evaluator);
        for (std::size_t i = 1; i < numbers.size(); ++i) {
            result = Join(numbers[i].joiner, result, numbers[i].number->Evaluate(evaluator));
        }
        return result;
    });
}

void Binder::RejectTexts(NodeId first, const std::vector<Bound>& operands) const {
    NodeId child = first;
    for (const Bound& operand : operands) {
        if (std::holds_alternative<TextPtr>(operand)) {
            Fail(child, "expected a number, found a text; texts are joined with ||");
        }
        child = At(child).next;
    }
}

/// Whether the node is written `….Hierarchy` or `….Dimension`.
bool Binder::IsHierarchyMethod(NodeId id) const {
    const mdx::Node& node = At(id);
    return node.kind == mdx::NodeKind::Method &&
           (mdx::IsWord(node.text, "hierarchy") || mdx::IsWord(node.text, "dimension"));
}

Bound Binder::BindConditions(NodeId id) {
    struct Operand {
        Operator joiner;
        ConditionPtr condition;
    };
    std::vector<Operand> operands;
    for (NodeId child = At(id).firstChild; child != noNode; child = At(child).next) {
        operands.push_back({At(child).joiner, BindCondition(child)});
    }
    return MakeCondition([operands = std::move(operands)](Evaluator& evaluator) {
        bool result = operands[0].condition->Evaluate(evaluator);
        for (std::size_t i = 1; i < operands.size(); ++i) {
            const Operator joiner = operands[i].joiner;
            const bool isDecided = joiner != Operator::Xor && result == (joiner == Operator::Or);
            if (!isDecided) {
                const bool operand = operands[i].condition->Evaluate(evaluator);
                result = joiner == Operator::Xor ? result != operand : operand;
            }
        }
        return result;
    });
}

Bound Binder::BindComparison(NodeId id) {
    const NodeId left = At(id).firstChild;
    const NodeId right = At(left).next;
    const Operator op = At(right).joiner;
    if (op == Operator::Is) {
        return BindIdentity(left, right);
    }
    Bound leftBound = Bind(left);
    Bound rightBound = Bind(right);
    const auto isText = [](const Bound& bound) { return std::holds_alternative<TextPtr>(bound); };
    const auto isNumber = [](const Bound& bound) { return std::holds_alternative<NumberPtr>(bound); };
    if (isText(leftBound) || isText(rightBound)) {
        return MakeCondition([op, leftText = ToText(std::move(leftBound), left),
                              rightText = ToText(std::move(rightBound), right)](Evaluator& evaluator) {
            return Holds(op, leftText->Evaluate(evaluator).compare(rightText->Evaluate(evaluator)));
        });
    }
    if (isNumber(leftBound) || isNumber(rightBound)) {
        return MakeCondition([op, leftNumber = ToNumber(std::move(leftBound), left),
                              rightNumber = ToNumber(std::move(rightBound), right)](Evaluator& evaluator) {
            return Holds(op, Compare(leftNumber->Evaluate(evaluator), rightNumber->Evaluate(evaluator)));
        });
    }
    return MakeCondition([op, range = At(id).range, leftValue = ToValue(std::move(leftBound), left),
                          rightValue = ToValue(std::move(rightBound), right)](Evaluator& evaluator) {
        return Holds(op, CompareValues(evaluator, leftValue->Evaluate(evaluator),
                                       rightValue->Evaluate(evaluator), range));
    });
}

/// Texts joined by ||.
Bound Binder::BindTextChain(NodeId id) {
    std::vector<TextPtr> texts;
    bool isConstant = true;
    for (NodeId child = At(id).firstChild; child != noNode; child = At(child).next) {
        texts.push_back(BindText(child));
        isConstant = isConstant && texts.back()->IsConstant();
    }
    return MakeText(isConstant, [texts = std::move(texts)](Evaluator& evaluator) {
        std::string joined;
        for (const TextPtr& text : texts) {
            joined += text->Evaluate(evaluator);
            CheckTextLength(joined.size());
        }
        return joined;
    });
}

namespace {

/// The level that the bound names or is asked for, as a function of the evaluator; null when it is no level.
std::function<std::optional<LevelRef>(Evaluator&)> LevelSource(Bound& bound) {
    if (const auto* level = std::get_if<LevelName>(&bound)) {
        return [level = level->level](Evaluator&) { return std::optional(level); };
    }
    if (auto* of = std::get_if<LevelOfMember>(&bound)) {
        return [member = of->member](Evaluator& evaluator) -> std::optional<LevelRef> {
            const MemberRef found{member->Hierarchy(), member->Evaluate(evaluator)};
            return found.id == noMember
                       ? std::nullopt
                       : std::optional(LevelRef{found.hierarchy, evaluator.Space().LevelOf(found)});
        };
    }
    return nullptr;
}

bool SameLevel(const std::optional<LevelRef>& a, const std::optional<LevelRef>& b) {
    return a && b ? a->hierarchy == b->hierarchy && a->level == b->level : a.has_value() == b.has_value();
}

bool IsLevel(const Bound& bound) {
    return std::holds_alternative<LevelName>(bound) || std::holds_alternative<LevelOfMember>(bound);
}

} // namespace

/// `member IS member`, `member IS NULL`, `level IS level`, `hierarchy IS hierarchy`.
Bound Binder::BindIdentity(NodeId left, NodeId right) {
    Bound first = Bind(left);
    if (IsLevel(first)) {
        Bound second = Bind(right);
        if (IsLevel(second)) {
            return MakeCondition(
                [one = LevelSource(first), other = LevelSource(second)](Evaluator& evaluator) {
                    return SameLevel(one(evaluator), other(evaluator));
                });
        }
    }
    if (const auto* hierarchy = std::get_if<HierarchyName>(&first);
        hierarchy != nullptr && IsHierarchyMethod(left)) {
        return MakeCondition([is = hierarchy->hierarchy == BindHierarchy(right)](Evaluator&) { return is; });
    }
    MemberPtr member = ToMember(std::move(first), left);
    if (mdx::IsWord(Word(right), "null")) {
        return MakeCondition([member = std::move(member)](Evaluator& evaluator) {
            return member->Evaluate(evaluator) == noMember;
        });
    }
    return MakeCondition([member = std::move(member), other = BindMember(right)](Evaluator& evaluator) {
        return member->Hierarchy() == other->Hierarchy() &&
               member->Evaluate(evaluator) == other->Evaluate(evaluator);
    });
}

} // namespace qel::engine
