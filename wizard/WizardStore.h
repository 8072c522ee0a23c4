#pragma once

#include "platform/database/DatabaseConnection.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// True when the local database's file exists.
[[nodiscard]] bool HasWizardDatabase(const WizardContext& context);
/// Prepares the local database, whose failure is reported even when the file only exists, and opens it.
/// Raises what the engine raises.
[[nodiscard]] std::unique_ptr<DatabaseConnection> OpenWizardDatabase(const WizardContext& context);

/// The cube file that the function wizard saved last, or empty.
std::string RememberedCubeFile(const WizardContext& context);
void RememberCubeFile(const WizardContext& context, const std::string& cubeFile);

} // namespace qel
