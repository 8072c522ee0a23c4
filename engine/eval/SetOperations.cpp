#include "engine/eval/SetOperations.h"

#include "engine/eval/DistinctTuples.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

namespace {

/// Appends the tuples of `left` that are (or are not) in `right`, with duplicates.
void KeepAllWhere(const TupleSet& left, const TupleSet& right, bool isInRight, TupleSet& result) {
    TupleIndex others;
    for (std::size_t i = 0; i < right.Count(); ++i) {
        others.Insert(right.At(i));
    }
    for (std::size_t i = 0; i < left.Count(); ++i) {
        if (others.Contains(left.At(i)) == isInRight) {
            result.Append(left.At(i));
        }
    }
}

void JoinAll(const std::vector<SetOperand>& operands, Evaluator& evaluator, TupleSet& result) {
    if (operands.size() == 2 && operands[1].operation != SetOperation::Union) {
        KeepAllWhere(operands[0].set->Evaluate(evaluator), operands[1].set->Evaluate(evaluator),
                     operands[1].operation == SetOperation::Intersect, result);
        return;
    }
    for (const SetOperand& operand : operands) {
        operand.set->Append(evaluator, result);
    }
}

void JoinDistinct(const std::vector<SetOperand>& operands, Evaluator& evaluator, TupleSet& result) {
    DistinctTuples tuples(result.dimensionality);
    for (const SetOperand& operand : operands) {
        const TupleSet set = operand.set->Evaluate(evaluator);
        switch (operand.operation) {
        case SetOperation::Union:
            tuples.Add(set);
            break;
        case SetOperation::Intersect:
            tuples.Keep(set);
            break;
        case SetOperation::Except:
            tuples.Remove(set);
            break;
        }
    }
    tuples.AppendTo(result);
}

/// Negative when `a` comes before `b` in tree order.
int CompareInTree(const MemberSpace& space, MemberRef a, MemberRef b, bool post) {
    if (a.id == b.id) {
        return 0;
    }
    const std::size_t levelOfA = space.LevelOf(a);
    const std::size_t levelOfB = space.LevelOf(b);
    const std::size_t level = std::min(levelOfA, levelOfB);
    a.id = space.AncestorAt(a, level);
    b.id = space.AncestorAt(b, level);
    if (a.id == b.id) {
        return (levelOfA < levelOfB) != post ? -1 : 1;
    }
    // Stored numbers follow the tree within a level; calculated members come behind their stored siblings.
    while (IsCalculated(a.id) != IsCalculated(b.id) || IsCalculated(a.id)) {
        const MemberRef parentOfA{a.hierarchy, space.Parent(a)};
        const MemberRef parentOfB{b.hierarchy, space.Parent(b)};
        if (parentOfA == parentOfB) {
            break;
        }
        a = parentOfA;
        b = parentOfB;
    }
    return a.id < b.id ? -1 : 1;
}

} // namespace

SetPtr MakeSetOperation(Binder& binder, std::vector<SetOperand> operands, bool all) {
    Dimensionality dimensionality;
    bool isConstant = true;
    for (const SetOperand& operand : operands) {
        binder.CheckDimensionality(dimensionality, *operand.set, operand.node);
        dimensionality = dimensionality.empty() ? operand.set->GetDimensionality() : dimensionality;
        isConstant = isConstant && operand.set->IsConstant();
    }
    return MakeSet(isConstant, std::move(dimensionality),
                   [all, operands = std::move(operands)](Evaluator& evaluator, TupleSet& result) {
                       all ? JoinAll(operands, evaluator, result) : JoinDistinct(operands, evaluator, result);
                   });
}

void AppendTree(const MemberSpace& space, HierarchyId hierarchy, TupleSet& result) {
    std::vector<MemberRange> rest{space.LevelMembers({hierarchy, 0})}; // of the families on the way down
    while (!rest.empty()) {
        MemberRange& family = rest.back();
        if (family.Count() == 0) {
            rest.pop_back();
            continue;
        }
        const MemberId member = family.first++;
        result.Append({&member, 1});
        rest.push_back(space.Children({hierarchy, member}));
    }
}

void Hierarchize(const MemberSpace& space, TupleSet& set, bool post) {
    std::vector<std::size_t> order(set.Count());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        for (std::size_t i = 0; i < set.dimensionality.size(); ++i) {
            const int comparison = CompareInTree(space, {set.dimensionality[i], set.At(left)[i]},
                                                 {set.dimensionality[i], set.At(right)[i]}, post);
            if (comparison != 0) {
                return comparison < 0;
            }
        }
        return false;
    });
    TupleSet sorted{set.dimensionality, {}};
    for (const std::size_t tuple : order) {
        sorted.Append(set.At(tuple));
    }
    set.ids = std::move(sorted.ids);
}

} // namespace qel::engine
