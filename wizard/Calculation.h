#pragma once

#include "wizard/Selection.h"
#include "wizard/WizardContext.h"

namespace qel {

/// What the form shows after a calculation.
struct Calculation {
    Variant value = Null{}; ///< Null when it failed
    std::string text;       ///< the value, or the reason of the failure
};

/// The value that a selection's formula will show. `opened` is the cube that the caller last opened on the
/// thread's connection. Raises nothing.
Calculation Calculate(const WizardContext& context, ModSetCube::OpenedCube& opened,
                      const Selection& selection);

} // namespace qel
