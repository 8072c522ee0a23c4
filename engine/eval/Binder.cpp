#include "engine/eval/Binder.h"

#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/Parser.h"
#include "engine/mdx/ReservedWords.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

using mdx::Node;
using mdx::NodeId;
using mdx::NodeKind;
using mdx::noNode;

/// A text that is an expression. Its names are those of the cube; errors point at the text.
struct Binder::BoundText {
    BoundText(std::string expression, Binder& outer, NodeId node)
        : text(std::move(expression)), statement(Parse(outer, node)),
          binder(statement, outer.space_, outer.evaluator_, outer.calculations_, outer.scope_) {
        binder.outer_ = &outer.Root();
        statement.source = outer.statement_.source;
        for (Node& each : statement.nodes) {
            each.range = outer.At(node).range;
        }
    }

    mdx::Statement Parse(const Binder& outer, NodeId node) {
        try {
            return mdx::ParseText(std::string_view(text), parsed);
        } catch (const EngineError& error) {
            outer.Fail(node, fmt::format("the text \"{}\" is no expression: {}", text, error.what()));
        }
    }

    std::string text;
    mdx::Definition parsed;
    mdx::Statement statement;
    Binder binder;
};

Binder::Binder(const mdx::Statement& statement, MemberSpace& space, Evaluator& evaluator,
               CubeCalculations* calculations, Scope scope)
    : statement_(statement), space_(space), evaluator_(evaluator), calculations_(calculations), scope_(scope),
      names_(space, statement, scope) {}

Binder::~Binder() = default;

void Binder::BindDefinitions() {
    if (calculations_ != nullptr) {
        calculations_->Declare();
    }
    for (const mdx::Definition& definition : statement_.definitions) {
        if (!definition.isSet) {
            AddCalculated(definition);
        }
    }
    for (const mdx::Definition& definition : statement_.definitions) {
        if (definition.isSet) {
            BindNamedSet(definition);
        }
    }
    if (calculations_ != nullptr) {
        calculations_->AddFormulas();
    }
    for (const mdx::Definition& definition : statement_.definitions) {
        if (!definition.isSet) {
            evaluator_.AddFormula({BindValue(definition.formula), definition.solveOrder, definition.depth,
                                   At(definition.name).range, statement_.source});
        }
    }
}

void Binder::AddCalculated(const mdx::Definition& definition) {
    const MemberRef parent = names_.ParentOfNew(At(definition.name));
    const std::string_view name = LastPart(definition.name);
    if (IsCalculated(parent.id)) {
        Fail(definition.name, "a calculated member has no members below it");
    }
    if (parent.id != noMember && space_.LevelOf(parent) + 1 == space_.LevelCount(parent.hierarchy)) {
        Fail(definition.name, fmt::format("no level lies below {}, so the member {} cannot stand there",
                                          space_.UniqueName(parent), name));
    }
    if (!space_.AddCalculated(parent, name, scope_)) {
        Fail(definition.name, fmt::format("the calculated member {} is defined twice", name));
    }
}

std::string_view Binder::SetName(const mdx::Definition& definition) const {
    if (At(definition.name).childCount != 1) {
        Fail(definition.name, "the name of a set has one part");
    }
    return LastPart(definition.name);
}

void Binder::BindNamedSet(const mdx::Definition& definition) {
    const std::string_view name = SetName(definition);
    neededSets_.clear();
    SetPtr set = BindSet(definition.formula);
    if (!namedSets_.Add({name, std::move(set), statement_.source, At(definition.name).range, definition.depth,
                         neededSets_, evaluator_.NewIteration()})) {
        Fail(definition.name, fmt::format("the set {} is defined twice", name));
    }
}

std::string_view Binder::LastPart(NodeId path) const {
    NodeId part = At(path).firstChild;
    while (At(part).next != noNode) {
        part = At(part).next;
    }
    return At(part).text;
}

Bound Binder::Bind(NodeId id) {
    const Node& node = At(id);
    switch (node.kind) {
    case NodeKind::Path:
        return BindPath(id, false);
    case NodeKind::Number: {
        const CellValue number = NumberFromText(node.text);
        return MakeNumber(true, [number](Evaluator&) { return number; });
    }
    case NodeKind::Text:
        return MakeText(true, [text = std::string(node.text)](Evaluator&) { return text; });
    case NodeKind::Set:
        return BindBraces(id);
    case NodeKind::Tuple:
        return BindTuple(id);
    case NodeKind::Call:
        return BindCall(id);
    case NodeKind::Method:
        return BindMethod(*this, id);
    case NodeKind::Range:
        return BindRange(id);
    case NodeKind::Chain:
        return BindChain(id);
    case NodeKind::Comparison:
        return BindComparison(id);
    case NodeKind::TextChain:
        return BindTextChain(id);
    case NodeKind::Case:
        return BindCase(id);
    case NodeKind::Alias:
        return BindAlias(id);
    case NodeKind::Negation: {
        NumberPtr operand = BindNumber(node.firstChild);
        const bool isConstant = operand->IsConstant();
        return MakeNumber(isConstant, [operand = std::move(operand)](Evaluator& evaluator) {
            return Negate(operand->Evaluate(evaluator));
        });
    }
    case NodeKind::Not:
        return MakeCondition([operand = BindCondition(node.firstChild)](Evaluator& evaluator) {
            return !operand->Evaluate(evaluator);
        });
    default:
        Fail(id, "an argument is missing");
    }
}

