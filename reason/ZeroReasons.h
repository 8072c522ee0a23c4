#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueQuery.h"
#include "function/formula/BindFormula.h"
#include "platform/data/Providers.h"
#include "reason/MemberReasons.h"
#include "reason/RunFormula.h"

#include <vector>

namespace qel {

/// Tells why value formulas show 0. It has a connection of its own, so that formulas are left alone.
class ZeroReasons {
public:
    ZeroReasons(Providers providers, const Locale& locale)
        : providers_(std::move(providers)), locale_(locale) {
        providers_.observer = nullptr;
    }

    /// Why the formula shows 0, "-" or that its cube is outdated; empty for any other value. Does not throw.
    std::vector<Reason> Why(const FormulaCall& call, const FormulaResult& result);

    /// What is wrong with the dates and the members, most likely first. Empty when all exist. Does not throw.
    std::vector<Reason> Of(const FormulaCall& call);

    /// Arguments that are given and have no effect.
    std::vector<Reason> Ignored(const FormulaCall& call) const;

    /// What the arguments became, without what was given. Raises what the provider raises.
    QueryMembers MembersOf(const FormulaCall& call);

private:
    /// For a 0 although everything exists: which single restriction makes it so ("without Firma \"20\" it is
    /// 12.5"). Raises nothing.
    std::vector<Reason> Alternatives(const FormulaCall& call);
    ModSetCube::ValueQuery QueryOf(const FormulaCall& call) const;
    bool OpenCubeOf(const ValueCall& call);
    QueryMembers MembersOfOpen(const FormulaCall& call);

    Providers providers_;
    const Locale& locale_;
    ModSetCube::ThreadState thread_;
    ModSetCube::OpenedCube opened_;
    KnownNames names_; ///< of the cube `namesOf_`
    ModSetCube::OpenedCube namesOf_;
};

} // namespace qel
