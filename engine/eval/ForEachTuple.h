#pragma once

#include "engine/eval/Evaluator.h"

namespace qel::engine {

/// Calls visit(tuple) for every tuple of the set, with the evaluator positioned on it and the set's name, if
/// it has one, at that tuple. Returns the number of tuples.
template <class Visit>
std::size_t ForEachTuple(Evaluator& evaluator, const SetExpression& set, const TupleSet& tuples,
                         const Visit& visit) {
    Evaluator::Iteration iteration(evaluator, set.IterationName(), tuples);
    for (std::size_t i = 0; i < tuples.Count(); ++i) {
        const Evaluator::Position position(evaluator, tuples.dimensionality, tuples.At(i));
        iteration.MoveTo(i);
        visit(tuples.At(i));
    }
    return tuples.Count();
}

template <class Visit>
std::size_t ForEachTuple(Evaluator& evaluator, const SetExpression& set, const Visit& visit) {
    const TupleSet tuples = set.Evaluate(evaluator);
    return ForEachTuple(evaluator, set, tuples, visit);
}

} // namespace qel::engine
