#include "engine/eval/DistinctTuples.h"
#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/ReservedWords.h"

#include <algorithm>
#include <array>
#include <unordered_set>

// Functions that combine sets or take parts of one.

namespace qel::engine {

namespace {

constexpr std::array<std::string_view, 1> allFlag{"all"};

Bound CrossJoin(Call& call) {
    std::vector<SetPart> parts;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        parts.push_back({call.Set(i), call.arguments[i]});
    }
    return MakeCrossJoin(call.binder, std::move(parts));
}

Bound Combine(Call& call, SetOperation operation) {
    bool all = false;
    const bool isFlag =
        operation != SetOperation::Union || mdx::IsWord(call.binder.Word(call.arguments.back()), allFlag[0]);
    if (call.Count() > 2 && isFlag) {
        all = call.Flag(call.Count() - 1, allFlag) == 0;
        call.arguments.pop_back();
    }
    std::vector<SetOperand> operands;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        operands.push_back({i == 0 ? SetOperation::Union : operation, call.Set(i), call.arguments[i]});
    }
    return MakeSetOperation(call.binder, std::move(operands), all);
}

Bound Union(Call& call) { return Combine(call, SetOperation::Union); }
Bound Intersect(Call& call) { return Combine(call, SetOperation::Intersect); }
Bound Except(Call& call) { return Combine(call, SetOperation::Except); }

Bound Distinct(Call& call) {
    std::vector<SetOperand> operands;
    operands.push_back({SetOperation::Union, call.Set(0), call.arguments[0]});
    return MakeSetOperation(call.binder, std::move(operands), false);
}

/// piece(count, set size) returns the first tuple of the part and the end of it.
template <class Piece>
Bound Cut(SetPtr set, NumberPtr number, const Piece& piece) {
    Dimensionality dimensionality = set->GetDimensionality();
    const bool isConstant = set->IsConstant() && (!number || number->IsConstant());
    return MakeSet(
        isConstant, std::move(dimensionality),
        [piece, set = std::move(set), number = std::move(number)](Evaluator& evaluator, TupleSet& result) {
            const TupleSet whole = set->Evaluate(evaluator);
            const auto size = static_cast<std::int64_t>(whole.Count());
            const std::int64_t count = number ? WholeNumber(number->Evaluate(evaluator)) : 1;
            const auto [first, last] = piece(count, size);
            for (std::int64_t i = std::max<std::int64_t>(0, first); i < std::min(size, last); ++i) {
                result.Append(whole.At(static_cast<std::size_t>(i)));
            }
        });
}

using Bounds = std::pair<std::int64_t, std::int64_t>;

Bound Head(Call& call) {
    return Cut(call.Set(0), call.OptionalNumber(1), [](std::int64_t count, std::int64_t) {
        return Bounds{0, count};
    });
}

Bound Tail(Call& call) {
    return Cut(call.Set(0), call.OptionalNumber(1), [](std::int64_t count, std::int64_t size) {
        return Bounds{size - count, size};
    });
}

Bound Subset(Call& call) {
    auto from = std::get<SetPtr>(Cut(call.Set(0), call.Number(1), [](std::int64_t start, std::int64_t size) {
        return Bounds{start < 0 ? size : start, size};
    }));
    return call.Count() < 3 ? Bound(std::move(from))
                            : Cut(std::move(from), call.Number(2), [](std::int64_t count, std::int64_t) {
                                  return Bounds{0, count};
                              });
}

Bound HierarchizeSet(Call& call) {
    constexpr std::array<std::string_view, 2> orders{"pre", "post"};
    const bool post = call.Count() > 1 && call.Flag(1, orders) == 1;
    SetPtr set = call.Set(0);
    const bool isConstant = set->IsConstant();
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(isConstant, std::move(dimensionality),
                   [post, set = std::move(set)](Evaluator& evaluator, TupleSet& result) {
                       TupleSet sorted = set->Evaluate(evaluator);
                       Hierarchize(evaluator.Space(), sorted, post);
                       result.Append(sorted);
                   });
}

