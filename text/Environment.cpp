#include "text/Environment.h"

#include "text/Utf8Path.h"

#include <cstdlib>

namespace qel {

// NOLINTBEGIN(concurrency-mt-unsafe): nothing here changes the environment
#ifdef _WIN32

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const wchar_t* value = ::_wgetenv(PathFromUtf8(name).c_str());
    return value == nullptr ? std::nullopt : std::optional(PathToUtf8(value));
}

#else

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

#endif
// NOLINTEND(concurrency-mt-unsafe)

} // namespace qel
