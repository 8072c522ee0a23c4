#pragma once

#include "wizard/MemberChoice.h"
#include "wizard/WizardContext.h"

#include <memory>
#include <string>

namespace qel {

/// The number of the text "Choose a Cube Name and a Cube File".
inline constexpr std::int32_t noCubeFileText = 1366;

/// The number of the text that says what is wrong with the path of a cube file; none when the file is there.
std::optional<std::int32_t> CubeFileFault(const std::string& cubeFile);

/// Asks for a cube file; empty when none was chosen.
std::string AskForCubeFile(Dialog& dialog, const char* control, const std::string& cubeFileNow);

/// A connection on a cube file, no cube of it chosen yet. Raises what the provider raises.
std::shared_ptr<Connection> OpenCubeFile(const Providers& providers, const std::string& cubeFile);

/// Fills the list of cubes with the catalogs of the file whose names end in FNC, the first of them chosen; no
/// connection empties and disables it. False, which is told, when there is none. Raises what the provider
/// raises.
bool SetCube(const WizardContext& context, ChoiceBox& cubes, Connection* connection);

} // namespace qel
