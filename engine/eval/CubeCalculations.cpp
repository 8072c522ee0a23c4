#include "engine/eval/CubeCalculations.h"

#include "engine/eval/Binder.h"
#include "engine/mdx/Parser.h"
#include "text/CaseFold.h"

#include <utility>

namespace qel::engine {

/// A formula of the cube. Its expressions refer to its binder.
struct CubeCalculations::Formula {
    Formula(const std::string& name, const std::string& text, MemberSpace& space, Evaluator& evaluator,
            CubeCalculations& calculations)
        : tree(mdx::ParseText({text, name}, parsed)),
          binder(tree, space, evaluator, &calculations, Scope::Cube) {}

    mdx::Definition parsed;
    mdx::Statement tree;
    Binder binder;
};

CubeCalculations::CubeCalculations(MemberSpace& space, Evaluator& evaluator)
    : calculations_(space.GetCube().GetCalculations()), space_(space), evaluator_(evaluator),
      members_(calculations_.members.size()), sets_(calculations_.sets.size()) {
    evaluator.BindFormulasBy([this](std::size_t member) { BindMemberAndNeeds(member); });
}

CubeCalculations::~CubeCalculations() = default;

void CubeCalculations::Declare() {
    for (std::size_t i = 0; i < members_.size(); ++i) {
        DeclareMember(i);
    }
    for (std::size_t i = 0; i < sets_.size(); ++i) {
        DeclareSet(i);
    }
}

void CubeCalculations::DeclareMember(std::size_t member) {
    const std::string& name = calculations_.members[member].name;
    mdx::Definition parsed;
    const mdx::Statement tree = mdx::ParseName({name, name}, parsed);
    Binder(tree, space_, evaluator_, nullptr, Scope::Cube).AddCalculated(parsed);
}

void CubeCalculations::DeclareSet(std::size_t set) {
    const std::string& name = calculations_.sets[set].name;
    mdx::Definition parsed;
    const mdx::Statement tree = mdx::ParseName({name, name}, parsed);
    const Binder binder(tree, space_, evaluator_, nullptr, Scope::Cube);
    const std::string_view setName = binder.SetName(parsed);
    if (FindSet(setName)) {
        binder.Fail(parsed.name, "the set is defined twice");
    }
    setNames_.emplace_back(setName);
}

void CubeCalculations::AddFormulas() {
    for (const CalculatedMember& member : calculations_.members) {
        evaluator_.AddFormula({nullptr, member.solveOrder});
    }
}

void CubeCalculations::BindMember(std::size_t member) {
    const CalculatedMember& text = calculations_.members[member];
    auto formula = std::make_unique<Formula>(text.name, text.formula, space_, evaluator_, *this);
    CalculatedFormula& place = evaluator_.Formula(member);
    place.formula = formula->binder.BindValue(formula->parsed.formula);
    place.depth = formula->parsed.depth;
    place.range = formula->tree.At(formula->parsed.formula).range;
    place.source = formula->tree.source;
    members_[member] = std::move(formula);
}

void CubeCalculations::BindMemberAndNeeds(std::size_t member) {
    // One by one: a long chain of formulas is no recursion.
    std::vector<std::size_t> missing{member};
    while (!missing.empty()) {
        const std::size_t next = missing.back();
        missing.pop_back();
        if (members_[next] == nullptr) {
            BindMember(next);
            const Needs needs = NeedsOfMember(next);
            missing.insert(missing.end(), needs.members.begin(), needs.members.end());
        }
    }
}

std::optional<std::size_t> CubeCalculations::FindSet(std::string_view name) const {
    for (std::size_t set = 0; set < setNames_.size(); ++set) {
        if (EqualIgnoringCase(setNames_[set], name)) {
            return set;
        }
    }
    return std::nullopt;
}

const NamedSet& CubeCalculations::Set(std::size_t set) {
    BindSetsUpTo(set);
    return bound_.At(set);
}

SetPtr CubeCalculations::Reference(std::size_t set) {
    BindSetsUpTo(set);
    return bound_.Reference(set);
}

void CubeCalculations::BindSetsUpTo(std::size_t set) {
    while (bound_.Count() <= set) {
        BindNextSet();
    }
}

void CubeCalculations::BindNextSet() {
    const std::size_t number = bound_.Count();
    const StoredSet& text = calculations_.sets[number];
    binding_ = number;
    sets_[number] = std::make_unique<Formula>(text.name, text.formula, space_, evaluator_, *this);
    Formula& formula = *sets_[number];
    SetPtr set = formula.binder.BindSet(formula.parsed.formula);
    binding_.reset();
    bound_.Add({text.name, std::move(set), formula.tree.source, formula.tree.At(formula.parsed.formula).range,
                formula.parsed.depth, NeedsOfSet(number).sets, evaluator_.NewIteration()});
}

CubeCalculations::Needs CubeCalculations::NeedsOfMember(std::size_t member) const {
    return NeedsOf(*members_[member]);
}

CubeCalculations::Needs CubeCalculations::NeedsOfSet(std::size_t set) const { return NeedsOf(*sets_[set]); }

CubeCalculations::Needs CubeCalculations::NeedsOf(const Formula& formula) const {
    Needs needs;
    for (const MemberId member : formula.binder.NeededMembers()) {
        needs.members.push_back(member - firstCalculated); // the cube's are the first
    }
    needs.sets = formula.binder.NeededStoredSets();
    return needs;
}

} // namespace qel::engine
