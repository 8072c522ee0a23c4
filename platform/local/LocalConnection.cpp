#include "platform/local/LocalConnection.h"

#include "platform/Text.h"
#include "platform/local/ConnectionText.h"
#include "platform/local/OpenCubeFiles.h"
#include "platform/local/ProviderErrors.h"

#include <fmt/format.h>

namespace qel {

namespace {

/// "MSOLAP" and its versions ("MSOLAP.8") are the provider whose place the embedded engine takes.
void RequireProvider(const std::string& provider) {
    constexpr std::string_view expected = "MSOLAP";
    const auto name = std::string_view(provider).substr(0, provider.find('.'));
    if (!provider.empty() && !EqualIgnoringCase(name, expected))
        throw ProviderError(
            errorNotSupported,
            fmt::format("The connection text names the provider '{}'; cubes are opened through "
                        "'{}'.",
                        provider, expected));
}

std::shared_ptr<const engine::Cube> OnlyCube(const engine::CubeFile& file, const std::string& path) {
    const auto& cubes = file.Cubes();
    if (cubes.size() == 1)
        return file.FindCube(cubes.front().Name());
    std::string names;
    for (const auto& cube : cubes)
        names += fmt::format("{}'{}'", names.empty() ? "" : ", ", cube.Name());
    throw ProviderError(
        static_cast<std::int32_t>(engine::ErrorKind::UnknownCube),
        fmt::format("No cube is named, and the cube file '{}' holds {}: {}.", path, cubes.size(), names));
}

} // namespace

std::shared_ptr<const engine::Cube> OpenCube(OpenCubeFiles& files, const std::string& connectionString) {
    const auto text = ParseConnectionText(connectionString);
    RequireProvider(text.provider);
    const auto file = files.Open(text.dataSource);
    return TranslatingErrors([&] {
        return text.initialCatalog.empty() ? OnlyCube(*file, text.dataSource)
                                           : file->FindCube(text.initialCatalog);
    });
}

void LocalConnection::Open(const std::string& connectionString, const std::string& /*user*/,
                           const std::string& /*password*/, int /*options*/) {
    if (cube_)
        throw ProviderError(errorObjectOpen, "Operation is not allowed when the object is open.");
    cube_ = OpenCube(*files_, connectionString);
    connectionString_ = connectionString;
}

void LocalConnection::Close() {
    if (!cube_)
        throw ProviderError(errorObjectClosed, "Operation is not allowed when the object is closed.");
    cube_ = nullptr;
}

std::shared_ptr<const engine::Cube> LocalConnection::CubeOf(const std::shared_ptr<Connection>& connection) {
    const auto* local = dynamic_cast<const LocalConnection*>(connection.get());
    if (!local || !local->cube_)
        throw ProviderError(errorInvalidConnection,
                            "The connection cannot be used to perform this operation. It is either closed or "
                            "invalid in this context.");
    return local->cube_;
}

} // namespace qel
