#pragma once

#include "engine/eval/Evaluator.h"
#include "engine/eval/NamedSets.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace qel::engine {

/// The calculated members and named sets that the cube defines, in one statement. A formula is parsed and
/// bound when it is first needed, and sees the cube's definitions only. A set names only sets before it.
class CubeCalculations {
public:
    CubeCalculations(MemberSpace& space, Evaluator& evaluator);
    ~CubeCalculations();
    CubeCalculations(const CubeCalculations&) = delete;
    CubeCalculations& operator=(const CubeCalculations&) = delete;

    /// Adds the members to the space, before those of the statement. Raises EngineError.
    void Declare();
    void DeclareMember(std::size_t member);
    void DeclareSet(std::size_t set);
    /// Gives the evaluator a formula for every member, before those of the statement.
    void AddFormulas();
    void BindMember(std::size_t member);
    /// Binds the member's formula, and those of the members that it names, and so on.
    void BindMemberAndNeeds(std::size_t member);

    /// The names of the sets, without brackets.
    const std::vector<std::string>& SetNames() const { return setNames_; }
    /// The number of the set of that name (any letter case), or nothing.
    std::optional<std::size_t> FindSet(std::string_view name) const;
    /// Whether the set may be named now: not in its own formula, nor in that of a set before it.
    bool MayName(std::size_t set) const { return !binding_ || set < *binding_; }
    const NamedSet& Set(std::size_t set);
    SetPtr Reference(std::size_t set);

    /// What the formula names, once it is bound: members by their number in the cube's calculations.
    struct Needs {
        std::vector<std::size_t> members, sets;
    };
    Needs NeedsOfMember(std::size_t member) const;
    Needs NeedsOfSet(std::size_t set) const;

private:
    struct Formula;

    void BindSetsUpTo(std::size_t set);
    void BindNextSet();
    Needs NeedsOf(const Formula& formula) const;

    const Calculations& calculations_;
    MemberSpace& space_;
    Evaluator& evaluator_;
    std::vector<std::unique_ptr<Formula>> members_, sets_; ///< null: not bound yet
    std::vector<std::string> setNames_;
    NamedSets bound_;
    std::optional<std::size_t> binding_; ///< the set whose formula is being bound
};

} // namespace qel::engine
