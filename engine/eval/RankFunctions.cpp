#include "engine/eval/ForEachTuple.h"
#include "engine/eval/FunctionLookup.h"

#include <algorithm>
#include <array>
#include <numeric>

// Functions of a tuple's place among others, and of the largest or smallest part of a set.

namespace qel::engine {

namespace {

/// 1 for the first tuple of the set; 0 for one that it lacks, and nothing for one that does not exist.
CellValue PlaceOf(const TupleSet& tuple, const TupleSet& among) {
    if (tuple.Count() == 0) {
        return CellValue::Empty();
    }
    for (std::size_t i = 0; i < among.Count(); ++i) {
        if (std::equal(tuple.ids.begin(), tuple.ids.end(), among.At(i).begin())) {
            return CellValue::Exact(static_cast<std::int64_t>(i) + 1, 0);
        }
    }
    return CellValue::Exact(0, 0);
}

/// One more than there are larger values in the set. An empty value comes after all others.
CellValue RankByValue(Evaluator& evaluator, const SetExpression& tuple, const SetExpression& among,
                      const NumberExpression& value) {
    const TupleSet own = tuple.Evaluate(evaluator);
    if (own.Count() == 0) {
        return CellValue::Empty();
    }
    CellValue looked;
    {
        const Evaluator::Position position(evaluator, own.dimensionality, own.At(0));
        looked = value.Evaluate(evaluator);
    }
    std::int64_t larger = 0;
    ForEachTuple(evaluator, among, [&](std::span<const MemberId>) {
        const CellValue other = value.Evaluate(evaluator);
        larger += !other.isEmpty && (looked.isEmpty || Compare(other, looked) > 0) ? 1 : 0;
    });
    return CellValue::Exact(larger + 1, 0);
}

Bound Rank(Call& call) {
    SetPtr tuple = call.binder.ToSet(call.binder.Bind(call.arguments[0]), call.arguments[0]);
    SetPtr among = call.Set(1);
    call.binder.CheckDimensionality(among->GetDimensionality(), *tuple, call.arguments[0]);
    if (!call.Has(2)) {
        const bool isConstant = tuple->IsConstant() && among->IsConstant();
        return MakeNumber(isConstant,
                          [tuple = std::move(tuple), among = std::move(among)](Evaluator& evaluator) {
                              return PlaceOf(tuple->Evaluate(evaluator), among->Evaluate(evaluator));
                          });
    }
    return MakeNumber(false,
                      [tuple = std::move(tuple), among = std::move(among), value = call.Number(2)](
                          Evaluator& evaluator) { return RankByValue(evaluator, *tuple, *among, *value); });
}

/// The values of a set's tuples, and the tuples' order by them: largest first, or smallest.
struct Sorted {
    TupleSet tuples;
    std::vector<CellValue> values;
    std::vector<std::size_t> order;
};

Sorted SortByValue(Evaluator& evaluator, const SetExpression& set, const NumberExpression& value, int sign) {
    Sorted sorted;
    sorted.tuples = set.Evaluate(evaluator);
    ForEachTuple(evaluator, set, sorted.tuples,
                 [&](std::span<const MemberId>) { sorted.values.push_back(value.Evaluate(evaluator)); });
    sorted.order.resize(sorted.tuples.Count());
    std::iota(sorted.order.begin(), sorted.order.end(), std::size_t{0});
    std::stable_sort(sorted.order.begin(), sorted.order.end(), [&](std::size_t a, std::size_t b) {
        return sign * Compare(sorted.values[a], sorted.values[b]) < 0;
    });
    return sorted;
}

/// The fewest tuples from the start of the order whose values reach the target together.
void AppendUntil(const Sorted& sorted, const CellValue& target, TupleSet& result) {
    CellValue sum;
    for (const std::size_t tuple : sorted.order) {
        if (Compare(sum, target) >= 0) {
            return;
        }
        result.Append(sorted.tuples.At(tuple));
        sum = Add(sum, sorted.values[tuple]);
    }
}

void AppendShare(const Sorted& sorted, const CellValue& percent, TupleSet& result) {
    CellValue total;
    for (const CellValue& value : sorted.values) {
        total = Add(total, value);
    }
    if (total.isEmpty && sorted.tuples.Count() > 0) {
        result.Append(sorted.tuples.At(sorted.order.front())); // all are alike
        return;
    }
    Sorted hundredfold = sorted; // so that the share needs no division
    for (CellValue& value : hundredfold.values) {
        value = Multiply(value, CellValue::Exact(total.number < 0 ? -100 : 100, 0));
    }
    AppendUntil(hundredfold, Multiply(percent, total.number < 0 ? Negate(total) : total), result);
}

Bound Part(Call& call, int sign, bool isShare) {
    SetPtr set = call.Set(0);
    Dimensionality dimensionality = set->GetDimensionality();
    return MakeSet(false, std::move(dimensionality),
                   [sign, isShare, set = std::move(set), amount = call.Number(1),
                    value = call.Number(2)](Evaluator& evaluator, TupleSet& result) {
                       const Sorted sorted = SortByValue(evaluator, *set, *value, sign);
                       const CellValue target = amount->Evaluate(evaluator);
                       isShare ? AppendShare(sorted, target, result) : AppendUntil(sorted, target, result);
                   });
}

Bound TopPercent(Call& call) { return Part(call, -1, true); }
Bound BottomPercent(Call& call) { return Part(call, 1, true); }
Bound TopSum(Call& call) { return Part(call, -1, false); }
Bound BottomSum(Call& call) { return Part(call, 1, false); }

constexpr std::array<Function, 5> rankFunctions{{{"Rank", 2, 3, Rank},
                                                 {"TopPercent", 3, 3, TopPercent},
                                                 {"BottomPercent", 3, 3, BottomPercent},
                                                 {"TopSum", 3, 3, TopSum},
                                                 {"BottomSum", 3, 3, BottomSum}}};

} // namespace

std::span<const Function> RankFunctions() { return rankFunctions; }

} // namespace qel::engine
