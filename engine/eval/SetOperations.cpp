#include "engine/eval/SetOperations.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

namespace {

void KeepUnion(const TupleSet& left, const TupleSet& right, TupleSet& result) {
    TupleIndex seen;
    for (const TupleSet* set : {&left, &right}) {
        for (std::size_t i = 0; i < set->Count(); ++i) {
            if (seen.Insert(set->At(i))) {
                result.Append(set->At(i));
            }
        }
    }
}

/// Appends the tuples of `left` that are (or are not) in `right`, without duplicates unless `all`.
void KeepWhere(const TupleSet& left, const TupleSet& right, bool isInRight, bool all, TupleSet& result) {
    TupleIndex others;
    for (std::size_t i = 0; i < right.Count(); ++i) {
        others.Insert(right.At(i));
    }
    TupleIndex seen;
    for (std::size_t i = 0; i < left.Count(); ++i) {
        if (others.Contains(left.At(i)) == isInRight && (all || seen.Insert(left.At(i)))) {
            result.Append(left.At(i));
        }
    }
}

/// Negative when `a` comes before `b` in tree order.
int CompareInTree(const MemberSpace& space, MemberRef a, MemberRef b, bool post) {
    if (a.id == b.id) {
        return 0;
    }
    const std::size_t levelOfA = space.LevelOf(a);
    const std::size_t levelOfB = space.LevelOf(b);
    const std::size_t level = std::min(levelOfA, levelOfB);
    const MemberId ancestorOfA = space.AncestorAt(a, level);
    const MemberId ancestorOfB = space.AncestorAt(b, level);
    if (ancestorOfA != ancestorOfB) {
        return ancestorOfA < ancestorOfB ? -1 : 1; // within a level, member numbers follow the tree
    }
    return (levelOfA < levelOfB) != post ? -1 : 1;
}

} // namespace

SetPtr MakeSetOperation(Binder& binder, SetOperation operation, SetPtr left, SetPtr right, bool all,
                        mdx::NodeId node) {
    binder.CheckDimensionality(left->GetDimensionality(), *right, node);
    const bool isConstant = left->IsConstant() && right->IsConstant();
    Dimensionality dimensionality =
        left->GetDimensionality().empty() ? right->GetDimensionality() : left->GetDimensionality();
    return MakeSet(isConstant, std::move(dimensionality),
                   [operation, all, left = std::move(left), right = std::move(right)](Evaluator& evaluator,
                                                                                      TupleSet& result) {
                       if (operation == SetOperation::Union && all) {
                           left->Append(evaluator, result);
                           right->Append(evaluator, result);
                           return;
                       }
                       const TupleSet leftSet = left->Evaluate(evaluator);
                       const TupleSet rightSet = right->Evaluate(evaluator);
                       if (operation == SetOperation::Union) {
                           KeepUnion(leftSet, rightSet, result);
                       } else {
                           KeepWhere(leftSet, rightSet, operation == SetOperation::Intersect, all, result);
                       }
                   });
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
