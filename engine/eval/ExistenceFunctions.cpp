#include "engine/eval/DistinctTuples.h"
#include "engine/eval/ForEachTuple.h"
#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

// Functions that keep the tuples which exist together with others, or have facts, and functions that go from
// tuple to tuple.

namespace qel::engine {

namespace {

/// More pairs of tuples are not held against each other.
constexpr std::size_t pairLimit = 100'000'000;

void CheckPairs(std::size_t left, std::size_t right, std::size_t limit, std::string_view work) {
    if (right > 0 && left > limit / right) {
        throw EngineError(ErrorKind::TooLarge, fmt::format("{} more than {}", work, limit));
    }
}

/// A position in each of two sets' tuples; the members at the two positions restrict each other.
struct PlacePair {
    std::size_t left, right;
    bool isSameHierarchy;
};

/// Whether one of the members is the other or above it.
bool AreInLine(const MemberSpace& space, MemberRef a, MemberRef b) {
    if (space.LevelOf(a) > space.LevelOf(b)) {
        std::swap(a, b);
    }
    return space.AncestorAt(b, space.LevelOf(a)) == a.id;
}

bool SharesCodes(const MemberSpace& space, MemberRef a, MemberRef b) {
    return IsCalculated(a.id) || IsCalculated(b.id) || Intersects(space.Codes(a), space.Codes(b));
}

class ExistenceTest {
public:
    ExistenceTest(const MemberSpace& space, const Dimensionality& left, const Dimensionality& right)
        : space_(space), left_(left), right_(right) {
        for (std::size_t i = 0; i < left.size(); ++i) {
            for (std::size_t j = 0; j < right.size(); ++j) {
                const bool isSame = left[i] == right[j];
                if (isSame || (DimensionOf(left[i]) == DimensionOf(right[j]) && space.KeyColumn(left[i]) &&
                               space.KeyColumn(right[j]))) {
                    pairs_.push_back({i, j, isSame});
                }
            }
        }
    }

    bool IsAlwaysTrue() const { return pairs_.empty(); }

    bool Holds(std::span<const MemberId> left, std::span<const MemberId> right) const {
        return std::all_of(pairs_.begin(), pairs_.end(), [&](const PlacePair& pair) {
            const MemberRef a{left_[pair.left], left[pair.left]};
            const MemberRef b{right_[pair.right], right[pair.right]};
            return pair.isSameHierarchy ? AreInLine(space_, a, b) : SharesCodes(space_, a, b);
        });
    }

private:
    std::size_t DimensionOf(HierarchyId hierarchy) const {
        return space_.IsMeasures(hierarchy) ? space_.GetCube().Dimensions().size()
                                            : space_.Stored(hierarchy).DimensionIndex();
    }

