#include "engine/eval/FunctionLookup.h"

#include <array>

// Functions that return a number, over a set or by condition.

namespace qel::engine {

namespace {

Bound SumOver(Call& call, SumOfSet::Kind kind) {
    SetPtr set = call.Set(0);
    if (call.Count() == 1) {
        return std::make_unique<SumOfSet>(kind, std::move(set), nullptr, std::nullopt);
    }
    Bound value = call.binder.Bind(call.arguments[1]);
    std::optional<MemberRef> member;
    if (const auto* expression = std::get_if<MemberPtr>(&value);
        expression != nullptr && (*expression)->IsConstant()) {
        member = MemberRef{(*expression)->Hierarchy(), (*expression)->Evaluate(call.binder.GetEvaluator())};
    }
    return std::make_unique<SumOfSet>(kind, std::move(set),
                                      call.binder.ToNumber(std::move(value), call.arguments[1]), member);
}

Bound Sum(Call& call) { return SumOver(call, SumOfSet::Kind::Sum); }
Bound Aggregate(Call& call) { return SumOver(call, SumOfSet::Kind::Aggregate); }

/// Calls take(value) with every non-empty value of the set's cells. Returns the number of tuples.
template <class Take>
std::size_t VisitValues(const SetExpression& set, const NumberExpression* value, Evaluator& evaluator,
                        const Take& take) {
    const TupleSet tuples = set.Evaluate(evaluator);
    for (std::size_t i = 0; i < tuples.Count(); ++i) {
        const Evaluator::Position position(evaluator, tuples.dimensionality, tuples.At(i));
        const CellValue cell = value != nullptr ? value->Evaluate(evaluator) : evaluator.Cell();
        if (!cell.isEmpty) {
            take(cell);
        }
    }
    return tuples.Count();
}

Bound Average(Call& call) {
    return MakeNumber(false, [set = call.Set(0), value = call.OptionalNumber(1)](Evaluator& evaluator) {
        CellValue sum;
        std::int64_t count = 0;
        VisitValues(*set, value.get(), evaluator, [&](const CellValue& cell) {
            sum = Add(sum, cell);
            ++count;
        });
        return count == 0 ? CellValue::Empty() : Divide(sum, CellValue::Exact(count, 0));
    });
}

/// Min with sign 1, Max with sign -1.
Bound Extreme(Call& call, int sign) {
    return MakeNumber(false, [sign, set = call.Set(0), value = call.OptionalNumber(1)](Evaluator& evaluator) {
        CellValue extreme;
        VisitValues(*set, value.get(), evaluator, [&](const CellValue& cell) {
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
        VisitValues(*set, nullptr, evaluator, [&](const CellValue&) { ++count; });
        return CellValue::Exact(count, 0);
    });
}

Bound IIf(Call& call) {
    Bound whenTrue = call.binder.Bind(call.arguments[1]);
    ConditionPtr condition = call.binder.BindCondition(call.arguments[0]);
    if (std::holds_alternative<TextPtr>(whenTrue)) {
        return MakeText([condition = std::move(condition), whenTrue = std::get<TextPtr>(std::move(whenTrue)),
                         whenFalse = call.binder.BindText(call.arguments[2])](Evaluator& evaluator) {
            return condition->Evaluate(evaluator) ? whenTrue->Evaluate(evaluator)
                                                  : whenFalse->Evaluate(evaluator);
        });
    }
    return MakeNumber(false, [condition = std::move(condition),
                              number = call.binder.ToNumber(std::move(whenTrue), call.arguments[1]),
                              other = call.Number(2)](Evaluator& evaluator) {
        return condition->Evaluate(evaluator) ? number->Evaluate(evaluator) : other->Evaluate(evaluator);
    });
}

Bound IsEmptyCell(Call& call) {
    return MakeCondition(
        [value = call.Number(0)](Evaluator& evaluator) { return value->Evaluate(evaluator).isEmpty; });
}

Bound CoalesceEmpty(Call& call) {
    std::vector<NumberPtr> values;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        values.push_back(call.Number(i));
    }
    return MakeNumber(false, [values = std::move(values)](Evaluator& evaluator) {
        CellValue result;
        for (const NumberPtr& value : values) {
            result = value->Evaluate(evaluator);
            if (!result.isEmpty) {
                break;
            }
        }
        return result;
    });
}

Bound Absolute(Call& call) {
    return MakeNumber(false, [value = call.Number(0)](Evaluator& evaluator) {
        const CellValue number = value->Evaluate(evaluator);
        return number.number < 0 ? Negate(number) : number;
    });
}

constexpr std::array<Function, 10> functions{{{"Sum", 1, 2, Sum},
                                              {"Aggregate", 1, 2, Aggregate},
                                              {"Avg", 1, 2, Average},
                                              {"Min", 1, 2, Minimum},
                                              {"Max", 1, 2, Maximum},
                                              {"Count", 1, 2, Count},
                                              {"IIf", 3, 3, IIf},
                                              {"IsEmpty", 1, 1, IsEmptyCell},
                                              {"CoalesceEmpty", 1, anyNumber, CoalesceEmpty},
                                              {"Abs", 1, 1, Absolute}}};

} // namespace

std::span<const Function> NumberFunctions() { return functions; }

} // namespace qel::engine
