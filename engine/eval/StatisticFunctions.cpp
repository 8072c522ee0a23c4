#include "engine/eval/ForEachTuple.h"
#include "engine/eval/FunctionLookup.h"

#include <algorithm>
#include <array>
#include <cmath>

// Functions of the distribution of a set's values. Empty cells do not count.

namespace qel::engine {

namespace {

std::vector<CellValue> ValuesOf(const SetExpression& set, const NumberExpression& value,
                                Evaluator& evaluator) {
    std::vector<CellValue> values;
    ForEachTuple(evaluator, set, [&](std::span<const MemberId>) {
        const CellValue cell = value.Evaluate(evaluator);
        if (!cell.isEmpty) {
            values.push_back(cell);
        }
    });
    return values;
}

Bound Median(Call& call) {
    return MakeNumber(false, [set = call.Set(0), value = call.NumberOrCell(1)](Evaluator& evaluator) {
        std::vector<CellValue> values = ValuesOf(*set, *value, evaluator);
        if (values.empty()) {
            return CellValue::Empty();
        }
        std::sort(values.begin(), values.end(),
                  [](const CellValue& a, const CellValue& b) { return Compare(a, b) < 0; });
        const std::size_t middle = values.size() / 2;
        return values.size() % 2 == 1
                   ? values[middle]
                   : Divide(Add(values[middle - 1], values[middle]), CellValue::Exact(2, 0));
    });
}

/// Around the mean, which is found first: a single pass would lose small variances of large numbers.
double SumOfSquares(const std::vector<CellValue>& values) {
    CellValue sum;
    for (const CellValue& value : values) {
        sum = Add(sum, value);
    }
    const double mean = sum.number / static_cast<double>(values.size());
    double squares = 0;
    for (const CellValue& value : values) {
        squares += (value.number - mean) * (value.number - mean);
    }
    return squares;
}

/// `population` divides by the number of values, otherwise by one less, which needs two values.
Bound Variance(Call& call, bool population, bool root) {
    return MakeNumber(
        false, [population, root, set = call.Set(0), value = call.NumberOrCell(1)](Evaluator& evaluator) {
            const std::vector<CellValue> values = ValuesOf(*set, *value, evaluator);
            const std::size_t lost = population ? 0 : 1;
            if (values.size() <= lost) {
                return CellValue::Empty();
            }
            const double variance = SumOfSquares(values) / static_cast<double>(values.size() - lost);
            return CellValue::Inexact(root ? std::sqrt(variance) : variance);
        });
}

Bound SampleVariance(Call& call) { return Variance(call, false, false); }
Bound PopulationVariance(Call& call) { return Variance(call, true, false); }
Bound SampleDeviation(Call& call) { return Variance(call, false, true); }
Bound PopulationDeviation(Call& call) { return Variance(call, true, true); }

constexpr std::array<Function, 9> statisticFunctions{{{"Median", 1, 2, Median},
                                                      {"Var", 1, 2, SampleVariance},
                                                      {"Variance", 1, 2, SampleVariance},
                                                      {"VarP", 1, 2, PopulationVariance},
                                                      {"VarianceP", 1, 2, PopulationVariance},
                                                      {"Stdev", 1, 2, SampleDeviation},
                                                      {"Stddev", 1, 2, SampleDeviation},
                                                      {"StdevP", 1, 2, PopulationDeviation},
                                                      {"StddevP", 1, 2, PopulationDeviation}}};

} // namespace

std::span<const Function> StatisticFunctions() { return statisticFunctions; }

} // namespace qel::engine
