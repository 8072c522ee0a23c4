#include "engine/eval/FunctionLookup.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <span>

// Functions that filter or sort a set's tuples by a value.

namespace qel::engine {

namespace {

using Order = std::vector<std::size_t>;

Order FirstToLast(std::size_t count) {
    Order order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

/// The value of an expression at every tuple of a set.
template <class Value, class ExpressionPtr>
std::vector<Value> ValuesOf(const ExpressionPtr& expression, const TupleSet& set, Evaluator& evaluator) {
    std::vector<Value> values;
    values.reserve(set.Count());
    for (std::size_t i = 0; i < set.Count(); ++i) {
        const Evaluator::Position position(evaluator, set.dimensionality, set.At(i));
        values.push_back(expression->Evaluate(evaluator));
    }
    return values;
}

Bound Filter(Call& call) {
    SetPtr set = call.Set(0);
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [set = std::move(set), condition = call.binder.BindCondition(call.arguments[1])](
                       Evaluator& evaluator, TupleSet& result) {
                       const TupleSet whole = set->Evaluate(evaluator);
                       for (std::size_t i = 0; i < whole.Count(); ++i) {
                           const Evaluator::Position position(evaluator, whole.dimensionality, whole.At(i));
                           if (condition->Evaluate(evaluator)) {
                               result.Append(whole.At(i));
                           }
                       }
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
                           const auto values = ValuesOf<CellValue>(value, whole, evaluator);
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

/// Sorts tuples within families, by the first hierarchy, then by the next: compares the two ancestors that
/// are siblings; a member comes before its descendants. A member's value is that of its cell under the
/// tuple's members before it.
class FamilySort {
public:
    FamilySort(Evaluator& evaluator, const NumberExpression& value, const Dimensionality& dimensionality,
               int sign)
        : evaluator_(evaluator), value_(value), dimensionality_(dimensionality), sign_(sign) {}

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
        const int order = sign_ * Compare(ValueOf(before, a), ValueOf(before, b));
        return order != 0 ? order < 0 : a < b;
    }

    const CellValue& ValueOf(std::span<const MemberId> before, MemberId member) {
        std::vector<MemberId> tuple(before.begin(), before.end());
        tuple.push_back(member);
        const auto known = values_.find(tuple);
        if (known != values_.end()) {
            return known->second;
        }
        const Evaluator::Position position(evaluator_, std::span(dimensionality_).first(tuple.size()), tuple);
        return values_.emplace(tuple, value_.Evaluate(evaluator_)).first->second;
    }

    Evaluator& evaluator_;
    const NumberExpression& value_;
    const Dimensionality& dimensionality_;
    int sign_;
    std::map<std::vector<MemberId>, CellValue> values_;
};

bool IsNumberLike(const Bound& bound) { return !std::holds_alternative<TextPtr>(bound); }

Bound SortByText(SetPtr set, TextPtr text, int sign) {
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(
        false, std::move(dimensionality),
        [sign, set = std::move(set), text = std::move(text)](Evaluator& evaluator, TupleSet& result) {
            const TupleSet whole = set->Evaluate(evaluator);
            const auto texts = ValuesOf<std::string>(text, whole, evaluator);
            Order order = FirstToLast(whole.Count());
            std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
                return sign * texts[a].compare(texts[b]) < 0;
            });
            for (const std::size_t tuple : order) {
                result.Append(whole.At(tuple));
            }
        });
}

Bound SortByNumber(SetPtr set, NumberPtr value, int sign, bool withinFamilies) {
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [sign, withinFamilies, set = std::move(set),
                    value = std::move(value)](Evaluator& evaluator, TupleSet& result) {
                       const TupleSet whole = set->Evaluate(evaluator);
                       Order order = FirstToLast(whole.Count());
                       if (withinFamilies) {
                           FamilySort families(evaluator, *value, whole.dimensionality, sign);
                           std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
                               return families.IsBefore(whole.At(a), whole.At(b));
                           });
                       } else {
                           const auto values = ValuesOf<CellValue>(value, whole, evaluator);
                           std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
                               return sign * Compare(values[a], values[b]) < 0;
                           });
                       }
                       for (const std::size_t tuple : order) {
                           result.Append(whole.At(tuple));
                       }
                   });
}

Bound OrderSet(Call& call) {
    constexpr std::array<std::string_view, 4> flags{"asc", "desc", "basc", "bdesc"};
    const std::size_t flag = call.Count() > 2 ? call.Flag(2, flags) : 0;
    const int sign = flag % 2 == 0 ? 1 : -1;
    SetPtr set = call.Set(0);
    Bound key = call.binder.Bind(call.arguments[1]);
    if (!IsNumberLike(key)) {
        return SortByText(std::move(set), std::get<TextPtr>(std::move(key)), sign);
    }
    return SortByNumber(std::move(set), call.binder.ToNumber(std::move(key), call.arguments[1]), sign,
                        flag < 2);
}

constexpr std::array<Function, 4> functions{{{"Filter", 2, 2, Filter},
                                             {"Order", 2, 3, OrderSet},
                                             {"TopCount", 2, 3, TopCount},
                                             {"BottomCount", 2, 3, BottomCount}}};

} // namespace

std::span<const Function> SortFunctions() { return functions; }

} // namespace qel::engine
