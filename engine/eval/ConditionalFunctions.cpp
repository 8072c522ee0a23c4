#include "engine/eval/FunctionLookup.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

// IIf and CASE: one of several expressions, by conditions.

namespace qel::engine {

using mdx::NodeId;
using mdx::noNode;

namespace {

/// Tells which branch holds, if any.
using Choice = std::function<std::optional<std::size_t>(Evaluator&)>;

/// The expressions that a choice is made of.
class Branches {
public:
    explicit Branches(Binder& binder) : binder_(binder) {}

    void Add(NodeId node) {
        bounds_.push_back(binder_.Bind(node));
        nodes_.push_back(node);
    }

    /// A set when there is one among them; numbers, texts or conditions when all are such, and else values.
    template <class Choosing>
    Bound Choose(Choosing choice) {
        if (std::any_of(bounds_.begin(), bounds_.end(), IsSet)) {
            return Sets(std::move(choice));
        }
        if (AreAll<TextPtr>()) {
            return MakeText(false, [choice, texts = Take(&Binder::ToText)](Evaluator& evaluator) {
                const std::optional<std::size_t> chosen = choice(evaluator);
                return chosen ? texts[*chosen]->Evaluate(evaluator) : std::string();
            });
        }
        if (AreAll<ConditionPtr>()) {
            return MakeCondition([choice, conditions = Take(&Binder::ToCondition)](Evaluator& evaluator) {
                const std::optional<std::size_t> chosen = choice(evaluator);
                return chosen && conditions[*chosen]->Evaluate(evaluator);
            });
        }
        const bool areNumbers = AreAll<NumberPtr>();
        NumberPtr value = MakeNumber(false, [choice, values = Take(&Binder::ToValue)](Evaluator& evaluator) {
            const std::optional<std::size_t> chosen = choice(evaluator);
            return chosen ? values[*chosen]->Evaluate(evaluator) : CellValue::Empty();
        });
        return areNumbers ? Bound(std::move(value)) : Bound(AnyValue{std::move(value)});
    }

private:
    template <class Kind>
    bool AreAll() const {
        return std::all_of(bounds_.begin(), bounds_.end(),
                           [](const Bound& bound) { return std::holds_alternative<Kind>(bound); });
    }

    template <class Pointer>
    std::vector<Pointer> Take(Pointer (Binder::*convert)(Bound, NodeId)) {
        std::vector<Pointer> taken;
        for (std::size_t i = 0; i < bounds_.size(); ++i) {
            taken.push_back((binder_.*convert)(std::move(bounds_[i]), nodes_[i]));
        }
        return taken;
    }

    template <class Choosing>
    Bound Sets(Choosing choice) {
        std::vector<SetPtr> sets = Take(&Binder::ToSet);
        Dimensionality dimensionality;
        for (std::size_t i = 0; i < sets.size(); ++i) {
            binder_.CheckDimensionality(dimensionality, *sets[i], nodes_[i]);
            dimensionality = dimensionality.empty() ? sets[i]->GetDimensionality() : dimensionality;
        }
        return MakeSet(false, std::move(dimensionality),
                       [choice, sets = std::move(sets)](Evaluator& evaluator, TupleSet& result) {
                           if (const std::optional<std::size_t> chosen = choice(evaluator)) {
                               sets[*chosen]->Append(evaluator, result);
                           }
                       });
    }

    Binder& binder_;
    std::vector<Bound> bounds_;
    std::vector<NodeId> nodes_;
};

Bound IIf(Call& call) {
    Branches branches(call.binder);
    branches.Add(call.arguments[1]);
    branches.Add(call.arguments[2]);
    const std::shared_ptr<ConditionExpression> condition = call.binder.BindCondition(call.arguments[0]);
    return branches.Choose([condition](Evaluator& evaluator) {
        return std::optional<std::size_t>(condition->Evaluate(evaluator) ? 0 : 1);
    });
}

/// CASE WHEN condition THEN value ...: the first condition that holds.
Choice FirstCondition(Binder& binder, const std::vector<NodeId>& whens,
                      std::optional<std::size_t> otherwise) {
    auto conditions = std::make_shared<std::vector<ConditionPtr>>();
    for (const NodeId when : whens) {
        conditions->push_back(binder.BindCondition(when));
    }
    return [conditions, otherwise](Evaluator& evaluator) {
        for (std::size_t i = 0; i < conditions->size(); ++i) {
            if ((*conditions)[i]->Evaluate(evaluator)) {
                return std::optional(i);
            }
        }
        return otherwise;
    };
}

/// CASE operand WHEN value THEN value ...: the first value that equals the operand.
Choice FirstEqual(Binder& binder, NodeId operandNode, const std::vector<NodeId>& whens,
                  std::optional<std::size_t> otherwise) {
    const std::shared_ptr<NumberExpression> operand = binder.BindValue(operandNode);
    auto values = std::make_shared<std::vector<NumberPtr>>();
    for (const NodeId when : whens) {
        values->push_back(binder.BindValue(when));
    }
    return [operand, values, otherwise, range = binder.At(operandNode).range](Evaluator& evaluator) {
        const CellValue looked = operand->Evaluate(evaluator);
        for (std::size_t i = 0; i < values->size(); ++i) {
            if (CompareValues(evaluator, looked, (*values)[i]->Evaluate(evaluator), range) == 0) {
                return std::optional(i);
            }
        }
        return otherwise;
    };
}

constexpr std::array<Function, 1> conditionalFunctions{{{"IIf", 3, 3, IIf}}};

} // namespace

Bound Binder::BindCase(NodeId id) {
    const mdx::Node& node = At(id);
    NodeId child = node.firstChild;
    const NodeId operand = child;
    if (node.hasOperand) {
        child = At(child).next;
    }
    Branches branches(*this);
    std::vector<NodeId> whens;
    for (; child != noNode && At(child).next != noNode; child = At(At(child).next).next) {
        whens.push_back(child);
        branches.Add(At(child).next);
    }
    std::optional<std::size_t> otherwise;
    if (child != noNode) {
        otherwise = whens.size();
        branches.Add(child);
    }
    return branches.Choose(node.hasOperand ? FirstEqual(*this, operand, whens, otherwise)
                                           : FirstCondition(*this, whens, otherwise));
}

std::span<const Function> ConditionalFunctions() { return conditionalFunctions; }

} // namespace qel::engine
