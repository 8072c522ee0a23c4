#include "engine/eval/ForEachTuple.h"
#include "engine/eval/FunctionLookup.h"
#include "engine/mdx/ReservedWords.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
#include <span>

// Functions that filter or sort a set's tuples by a value.

namespace qel::engine {

namespace {

using Order = std::vector<std::size_t>;

bool IsFlag(std::string_view word, std::span<const std::string_view> flags) {
    return std::any_of(flags.begin(), flags.end(),
                       [word](std::string_view flag) { return mdx::IsWord(word, flag); });
}

Order FirstToLast(std::size_t count) {
    Order order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

/// The value of an expression at every tuple of a set.
std::vector<CellValue> ValuesOf(const NumberExpression& value, const SetExpression& set,
                                const TupleSet& tuples, Evaluator& evaluator) {
    std::vector<CellValue> values;
    values.reserve(tuples.Count());
    ForEachTuple(evaluator, set, tuples,
                 [&](std::span<const MemberId>) { values.push_back(value.Evaluate(evaluator)); });
    return values;
}

Bound Filter(Call& call) {
    SetPtr set = call.Set(0);
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [set = std::move(set), condition = call.binder.BindCondition(call.arguments[1])](
                       Evaluator& evaluator, TupleSet& result) {
                       ForEachTuple(evaluator, *set, [&](std::span<const MemberId> tuple) {
                           if (condition->Evaluate(evaluator)) {
                               result.Append(tuple);
                           }
                       });
                   });
}

/// TopCount and BottomCount: the first `count` tuples after sorting. Ties keep the set's order.
Bound Extremes(Call& call, int sign) {
    SetPtr set = call.Set(0);
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [sign, set = std::move(set), count = call.Number(1),
                    value = call.OptionalNumber(2)](Evaluator& evaluator, TupleSet& result) {
                       const TupleSet whole = set->Evaluate(evaluator);
                       Order order = FirstToLast(whole.Count());
                       if (value) {
                           const auto values = ValuesOf(*value, *set, whole, evaluator);
                           std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
                               return sign * Compare(values[a], values[b]) < 0;
                           });
                       }
                       const std::int64_t kept = WholeNumber(count->Evaluate(evaluator));
                       for (std::size_t i = 0; i < order.size() && std::int64_t(i) < kept; ++i) {
                           result.Append(whole.At(order[i]));
                       }
                   });
}

Bound TopCount(Call& call) { return Extremes(call, -1); }
Bound BottomCount(Call& call) { return Extremes(call, 1); }

/// What a set is sorted by: a value, and whether the smallest comes first. Later keys decide between tuples
/// that are equal by the earlier ones.
struct SortKey {
    NumberPtr value;
    int sign = 1;
    mdx::SourceRange range;
};
using SortKeys = std::vector<SortKey>;

/// Negative when the tuple with the values `a` comes before that with `b`.
int CompareKeys(const Evaluator& evaluator, const SortKeys& keys, std::span<const CellValue> a,
                std::span<const CellValue> b) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (const int order = CompareValues(evaluator, a[i], b[i], keys[i].range); order != 0) {
            return keys[i].sign * order;
        }
    }
    return 0;
}

/// Sorts tuples within families, by the first hierarchy, then by the next: compares the two ancestors that
/// are siblings; a member comes before its descendants. A member's value is that of its cell under the
/// tuple's members before it.
class FamilySort {
public:
    FamilySort(Evaluator& evaluator, const SortKeys& keys, const Dimensionality& dimensionality)
        : evaluator_(evaluator), keys_(keys), dimensionality_(dimensionality) {}

    bool IsBefore(std::span<const MemberId> a, std::span<const MemberId> b) {
        const auto [differing, other] = std::mismatch(a.begin(), a.end(), b.begin());
        if (differing == a.end()) {
            return false;
        }
        const auto place = static_cast<std::size_t>(differing - a.begin());
        return IsBefore(a.first(place), *differing, *other);
    }

private:
    bool IsBefore(std::span<const MemberId> before, MemberId a, MemberId b) {
        const MemberSpace& space = evaluator_.Space();
        const HierarchyId hierarchy = dimensionality_[before.size()];
        const std::size_t levelOfA = space.LevelOf({hierarchy, a});
        const std::size_t levelOfB = space.LevelOf({hierarchy, b});
        a = space.AncestorAt({hierarchy, a}, std::min(levelOfA, levelOfB));
        b = space.AncestorAt({hierarchy, b}, std::min(levelOfA, levelOfB));
        if (a == b) {
            return levelOfA < levelOfB;
        }
        MemberId parentOfA = space.Parent({hierarchy, a});
        MemberId parentOfB = space.Parent({hierarchy, b});
        while (parentOfA != parentOfB) {
            a = parentOfA;
            b = parentOfB;
            parentOfA = space.Parent({hierarchy, a});
            parentOfB = space.Parent({hierarchy, b});
        }
        const int order = CompareKeys(evaluator_, keys_, ValuesOf(before, a), ValuesOf(before, b));
        return order != 0 ? order < 0 : a < b;
    }

