#pragma once

#include "platform/database/DatabaseConnection.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// True when the local database's file is there.
bool HasWizardDatabase(const WizardContext& context);
/// Makes the local database when it is missing; a failure is reported.
void PrepareWizardDatabase(const WizardContext& context);
/// Opens the local database. Raises what the engine raises.
std::unique_ptr<DatabaseConnection> OpenWizardDatabase(const WizardContext& context);

/// The cube file that the function wizard saved last; empty for none.
std::string RememberedCubeFile(const WizardContext& context);
void RememberCubeFile(const WizardContext& context, const std::string& cubeFile);

} // namespace qel
