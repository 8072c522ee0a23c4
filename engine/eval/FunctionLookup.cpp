#include "engine/eval/FunctionLookup.h"

#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>

namespace qel::engine {

const Function* FindFunction(std::string_view name) {
    for (const std::span<const Function> table :
         {NumberFunctions(), ConditionalFunctions(), PeriodFunctions(), FamilyFunctions(), SetFunctions(),
          SortFunctions(), ExistenceFunctions(), DrillFunctions(), StatisticFunctions(), RankFunctions(),
          TextFunctions(), TextConversions(), MemberTests()}) {
        for (const Function& function : table) {
            if (mdx::IsWord(name, function.name)) {
                return &function;
            }
        }
    }
    return nullptr;
}

NumberPtr Call::NumberOrCell(std::size_t argument) {
    if (Has(argument)) {
        return Number(argument);
    }
    return MakeNumber(false, [range = Range()](Evaluator& evaluator) {
        return evaluator.RequireNumber(evaluator.Cell(), range);
    });
}

std::string Call::ConstantText(std::size_t argument) {
    const TextPtr text = Text(argument);
    if (!text->IsConstant()) { // its cells have no formulas before all of them are bound
        binder.Fail(arguments[argument], "expected a text that does not depend on cells");
    }
    return text->Evaluate(binder.GetEvaluator());
}

std::size_t Call::Flag(std::size_t argument, std::span<const std::string_view> words) const {
    const std::string_view word = binder.Word(arguments[argument]);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (mdx::IsWord(word, words[i])) {
            return i;
        }
    }
    binder.Fail(arguments[argument], fmt::format("expected {}", fmt::join(words, ", ")));
}

std::int64_t WholeNumber(const CellValue& value) {
    // No set has this many members; the bound also keeps the sum of two such numbers within 64 bits.
    constexpr double bound = 1e15;
    return value.number == value.number ? static_cast<std::int64_t>(std::clamp(value.number, -bound, bound))
                                        : 0;
}

} // namespace qel::engine
