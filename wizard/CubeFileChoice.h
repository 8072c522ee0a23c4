#pragma once

#include "wizard/MemberChoice.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// The number of the text "Choose a Cube Name and a Cube File".
inline constexpr std::int32_t noCubeFileText = 1366;

/// True for a cube file that exists, and at a door that asks servers for the address of one.
[[nodiscard]] bool CanOpen(const WizardContext& context, const std::string& cubeFile);

/// The number of the text that says what is wrong with a cube file's path; nullopt when the file exists, and
/// for a server's address.
[[nodiscard]] std::optional<std::int32_t> CubeFileFault(const WizardContext& context,
                                                        const std::string& cubeFile);

/// True for the address of a server, at a door that asks servers.
[[nodiscard]] bool IsServer(const WizardContext& context, const std::string& cubeFile);

/// Asks for a cube file, beginning in the folder of the one in use. Empty when the user cancels.
std::string AskForCubeFile(Dialog& dialog, const char* control, const std::string& cubeFileNow);

/// A connection on a cube file or server, no cube of it chosen yet. Raises what the provider raises.
std::shared_ptr<Connection> OpenCubeFile(const Providers& providers, const std::string& cubeFile);

/// Fills the list of cubes with the connection's catalogs whose names end in FNC, and chooses the first.
/// Without a connection the list is emptied and disabled. Shows a message and returns false when there is no
/// such catalog. Raises what the provider raises.
[[nodiscard]] bool SetCube(const WizardContext& context, ChoiceBox& cubes, Connection* connection);

} // namespace qel