Bound Binder::BindPath(NodeId id, bool wantsLevel) {
    const Node& node = At(id);
    const Node& first = At(node.firstChild);
    if (node.childCount == 1) {
        if (std::optional<Bound> set = BindSetName(id)) {
            return std::move(*set);
        }
        if (first.isWord && mdx::IsWord(first.text, "null")) {
            return MakeNumber(true, [](Evaluator&) { return CellValue::Empty(); });
        }
    }
    const Resolved resolved = names_.Resolve(node, wantsLevel);
    if (const auto* member = std::get_if<MemberRef>(&resolved)) {
        if (scope_ == Scope::Cube && IsCalculated(member->id)) {
            Root().neededMembers_.push_back(member->id);
        }
        return ConstantMember(*member);
    }
    if (const auto* level = std::get_if<LevelName>(&resolved)) {
        return *level;
    }
    return std::get<HierarchyName>(resolved);
}

std::optional<Bound> Binder::BindSetName(NodeId id) {
    const std::string_view name = At(At(id).firstChild).text;
    Binder& root = Root();
    if (const std::optional<std::size_t> set = root.namedSets_.Find(name)) {
        root.neededSets_.push_back(*set);
        return root.namedSets_.Reference(*set);
    }
    if (!aliases_.empty()) {
        if (const auto alias = aliases_.find(FoldCase(name)); alias != aliases_.end()) {
            return alias->second;
        }
    }
    if (const std::optional<std::size_t> set = FindStoredSet(id)) {
        root.neededStoredSets_.push_back(*set);
        return calculations_->Reference(*set);
    }
    return std::nullopt;
}

std::optional<std::size_t> Binder::FindStoredSet(NodeId id) {
    if (calculations_ == nullptr) {
        return std::nullopt;
    }
    const std::string_view name = At(At(id).firstChild).text;
    const std::optional<std::size_t> set = calculations_->FindSet(name);
    if (set && !calculations_->MayName(*set)) {
        Fail(id, fmt::format("the set {} is not defined before this one", name));
    }
    return set;
}

Bound Binder::BindAlias(NodeId id) {
    SetPtr set = BindSet(At(id).firstChild);
    SetAlias alias{evaluator_.NewIteration(), set->GetDimensionality()};
    const auto [entry, isNew] = aliases_.emplace(FoldCase(At(id).text), std::move(alias));
    if (!isNew || namedSets_.Find(At(id).text)) {
        Fail(id, fmt::format("the set {} is defined twice", At(id).text));
    }
    return std::make_unique<IteratedSet>(std::move(set), entry->second.iteration);
}

std::optional<SetAlias> Binder::FindIteration(NodeId id) {
    const Node& node = At(id);
    if (node.kind != NodeKind::Path || node.childCount != 1) {
        return std::nullopt;
    }
    const std::string_view name = At(node.firstChild).text;
    const auto aliasOf = [](const NamedSet& set) {
        return SetAlias{set.iteration, set.set->GetDimensionality()};
    };
    if (const std::optional<std::size_t> set = namedSets_.Find(name)) {
        return aliasOf(namedSets_.At(*set));
    }
    if (const auto alias = aliases_.find(FoldCase(name)); alias != aliases_.end()) {
        return alias->second;
    }
    const std::optional<std::size_t> set = FindStoredSet(id);
    return set ? std::optional(aliasOf(calculations_->Set(*set))) : std::nullopt;
}

Bound Binder::BindTextOf(NodeId node, std::string text) {
    texts_.push_back(std::make_unique<BoundText>(std::move(text), *this, node));
    return texts_.back()->binder.Bind(texts_.back()->parsed.formula);
}

Bound Binder::BindBraces(NodeId id) {
    std::vector<SetPtr> elements;
    Dimensionality dimensionality;
    bool isConstant = true;
    for (NodeId child = At(id).firstChild; child != noNode; child = At(child).next) {
        SetPtr element = BindSet(child);
        CheckDimensionality(dimensionality, *element, child);
        dimensionality = element->GetDimensionality().empty() ? dimensionality : element->GetDimensionality();
        isConstant = isConstant && element->IsConstant();
        elements.push_back(std::move(element));
    }
    if (elements.size() == 1) {
        return std::move(elements.front());
    }
    return MakeSet(isConstant, dimensionality,
                   [elements = std::move(elements)](Evaluator& evaluator, TupleSet& result) {
                       for (const SetPtr& element : elements) {
                           element->Append(evaluator, result);
                       }
                   });
}