    const std::vector<CellValue>& ValuesOf(std::span<const MemberId> before, MemberId member) {
        std::vector<MemberId> tuple(before.begin(), before.end());
        tuple.push_back(member);
        const auto known = values_.find(tuple);
        if (known != values_.end()) {
            return known->second;
        }
        const Evaluator::Position position(evaluator_, std::span(dimensionality_).first(tuple.size()), tuple);
        std::vector<CellValue> values;
        for (const SortKey& key : keys_) {
            values.push_back(key.value->Evaluate(evaluator_));
        }
        return values_.emplace(std::move(tuple), std::move(values)).first->second;
    }

    Evaluator& evaluator_;
    const SortKeys& keys_;
    const Dimensionality& dimensionality_;
    std::map<std::vector<MemberId>, std::vector<CellValue>> values_;
};

Order SortFlat(Evaluator& evaluator, const SetExpression& set, const TupleSet& whole, const SortKeys& keys) {
    std::vector<CellValue> values; // tuple after tuple
    values.reserve(whole.Count() * keys.size());
    ForEachTuple(evaluator, set, whole, [&](std::span<const MemberId>) {
        for (const SortKey& key : keys) {
            values.push_back(key.value->Evaluate(evaluator));
        }
    });
    const auto at = [&](std::size_t tuple) {
        return std::span<const CellValue>(values).subspan(tuple * keys.size(), keys.size());
    };
    Order order = FirstToLast(whole.Count());
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return CompareKeys(evaluator, keys, at(a), at(b)) < 0;
    });
    return order;
}

Order SortFamilies(Evaluator& evaluator, const TupleSet& whole, const SortKeys& keys) {
    Order order = FirstToLast(whole.Count());
    FamilySort families(evaluator, keys, whole.dimensionality);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return families.IsBefore(whole.At(a), whole.At(b));
    });
    return order;
}

Bound SortBy(SetPtr set, SortKeys keys, bool withinFamilies) {
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [withinFamilies, set = std::move(set), keys = std::move(keys)](Evaluator& evaluator,
                                                                                  TupleSet& result) {
                       const TupleSet whole = set->Evaluate(evaluator);
                       const Order order = withinFamilies ? SortFamilies(evaluator, whole, keys)
                                                          : SortFlat(evaluator, *set, whole, keys);
                       for (const std::size_t tuple : order) {
                           result.Append(whole.At(tuple));
                       }
                   });
}

/// Order(set, key, flag, key, flag, ...), where flags may be left out.
Bound OrderSet(Call& call) {
    constexpr std::array<std::string_view, 4> flags{"asc", "desc", "basc", "bdesc"};
    SetPtr set = call.Set(0);
    SortKeys keys;
    std::optional<bool> withinFamilies;
    for (std::size_t i = 1; i < call.Count(); ++i) {
        Bound key = call.binder.Bind(call.arguments[i]);
        NumberPtr value = call.binder.ToValue(std::move(key), call.arguments[i]);
        const mdx::SourceRange range = call.binder.At(call.arguments[i]).range;
        const bool hasFlag = i + 1 < call.Count() && IsFlag(call.binder.Word(call.arguments[i + 1]), flags);
        const std::size_t flag = hasFlag ? call.Flag(++i, flags) : 0;
        const bool isFlat = flag >= 2;
        if (withinFamilies.value_or(!isFlat) == isFlat) {
            call.binder.Fail(call.arguments[i],
                             "keys within families (ASC, DESC) and across them (BASC, BDESC) do not mix");
        }
        withinFamilies = !isFlat;
        keys.push_back({std::move(value), flag % 2 == 0 ? 1 : -1, range});
    }
    return SortBy(std::move(set), std::move(keys), *withinFamilies);
}

constexpr std::array<Function, 4> sortFunctions{{{"Filter", 2, 2, Filter},
                                                 {"Order", 2, anyNumber, OrderSet},
                                                 {"TopCount", 2, 3, TopCount},
                                                 {"BottomCount", 2, 3, BottomCount}}};

} // namespace

std::span<const Function> SortFunctions() { return sortFunctions; }

} // namespace qel::engine
