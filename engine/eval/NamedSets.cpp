#include "engine/eval/NamedSets.h"

#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

bool NamedSets::Add(NamedSet set) {
    if (!numbers_.emplace(FoldCase(set.name), sets_.size()).second) {
        return false;
    }
    sets_.push_back(std::move(set));
    results_.emplace_back();
    return true;
}

std::optional<std::size_t> NamedSets::Find(std::string_view name) const {
    if (sets_.empty()) {
        return std::nullopt;
    }
    const auto found = numbers_.find(FoldCase(name));
    return found == numbers_.end() ? std::nullopt : std::optional(found->second);
}

SetPtr NamedSets::Reference(std::size_t set) {
    const SetExpression& expression = *sets_[set].set;
    return std::make_unique<IteratedSet>(MakeSet(expression.IsConstant(), expression.GetDimensionality(),
                                                 [this, set](Evaluator& evaluator, TupleSet& result) {
                                                     result.Append(Tuples(set, evaluator));
                                                 }),
                                         sets_[set].iteration);
}

const TupleSet& NamedSets::Tuples(std::size_t set, Evaluator& evaluator) {
    if (!results_[set].tuples) {
        for (const std::size_t missing : MissingFor(set)) {
            Evaluate(missing, evaluator);
        }
    }
    return *results_[set].tuples;
}

void NamedSets::Evaluate(std::size_t set, Evaluator& evaluator) {
    Result& result = results_[set];
    if (result.isRunning) {
        mdx::RaiseAt(ErrorKind::InvalidExpression, sets_[set].source, sets_[set].range,
                     fmt::format("the set {} needs itself to be evaluated", sets_[set].name));
    }
    const Evaluator::Nesting nesting(evaluator, sets_[set].source, sets_[set].range, sets_[set].depth);
    const Evaluator::SlicerScope scope(evaluator);
    result.isRunning = true;
    result.tuples = sets_[set].set->Evaluate(evaluator);
    result.isRunning = false;
}

/// The set and those that it needs and that are not evaluated yet, each behind those that it needs: a long
/// chain of sets is no recursion.
std::vector<std::size_t> NamedSets::MissingFor(std::size_t set) const {
    std::vector<std::size_t> missing{set};
    std::vector<bool> isListed(sets_.size());
    isListed[set] = true;
    for (std::size_t i = 0; i < missing.size(); ++i) {
        for (const std::size_t need : sets_[missing[i]].needs) {
            if (!isListed[need] && !results_[need].tuples) {
                isListed[need] = true;
                missing.push_back(need);
            }
        }
    }
    std::sort(missing.begin(), missing.end()); // a set names only sets before it
    return missing;
}

} // namespace qel::engine