Bound Binder::BindTuple(NodeId id) {
    if (At(id).childCount == 1) {
        return Bind(At(id).firstChild);
    }
    std::vector<Bound> elements;
    bool hasSet = false;
    for (NodeId child = At(id).firstChild; child != noNode; child = At(child).next) {
        elements.push_back(Bind(child));
        hasSet = hasSet || IsSet(elements.back());
    }
    NodeId child = At(id).firstChild;
    if (hasSet) { // ({a, b}, {c, d}) is a cross join
        std::vector<SetPart> parts;
        for (Bound& element : elements) {
            parts.push_back({ToSet(std::move(element), child), child});
            child = At(child).next;
        }
        return MakeCrossJoin(*this, std::move(parts));
    }
    TupleExpression tuple;
    for (Bound& element : elements) {
        MemberPtr member = ToMember(std::move(element), child);
        for (const MemberPtr& other : tuple) {
            if (other->Hierarchy() == member->Hierarchy()) {
                Fail(child, fmt::format("the hierarchy {} stands in the tuple twice",
                                        space_.HierarchyUniqueName(member->Hierarchy())));
            }
        }
        tuple.push_back(std::move(member));
        child = At(child).next;
    }
    return tuple;
}

Bound Binder::BindRange(NodeId id) {
    const NodeId firstNode = At(id).firstChild;
    const NodeId lastNode = At(firstNode).next;
    MemberPtr first = BindMember(firstNode);
    MemberPtr last = BindMember(lastNode);
    const HierarchyId hierarchy = first->Hierarchy();
    if (last->Hierarchy() != hierarchy) {
        Fail(lastNode, "the two ends of a range are members of different hierarchies");
    }
    const bool isConstant = first->IsConstant() && last->IsConstant();
    return MakeSet(isConstant, {hierarchy},
                   [this, lastNode, first = std::move(first), last = std::move(last)](Evaluator& evaluator,
                                                                                      TupleSet& result) {
                       const MemberId from = first->Evaluate(evaluator);
                       const MemberId to = last->Evaluate(evaluator);
                       if (from == noMember || to == noMember) {
                           return;
                       }
                       const HierarchyId both = first->Hierarchy();
                       if (IsCalculated(from) || IsCalculated(to) ||
                           space_.LevelOf({both, from}) != space_.LevelOf({both, to})) {
                           Fail(lastNode, "the two ends of a range are not on one level");
                       }
                       result.Append(MemberRange{std::min(from, to), std::max(from, to) + 1});
                   });
}

Bound Binder::BindCall(NodeId id) {
    const Node& node = At(id);
    const Function* function = FindFunction(node.text);
    if (function == nullptr) {
        const std::string_view instead = InsteadOf(node.text);
        Fail(id, instead.empty() ? fmt::format("there is no function {}", node.text)
                                 : fmt::format("the function {} is not supported; {}", node.text, instead));
    }
    if (node.childCount < function->fewestArguments || node.childCount > function->mostArguments) {
        Fail(id, function->fewestArguments == function->mostArguments
                     ? fmt::format("{} takes {} arguments, not {}", function->name, function->fewestArguments,
                                   node.childCount)
                     : fmt::format("{} takes {} to {} arguments, not {}", function->name,
                                   function->fewestArguments, function->mostArguments, node.childCount));
    }
    Call call{*this, id, {}};
    for (NodeId child = node.firstChild; child != noNode; child = At(child).next) {
        call.arguments.push_back(child);
    }
    return function->bind(call);
}

std::string_view Binder::Word(NodeId id) const {
    const Node& node = At(id);
    const bool isWord = node.kind == NodeKind::Path && node.childCount == 1 && At(node.firstChild).isWord;
    return isWord ? At(node.firstChild).text : std::string_view();
}

void Binder::Fail(NodeId node, std::string_view message) const {
    mdx::RaiseAt(ErrorKind::InvalidExpression, statement_.source, At(node).range, message);
}

std::string Binder::Describe(const Dimensionality& dimensionality) const {
    std::string text;
    for (const HierarchyId hierarchy : dimensionality) {
        text += (text.empty() ? "" : ", ") + space_.HierarchyUniqueName(hierarchy);
    }
    return text;
}

void Binder::CheckDimensionality(const Dimensionality& dimensionality, const SetExpression& set,
                                 NodeId node) const {
    if (!dimensionality.empty() && !set.GetDimensionality().empty() &&
        dimensionality != set.GetDimensionality()) {
        Fail(node, fmt::format("a set of {} takes no element of {}", Describe(dimensionality),
                               Describe(set.GetDimensionality())));
    }
}

} // namespace qel::engine
