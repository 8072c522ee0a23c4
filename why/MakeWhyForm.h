#pragma once

#include "why/WhyForm.h"

#include <memory>

namespace qel {

/// The window that tells why a cell shows its value; of several calls in its formula it asks for one. Null
/// when there is nothing to tell, or something failed, which a message box said. What the context refers to
/// outlives the form.
std::unique_ptr<WhyForm> MakeWhyForm(const WizardContext& context, const WhyPlace& place);

} // namespace qel
