#include "engine/eval/Binder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

// Implicit conversions between kinds of expressions.

namespace qel::engine {

using mdx::NodeId;

namespace {

std::string_view KindOf(const Bound& bound) {
    constexpr std::array<std::string_view, 8> kinds{"a hierarchy", "a level",  "a member", "a tuple",
                                                    "a set",       "a number", "a text",   "a condition"};
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

NumberPtr ValueOf(TupleExpression tuple) {
    Dimensionality dimensionality = DimensionalityOf(tuple);
    return MakeNumber(
        false, [dimensionality = std::move(dimensionality), tuple = std::move(tuple)](Evaluator& evaluator) {
            std::vector<MemberId> ids;
            if (!EvaluateTuple(tuple, evaluator, ids)) {
                return CellValue::Empty();
            }
            const Evaluator::Position position(evaluator, dimensionality, ids);
            return evaluator.Cell();
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
    if (level != nullptr && level->member == noMember) {
        Fail(node, "expected a set, found a level; its members are written with .Members");
    }
    if (bound.index() > 2) {
        Fail(node, fmt::format("expected a set, found {}", KindOf(bound)));
    }
    TupleExpression tuple;
    tuple.push_back(ToMember(std::move(bound), node));
    return SetOfTuple(std::move(tuple));
}

NumberPtr Binder::ToNumber(Bound bound, NodeId node) {
    if (auto* number = std::get_if<NumberPtr>(&bound)) {
        return std::move(*number);
    }
    if (auto* tuple = std::get_if<TupleExpression>(&bound)) {
        return ValueOf(std::move(*tuple));
    }
    if (bound.index() > 2) {
        Fail(node, fmt::format("expected a number, found {}", KindOf(bound)));
    }
    TupleExpression tuple;
    tuple.push_back(ToMember(std::move(bound), node));
    return ValueOf(std::move(tuple));
}

TextPtr Binder::BindText(NodeId node) {
    Bound bound = Bind(node);
    if (auto* text = std::get_if<TextPtr>(&bound)) {
        return std::move(*text);
    }
    Fail(node, fmt::format("expected a text, found {}", KindOf(bound)));
}

ConditionPtr Binder::BindCondition(NodeId node) {
    Bound bound = Bind(node);
    if (auto* condition = std::get_if<ConditionPtr>(&bound)) {
        return std::move(*condition);
    }
    NumberPtr number = ToNumber(std::move(bound), node); // any number but 0 is true
    return MakeCondition([number = std::move(number)](Evaluator& evaluator) {
        return Compare(number->Evaluate(evaluator), CellValue::Empty()) != 0;
    });
}

LevelRef Binder::BindLevel(NodeId node) {
    return ToLevel(At(node).kind == mdx::NodeKind::Path ? BindPath(node, true) : Bind(node), node);
}

LevelRef Binder::ToLevel(const Bound& bound, NodeId node) const {
    if (const auto* level = std::get_if<LevelName>(&bound)) {
        return level->level;
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
