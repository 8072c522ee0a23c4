#pragma once

#include "wizard/Selection.h"
#include "wizard/WizardContext.h"

namespace qel {

/// What the form shows after a calculation.
struct Calculation {
    Variant value = Null{}; ///< Null when it failed
    std::string text;       ///< the value, or why there is none
};

/// The value that the formula of a selection will show. `opened` is the cube that the caller last opened the
/// thread's connection on. Raises nothing.
Calculation Calculate(const WizardContext& context, ModSetCube::OpenedCube& opened,
                      const Selection& selection);

} // namespace qel
