#pragma once

#include "platform/database/DatabaseConnection.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// True when the local database's file exists.
[[nodiscard]] bool HasWizardDatabase(const WizardContext& context);
/// Creates a missing local database. A failure is reported.
void PrepareWizardDatabase(const WizardContext& context);
/// Opens the local database. Raises what the engine raises.
[[nodiscard]] std::unique_ptr<DatabaseConnection> OpenWizardDatabase(const WizardContext& context);

/// The cube file that the function wizard saved last, or empty.
std::string RememberedCubeFile(const WizardContext& context);
void RememberCubeFile(const WizardContext& context, const std::string& cubeFile);

} // namespace qel
