#pragma once

#include "wizard/WizardContext.h"

namespace qel::server {

/// The machine's dialogs; one per process, created on first use because cells need none. The calling thread
/// must be in an apartment.
WizardServices& Wizards();

} // namespace qel::server
