#pragma once

#include "wizard/MemberChoice.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// The number of the text "Choose a Cube Name and a Cube File".
inline constexpr std::int32_t noCubeFileText = 1366;

/// The number of the text that says what is wrong with a cube file's path; nullopt when the file exists.
[[nodiscard]] std::optional<std::int32_t> CubeFileFault(const std::string& cubeFile);

/// Asks for a cube file. Empty when the user cancels.
std::string AskForCubeFile(Dialog& dialog, const char* control, const std::string& cubeFileNow);

/// A connection on a cube file, no cube of it chosen yet. Raises what the provider raises.
std::shared_ptr<Connection> OpenCubeFile(const Providers& providers, const std::string& cubeFile);

/// Fills the list of cubes with the file's catalogs whose names end in FNC, and chooses the first. Without a
/// connection the list is emptied and disabled. Shows a message and returns false when there is no such
/// catalog. Raises what the provider raises.
[[nodiscard]] bool SetCube(const WizardContext& context, ChoiceBox& cubes, Connection* connection);

} // namespace qel
