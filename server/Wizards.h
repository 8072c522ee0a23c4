#pragma once

#include "wizard/WizardContext.h"

namespace qel::server {

/// The dialogs of this machine; one a process. Made when they are first shown, since cells need none. The
/// calling thread must have an apartment.
WizardServices& Wizards();

} // namespace qel::server
