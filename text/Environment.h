#pragma once

#include <optional>
#include <string>

namespace qel {

/// The environment variable's value as UTF-8; nullopt when it is not set.
std::optional<std::string> EnvironmentVariable(const std::string& name);

} // namespace qel
