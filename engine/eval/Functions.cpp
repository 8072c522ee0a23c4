#include "engine/eval/Functions.h"

#include "engine/mdx/Words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>

namespace qel::engine {

const Function* FindFunction(std::string_view name) {
    for (const std::span<const Function> table :
         {NumberFunctions(), FamilyFunctions(), SetFunctions(), SortFunctions()}) {
        for (const Function& function : table) {
            if (mdx::IsWord(name, function.name)) {
                return &function;
            }
        }
    }
    return nullptr;
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