/// Appends the calculated siblings of the set's members that it lacks.
void AppendCalculatedSiblings(const MemberSpace& space, TupleSet& set) {
    const HierarchyId hierarchy = set.dimensionality[0];
    const std::unordered_set<MemberId> known(set.ids.begin(), set.ids.end());
    std::unordered_set<MemberId> parents;
    for (const MemberId member : known) {
        parents.insert(space.Parent({hierarchy, member}));
    }
    for (std::size_t i = 0; i < space.Calculated().size(); ++i) {
        const CalculatedName& name = space.Calculated()[i];
        const MemberId id = firstCalculated + static_cast<MemberId>(i);
        if (!name.isHidden && name.hierarchy == hierarchy && parents.count(name.parent) > 0 &&
            known.count(id) == 0) {
            set.Append({&id, 1});
        }
    }
}

/// A set made by change(space, tuples).
template <class Change>
Bound Changed(SetPtr set, const Change& change) {
    Dimensionality dimensionality = set->GetDimensionality();
    const bool isConstant = set->IsConstant();
    return MakeSet(isConstant, std::move(dimensionality),
                   [change, set = std::move(set)](Evaluator& evaluator, TupleSet& result) {
                       TupleSet tuples = set->Evaluate(evaluator);
                       change(evaluator.Space(), tuples);
                       result.Append(tuples);
                   });
}

Bound AddCalculatedMembers(Call& call) {
    SetPtr set = call.Set(0);
    if (set->GetDimensionality().size() != 1) {
        call.binder.Fail(call.arguments[0], "expected a set of members, found one of tuples");
    }
    return Changed(std::move(set), AppendCalculatedSiblings);
}

Bound StripCalculatedMembers(Call& call) {
    return Changed(call.Set(0), [](const MemberSpace&, TupleSet& tuples) {
        TupleSet stored{tuples.dimensionality, {}};
        for (std::size_t i = 0; i < tuples.Count(); ++i) {
            const std::span<const MemberId> tuple = tuples.At(i);
            if (std::none_of(tuple.begin(), tuple.end(), IsCalculated)) {
                stored.Append(tuple);
            }
        }
        tuples.ids = std::move(stored.ids);
    });
}

/// The tuples' members of the given hierarchies, each combination once.
Bound Extract(Call& call) {
    SetPtr set = call.Set(0);
    const Dimensionality whole = set->GetDimensionality();
    Dimensionality dimensionality;
    std::vector<std::size_t> places;
    for (std::size_t i = 1; i < call.Count(); ++i) {
        const HierarchyId hierarchy = call.binder.BindHierarchy(call.arguments[i]);
        const auto place = std::find(whole.begin(), whole.end(), hierarchy);
        const bool isKnown =
            std::find(dimensionality.begin(), dimensionality.end(), hierarchy) != dimensionality.end();
        if (isKnown || (place == whole.end() && !whole.empty())) {
            call.binder.Fail(call.arguments[i], isKnown ? "the hierarchy is given twice"
                                                        : "the set has no members of the hierarchy");
        }
        dimensionality.push_back(hierarchy);
        places.push_back(static_cast<std::size_t>(place - whole.begin()));
    }
    const bool isConstant = set->IsConstant();
    return MakeSet(isConstant, dimensionality,
                   [places, dimensionality, set = std::move(set)](Evaluator& evaluator, TupleSet& result) {
                       const TupleSet tuples = set->Evaluate(evaluator);
                       DistinctTuples distinct(dimensionality);
                       std::vector<MemberId> taken(places.size());
                       for (std::size_t i = 0; i < tuples.Count(); ++i) {
                           for (std::size_t k = 0; k < places.size(); ++k) {
                               taken[k] = tuples.At(i)[places[k]];
                           }
                           distinct.Add(taken);
                       }
                       distinct.AppendTo(result);
                   });
}

Bound Unorder(Call& call) { return call.Set(0); }

constexpr std::array<Function, 13> setFunctions{{{"CrossJoin", 2, anyNumber, CrossJoin},
                                                 {"Union", 2, anyNumber, Union},
                                                 {"Intersect", 2, 3, Intersect},
                                                 {"Except", 2, 3, Except},
                                                 {"Distinct", 1, 1, Distinct},
                                                 {"Head", 1, 2, Head},
                                                 {"Tail", 1, 2, Tail},
                                                 {"Subset", 2, 3, Subset},
                                                 {"Hierarchize", 1, 2, HierarchizeSet},
                                                 {"AddCalculatedMembers", 1, 1, AddCalculatedMembers},
                                                 {"StripCalculatedMembers", 1, 1, StripCalculatedMembers},
                                                 {"Extract", 2, anyNumber, Extract},
                                                 {"Unorder", 1, 1, Unorder}}};

} // namespace

std::span<const Function> SetFunctions() { return setFunctions; }

} // namespace qel::engine