    const MemberSpace& space_;
    const Dimensionality& left_;
    const Dimensionality& right_;
    std::vector<PlacePair> pairs_;
};

Bound Exists(Call& call) {
    SetPtr set = call.Set(0);
    SetPtr others = call.Set(1);
    const bool isConstant = set->IsConstant() && others->IsConstant();
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(
        isConstant, std::move(dimensionality),
        [set = std::move(set), others = std::move(others)](Evaluator& evaluator, TupleSet& result) {
            const TupleSet left = set->Evaluate(evaluator);
            const TupleSet right = others->Evaluate(evaluator);
            const ExistenceTest test(evaluator.Space(), left.dimensionality, right.dimensionality);
            const std::size_t compared =
                test.IsAlwaysTrue() ? std::min<std::size_t>(1, right.Count()) : right.Count();
            CheckPairs(left.Count(), compared, pairLimit, "the pairs of tuples that Exists compares are");
            for (std::size_t i = 0; i < left.Count(); ++i) {
                bool exists = false;
                for (std::size_t j = 0; j < compared && !exists; ++j) {
                    exists = test.Holds(left.At(i), right.At(j));
                }
                if (exists) {
                    result.Append(left.At(i));
                }
            }
        });
}

/// Appends the tuples of `set` that have a cell with a value, under one of `others` when they are given.
void AppendNonEmpty(Evaluator& evaluator, const TupleSet& set, const TupleSet* others, TupleSet& result) {
    CheckPairs(set.Count(), others != nullptr ? others->Count() : 1, setLimit,
               "the cells that NonEmpty reads are");
    for (std::size_t i = 0; i < set.Count(); ++i) {
        const Evaluator::Position position(evaluator, set.dimensionality, set.At(i));
        bool hasValue = others == nullptr && !evaluator.Cell().isEmpty;
        for (std::size_t j = 0; others != nullptr && j < others->Count() && !hasValue; ++j) {
            const Evaluator::Position other(evaluator, others->dimensionality, others->At(j));
            hasValue = !evaluator.Cell().isEmpty;
        }
        if (hasValue) {
            result.Append(set.At(i));
        }
    }
}

Bound NonEmpty(Call& call) {
    SetPtr set = call.Set(0);
    SetPtr others = call.Has(1) ? call.Set(1) : nullptr;
    Dimensionality dimensionality = set->GetDimensionality();
    for (const HierarchyId hierarchy : others ? others->GetDimensionality() : Dimensionality{}) {
        if (std::find(dimensionality.begin(), dimensionality.end(), hierarchy) != dimensionality.end()) {
            call.binder.Fail(call.arguments[1],
                             fmt::format("the hierarchy {} stands in both sets of NonEmpty",
                                         call.binder.Space().HierarchyUniqueName(hierarchy)));
        }
    }
    return MakeSet(
        false, std::move(dimensionality),
        [set = std::move(set), others = std::move(others)](Evaluator& evaluator, TupleSet& result) {
            const TupleSet own = set->Evaluate(evaluator);
            if (!others) {
                AppendNonEmpty(evaluator, own, nullptr, result);
                return;
            }
            const TupleSet other = others->Evaluate(evaluator);
            AppendNonEmpty(evaluator, own, &other, result);
        });
}

/// The combinations with facts. A number at the end tells how many of the sets the result has; the others
/// only restrict it.
Bound NonEmptyCrossJoin(Call& call) {
    std::vector<SetPart> parts;
    std::optional<std::size_t> kept;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        Bound bound = call.binder.Bind(call.arguments[i]);
        if (auto* number = std::get_if<NumberPtr>(&bound);
            number != nullptr && i > 0 && i + 1 == call.Count() && (*number)->IsConstant()) {
            const std::int64_t count = WholeNumber((*number)->Evaluate(call.binder.GetEvaluator()));
            if (count < 1 || static_cast<std::size_t>(count) > parts.size()) {
                call.binder.Fail(call.arguments[i],
                                 fmt::format("expected a number of sets, 1 to {}", parts.size()));
            }
            kept = static_cast<std::size_t>(count);
        } else {
            parts.push_back({call.binder.ToSet(std::move(bound), call.arguments[i]), call.arguments[i]});
        }
    }
    std::size_t places = 0;
    for (std::size_t i = 0; i < kept.value_or(parts.size()); ++i) {
        places += parts[i].set->GetDimensionality().size();
    }
    SetPtr joined =
        parts.size() == 1 ? std::move(parts.front().set) : MakeCrossJoin(call.binder, std::move(parts));
    Dimensionality whole = joined->GetDimensionality();
    Dimensionality dimensionality(
        whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(std::min(places, whole.size())));
    return MakeSet(false, dimensionality,
                   [joined = std::move(joined), dimensionality](Evaluator& evaluator, TupleSet& result) {
                       TupleSet found{joined->GetDimensionality(), {}};
                       AppendNonEmpty(evaluator, joined->Evaluate(evaluator), nullptr, found);
                       DistinctTuples distinct(dimensionality);
                       for (std::size_t i = 0; i < found.Count(); ++i) {
                           distinct.Add(found.At(i).first(dimensionality.size()));
                       }
                       distinct.AppendTo(result);
                   });
}

/// A text for every tuple, joined by a delimiter.
Bound GenerateText(Call& call, SetPtr set, Bound bound) {
    TextPtr text = call.binder.ToText(std::move(bound), call.arguments[1]);
    TextPtr delimiter = call.Has(2) ? call.Text(2) : MakeText(true, [](Evaluator&) { return std::string(); });
    return MakeText(false, [set = std::move(set), text = std::move(text),
                            delimiter = std::move(delimiter)](Evaluator& evaluator) {
        std::string joined;
        bool isFirst = true;
        ForEachTuple(evaluator, *set, [&](std::span<const MemberId>) {
            joined += isFirst ? std::string() : delimiter->Evaluate(evaluator);
            joined += text->Evaluate(evaluator);
            isFirst = false;
            CheckTextLength(joined.size());
        });
        return joined;
    });
}

/// A set for every tuple, all of them together.
Bound GenerateSets(Call& call, SetPtr set, SetPtr each) {
    const bool all = call.HasFlag(2, "all");
    Dimensionality dimensionality = each->GetDimensionality();
    const bool isConstant = set->IsConstant() && each->IsConstant();
    return MakeSet(
        isConstant, std::move(dimensionality),
        [all, set = std::move(set), each = std::move(each)](Evaluator& evaluator, TupleSet& result) {
            DistinctTuples distinct(result.dimensionality);
            ForEachTuple(evaluator, *set, [&](std::span<const MemberId>) {
                all ? each->Append(evaluator, result) : distinct.Add(each->Evaluate(evaluator));
            });
            distinct.AppendTo(result);
        });
}

Bound Generate(Call& call) {
    SetPtr set = call.Set(0);
    Bound each = call.binder.Bind(call.arguments[1]);
    if (std::holds_alternative<TextPtr>(each) || std::holds_alternative<AnyValue>(each)) {
        return GenerateText(call, std::move(set), std::move(each));
    }
    return GenerateSets(call, std::move(set), call.binder.ToSet(std::move(each), call.arguments[1]));
}

constexpr std::array<Function, 4> existenceFunctions{{{"Exists", 2, 2, Exists},
                                                      {"NonEmpty", 1, 2, NonEmpty},
                                                      {"NonEmptyCrossJoin", 1, anyNumber, NonEmptyCrossJoin},
                                                      {"Generate", 2, 3, Generate}}};

} // namespace

std::span<const Function> ExistenceFunctions() { return existenceFunctions; }

} // namespace qel::engine
