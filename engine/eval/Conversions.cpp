#include "engine/eval/Binder.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

// Implicit conversions between kinds of expressions.

namespace qel::engine {

using mdx::NodeId;

namespace {

std::string_view KindOf(const Bound& bound) {
    constexpr std::array<std::string_view, 11> kinds{
        "a hierarchy", "a level", "a member", "a tuple",          "a set", "a number", "a text",
        "a condition", "a value", "a level",  "the name of a set"};
    return kinds[bound.index()];
}

class ConstantMemberExpression final : public MemberExpression {
public:
    explicit ConstantMemberExpression(MemberRef member)
        : MemberExpression(true, member.hierarchy), id_(member.id) {}
    MemberId Evaluate(Evaluator&) const override { return id_; }

private:
    MemberId id_;
};

/// Evaluates the tuple's members; false when one of them does not exist.
bool EvaluateTuple(const TupleExpression& tuple, Evaluator& evaluator, std::vector<MemberId>& ids) {
    const TupleSource* source = tuple.empty() ? nullptr : tuple.front()->Source();
    if (source != nullptr && source->Size() == tuple.size() && tuple.back()->Source() == source) {
        return source->Append(evaluator, ids); // once, so that items of items do not double the work
    }
    for (const MemberPtr& member : tuple) {
        ids.push_back(member->Evaluate(evaluator));
        if (ids.back() == noMember) {
            return false;
        }
    }
    return true;
}

// Out of the way of evaluation, whose frames have to be small.

[[noreturn, gnu::noinline]] void FailNoText(const Binder& binder, NodeId node, const CellValue& found) {
    binder.Fail(node, found.isCondition
                          ? "expected a text, found a condition"
                          : "expected a text, found a number; Format writes a number as a text");
}

[[noreturn, gnu::noinline]] void FailNoCondition(const Binder& binder, NodeId node, const CellValue& found) {
    binder.Fail(node, fmt::format("expected a condition, found the text \"{}\"", *found.text));
}

Dimensionality DimensionalityOf(const TupleExpression& tuple) {
    Dimensionality dimensionality;
    for (const MemberPtr& member : tuple) {
        dimensionality.push_back(member->Hierarchy());
    }
    return dimensionality;
}

} // namespace

bool IsSet(const Bound& bound) { return std::holds_alternative<SetPtr>(bound); }

MemberPtr ConstantMember(MemberRef member) { return std::make_unique<ConstantMemberExpression>(member); }

SetPtr SetOfTuple(TupleExpression tuple) {
    const bool isConstant =
        std::all_of(tuple.begin(), tuple.end(), [](const MemberPtr& member) { return member->IsConstant(); });
    Dimensionality dimensionality = DimensionalityOf(tuple);
    return MakeSet(isConstant, std::move(dimensionality),
                   [tuple = std::move(tuple)](Evaluator& evaluator, TupleSet& result) {
                       std::vector<MemberId> ids;
                       if (EvaluateTuple(tuple, evaluator, ids)) {
                           result.Append(std::span<const MemberId>(ids));
                       }
                   });
}

NumberPtr ValueOf(TupleExpression tuple, std::optional<mdx::SourceRange> number) {
    Dimensionality dimensionality = DimensionalityOf(tuple);
    return MakeNumber(false, [number, dimensionality = std::move(dimensionality),
                              tuple = std::move(tuple)](Evaluator& evaluator) {
        std::vector<MemberId> ids;
        if (!EvaluateTuple(tuple, evaluator, ids)) {
            return CellValue::Empty();
        }
        const Evaluator::Position position(evaluator, dimensionality, ids);
        const CellValue cell = evaluator.Cell();
        return number ? evaluator.RequireNumber(cell, *number) : cell;
    });
}

MemberPtr Binder::ToMember(Bound bound, NodeId node) {
    if (auto* member = std::get_if<MemberPtr>(&bound)) {
        return std::move(*member);
    }
    if (const auto* name = std::get_if<HierarchyName>(&bound)) {
        const HierarchyId hierarchy = name->hierarchy;
        return MakeMember(false, hierarchy, [hierarchy, range = At(node).range](Evaluator& evaluator) {
            return evaluator.Current(hierarchy, range);
        });
    }
    if (const auto* level = std::get_if<LevelName>(&bound); level != nullptr && level->member != noMember) {
        return ConstantMember({level->level.hierarchy, level->member});
    }
    Fail(node, fmt::format("expected a member, found {}", KindOf(bound)));
}

SetPtr Binder::ToSet(Bound bound, NodeId node) {
    if (auto* set = std::get_if<SetPtr>(&bound)) {
        return std::move(*set);
    }
    if (auto* tuple = std::get_if<TupleExpression>(&bound)) {
        return SetOfTuple(std::move(*tuple));
    }
    const auto* level = std::get_if<LevelName>(&bound);
    if ((level != nullptr && level->member == noMember) || std::holds_alternative<LevelOfMember>(bound)) {
        Fail(node, "expected a set, found a level; its members are written with .Members");
    }
    if (std::holds_alternative<SetAlias>(bound)) {
        Fail(node,
             "the name that a set has after AS stands before .Current and .CurrentOrdinal; to use the set "
             "again, define it with WITH SET");
    }
    if (bound.index() > 2) {
        Fail(node, fmt::format("expected a set, found {}", KindOf(bound)));
    }
    TupleExpression tuple;
    tuple.push_back(ToMember(std::move(bound), node));
    return SetOfTuple(std::move(tuple));
}

NumberPtr Binder::ToNumber(Bound bound, NodeId node) {
    const mdx::SourceRange range = At(node).range;
    if (auto* number = std::get_if<NumberPtr>(&bound)) {
        return std::move(*number);
    }
    if (auto* any = std::get_if<AnyValue>(&bound)) {
        const bool isConstant = any->value->IsConstant();
        return MakeNumber(isConstant, [range, value = std::move(any->value)](Evaluator& evaluator) {
            return evaluator.RequireNumber(value->Evaluate(evaluator), range);
        });
    }
    return ValueOf(ToTuple(std::move(bound), node, "a number"), range);
}

NumberPtr Binder::ToValue(Bound bound, NodeId node) {
    if (auto* number = std::get_if<NumberPtr>(&bound)) {
        return std::move(*number);
    }
    if (auto* any = std::get_if<AnyValue>(&bound)) {
        return std::move(any->value);
    }
    if (auto* text = std::get_if<TextPtr>(&bound)) {
        const bool isConstant = (*text)->IsConstant();
        return MakeNumber(isConstant, [text = std::move(*text)](Evaluator& evaluator) {
            return evaluator.ValueOfText(text->Evaluate(evaluator));
        });
    }
    if (auto* condition = std::get_if<ConditionPtr>(&bound)) {
        return MakeNumber(false, [condition = std::move(*condition)](Evaluator& evaluator) {
            return CellValue::Condition(condition->Evaluate(evaluator));
        });
    }
    return ValueOf(ToTuple(std::move(bound), node, "a value"), std::nullopt);
}

/// A member or a tuple, used for its value.
TupleExpression Binder::ToTuple(Bound bound, NodeId node, std::string_view expected) {
    if (auto* tuple = std::get_if<TupleExpression>(&bound)) {
        return std::move(*tuple);
    }
    if (bound.index() > 2) {
        Fail(node, fmt::format("expected {}, found {}", expected, KindOf(bound)));
    }
    TupleExpression tuple;
    tuple.push_back(ToMember(std::move(bound), node));
    return tuple;
}

TextPtr Binder::ToText(Bound bound, NodeId node) {
    if (auto* text = std::get_if<TextPtr>(&bound)) {
        return std::move(*text);
    }
    if (std::holds_alternative<NumberPtr>(bound)) {
        if (!mdx::IsWord(Word(node), "null")) {
            FailNoText(*this, node, CellValue::Exact(0, 0));
        }
    } else if (bound.index() > 3 && !std::holds_alternative<AnyValue>(bound)) {
        Fail(node, fmt::format("expected a text, found {}", KindOf(bound)));
    }
    NumberPtr value = ToValue(std::move(bound), node);
    const bool isConstant = value->IsConstant();
    return MakeText(isConstant, [this, node, value = std::move(value)](Evaluator& evaluator) {
        const CellValue found = value->Evaluate(evaluator);
        if (!found.isEmpty && found.text == nullptr) {
            FailNoText(*this, node, found);
        }
        return found.isEmpty ? std::string() : *found.text;
    });
}

ConditionPtr Binder::ToCondition(Bound bound, NodeId node) {
    if (auto* condition = std::get_if<ConditionPtr>(&bound)) {
        return std::move(*condition);
    }
    if (std::holds_alternative<TextPtr>(bound)) {
        Fail(node, "expected a condition, found a text");
    }
    NumberPtr value = ToValue(std::move(bound), node); // any number but 0 is true
    return MakeCondition([this, node, value = std::move(value)](Evaluator& evaluator) {
        const CellValue found = value->Evaluate(evaluator);
        if (found.text != nullptr) {
            FailNoCondition(*this, node, found);
        }
        return Compare(found, CellValue::Empty()) != 0;
    });
}

int CompareValues(const Evaluator& evaluator, const CellValue& a, const CellValue& b,
                  mdx::SourceRange range) {
    const bool areTexts = a.text != nullptr || b.text != nullptr;
    const bool sameKind = a.isEmpty || b.isEmpty ||
                          ((a.text != nullptr) == (b.text != nullptr) && a.isCondition == b.isCondition);
    if (!sameKind) {
        mdx::RaiseAt(ErrorKind::InvalidExpression, evaluator.Source(), range,
                     "values of different kinds cannot be compared: a number, a text or a condition with "
                     "another");
    }
    if (!areTexts) {
        return Compare(a, b);
    }
    const std::string_view left = a.text != nullptr ? std::string_view(*a.text) : std::string_view();
    const std::string_view right = b.text != nullptr ? std::string_view(*b.text) : std::string_view();
    return left.compare(right);
}

LevelRef Binder::BindLevel(NodeId node) {
    return ToLevel(At(node).kind == mdx::NodeKind::Path ? BindPath(node, true) : Bind(node), node);
}

LevelRef Binder::ToLevel(const Bound& bound, NodeId node) const {
    if (const auto* level = std::get_if<LevelName>(&bound)) {
        return level->level;
    }
    if (std::holds_alternative<LevelOfMember>(bound)) {
        Fail(node, "expected a level, found that of a member that depends on cells; name the level, or write "
                   "a number of levels where one may stand");
    }
    Fail(node, fmt::format("expected a level, found {}", KindOf(bound)));
}

HierarchyId Binder::BindHierarchy(NodeId node) {
    const Bound bound = Bind(node);
    if (const auto* hierarchy = std::get_if<HierarchyName>(&bound)) {
        return hierarchy->hierarchy;
    }
    Fail(node, fmt::format("expected a hierarchy, found {}", KindOf(bound)));
}

} // namespace qel::engine
