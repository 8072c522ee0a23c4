#include "engine/eval/ForEachTuple.h"
#include "engine/eval/FunctionLookup.h"

#include <array>

// Functions that return a number, over a set or by condition.

namespace qel::engine {

namespace {

Bound SumOver(Call& call, SumOfSet::Kind kind) {
    SetPtr set = call.Set(0);
    if (call.Count() == 1) {
        return std::make_unique<SumOfSet>(kind, std::move(set), nullptr, std::nullopt, call.Range());
    }
    Bound value = call.binder.Bind(call.arguments[1]);
    std::optional<MemberRef> member;
    if (const auto* expression = std::get_if<MemberPtr>(&value);
        expression != nullptr && (*expression)->IsConstant()) {
        member = MemberRef{(*expression)->Hierarchy(), (*expression)->Evaluate(call.binder.GetEvaluator())};
    }
    return std::make_unique<SumOfSet>(kind, std::move(set),
                                      call.binder.ToNumber(std::move(value), call.arguments[1]), member,
                                      call.Range());
}

Bound Sum(Call& call) { return SumOver(call, SumOfSet::Kind::Sum); }
Bound AggregateOf(Call& call) { return SumOver(call, SumOfSet::Kind::Aggregate); }

/// Calls take(value) with every non-empty value of the set's cells. Returns the number of tuples.
template <class Take>
std::size_t VisitValues(const SetExpression& set, const NumberExpression& value, Evaluator& evaluator,
                        const Take& take) {
    return ForEachTuple(evaluator, set, [&](std::span<const MemberId>) {
        const CellValue cell = value.Evaluate(evaluator);
        if (!cell.isEmpty) {
            take(cell);
        }
    });
}

Bound Average(Call& call) {
    return MakeNumber(false, [set = call.Set(0), value = call.NumberOrCell(1)](Evaluator& evaluator) {
        CellValue sum;
        std::int64_t count = 0;
        VisitValues(*set, *value, evaluator, [&](const CellValue& cell) {
            sum = Add(sum, cell);
            ++count;
        });
        return count == 0 ? CellValue::Empty() : Divide(sum, CellValue::Exact(count, 0));
    });
}

/// Min with sign 1, Max with sign -1.
Bound Extreme(Call& call, int sign) {
    return MakeNumber(false, [sign, set = call.Set(0), value = call.NumberOrCell(1)](Evaluator& evaluator) {
        CellValue extreme;
        VisitValues(*set, *value, evaluator, [&](const CellValue& cell) {
            if (extreme.isEmpty || sign * Compare(cell, extreme) < 0) {
                extreme = cell;
            }
        });
        return extreme;
    });
}

Bound Minimum(Call& call) { return Extreme(call, 1); }
Bound Maximum(Call& call) { return Extreme(call, -1); }

Bound Count(Call& call) {
    constexpr std::array<std::string_view, 2> flags{"includeempty", "excludeempty"};
    const bool all = call.Count() < 2 || call.Flag(1, flags) == 0;
    SetPtr set = call.Set(0);
    const bool isConstant = all && set->IsConstant();
    return MakeNumber(isConstant, [all, set = std::move(set)](Evaluator& evaluator) {
        if (all) {
            return CellValue::Exact(static_cast<std::int64_t>(set->Evaluate(evaluator).Count()), 0);
        }
        std::int64_t count = 0;
        ForEachTuple(evaluator, *set,
                     [&](std::span<const MemberId>) { count += evaluator.Cell().isEmpty ? 0 : 1; });
        return CellValue::Exact(count, 0);
    });
}

Bound IsEmptyCell(Call& call) {
    return MakeCondition([value = call.binder.BindValue(call.arguments[0])](Evaluator& evaluator) {
        return value->Evaluate(evaluator).isEmpty;
    });
}

Bound CoalesceEmpty(Call& call) {
    std::vector<NumberPtr> values;
    bool areNumbers = true;
    for (const mdx::NodeId argument : call.arguments) {
        Bound value = call.binder.Bind(argument);
        areNumbers = areNumbers && std::holds_alternative<NumberPtr>(value);
        values.push_back(call.binder.ToValue(std::move(value), argument));
    }
    NumberPtr first = MakeNumber(false, [values = std::move(values)](Evaluator& evaluator) {
        CellValue result;
        for (const NumberPtr& value : values) {
            result = value->Evaluate(evaluator);
            if (!result.isEmpty) {
                break;
            }
        }
        return result;
    });
    return areNumbers ? Bound(std::move(first)) : Bound(AnyValue{std::move(first)});
}

Bound Absolute(Call& call) {
    return MakeNumber(false, [value = call.Number(0)](Evaluator& evaluator) {
        const CellValue number = value->Evaluate(evaluator);
        return number.number < 0 ? Negate(number) : number;
    });
}

constexpr std::array<Function, 9> numberFunctions{{{"Sum", 1, 2, Sum},
                                                   {"Aggregate", 1, 2, AggregateOf},
                                                   {"Avg", 1, 2, Average},
                                                   {"Min", 1, 2, Minimum},
                                                   {"Max", 1, 2, Maximum},
                                                   {"Count", 1, 2, Count},
                                                   {"IsEmpty", 1, 1, IsEmptyCell},
                                                   {"CoalesceEmpty", 1, anyNumber, CoalesceEmpty},
                                                   {"Abs", 1, 1, Absolute}}};

} // namespace

std::span<const Function> NumberFunctions() { return numberFunctions; }

} // namespace qel::engine
