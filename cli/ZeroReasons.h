#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueQuery.h"
#include "function/formula/BindFormula.h"
#include "platform/data/Providers.h"

#include <string>
#include <vector>

namespace qel {

/// Tells why value formulas show 0. It has a connection of its own, so that formulas are left alone.
class ZeroReasons {
public:
    ZeroReasons(Providers providers, const Locale& locale)
        : providers_(std::move(providers)), locale_(locale) {
        providers_.observer = nullptr;
    }

    /// The reasons, most likely first. Empty when the dates and all members exist. Does not throw.
    std::vector<std::string> Of(const FormulaCall& call);

    /// Arguments that are given and have no effect.
    std::vector<std::string> Ignored(const FormulaCall& call) const;

    /// For a 0 although everything exists: which single restriction makes it so ("without Firma \"20\" it is
    /// 12.5"). Raises nothing.
    std::vector<std::string> Alternatives(const FormulaCall& call);

    /// The periods of the cube that was asked last.
    const ModSetCube::DateTable& Dates() const { return thread_.dates; }

private:
    ModSetCube::ValueQuery QueryOf(const FormulaCall& call) const;
    bool OpenCubeOf(const ValueCall& call);

    Providers providers_;
    const Locale& locale_;
    ModSetCube::ThreadState thread_;
    ModSetCube::OpenedCube opened_;
};

} // namespace qel
