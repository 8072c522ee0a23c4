#pragma once

#include "engine/eval/Evaluator.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qel::engine {

/// No statement has as many named sets: aliases are numbered from here, see SetAlias.
inline constexpr std::size_t namedSetLimit = 1U << 24U;

/// A named set of WITH. `needs` are the sets before it that its formula names.
struct NamedSet {
    std::string_view name;
    SetPtr set;
    mdx::SourceRange range;
    int depth = 0; ///< how many expressions stand inside one another in the formula
    std::vector<std::size_t> needs;
};

/// The named sets of a statement. Each is evaluated once, on first use, in the context of the slicer; those
/// that the slicer uses, in that of the default members.
class NamedSets {
public:
    /// False when there is one of that name (any letter case).
    bool Add(NamedSet set);
    std::optional<std::size_t> Find(std::string_view name) const;
    const SetExpression& Expression(std::size_t set) const { return *sets_[set].set; }
    /// Raises InvalidExpression when the set needs itself, through a calculated member.
    const TupleSet& Tuples(std::size_t set, Evaluator& evaluator);

private:
    struct Result {
        std::optional<TupleSet> tuples;
        bool isRunning = false;
    };

    void Evaluate(std::size_t set, Evaluator& evaluator);
    std::vector<std::size_t> MissingFor(std::size_t set) const;

    std::vector<NamedSet> sets_;
    std::vector<Result> results_; ///< by set
    std::unordered_map<std::string, std::size_t> numbers_;
};

} // namespace qel::engine
