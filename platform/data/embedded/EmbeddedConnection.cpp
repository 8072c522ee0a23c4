#include "platform/data/embedded/EmbeddedConnection.h"

#include "platform/data/ConnectionText.h"
#include "platform/data/ObjectErrors.h"
#include "platform/data/embedded/EmbeddedRecordset.h"
#include "platform/data/embedded/OpenCubeFiles.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

namespace qel {

namespace {

/// The embedded engine stands in for "MSOLAP" and its versions ("MSOLAP.8").
void RequireProvider(const std::string& provider) {
    constexpr std::string_view expected = "MSOLAP";
    const auto name = std::string_view(provider).substr(0, provider.find('.'));
    if (!provider.empty() && !EqualIgnoringCase(name, expected)) {
        throw ProviderError(
            errorNotSupported,
            fmt::format("The connection text names the provider '{}'; cubes are opened through "
                        "'{}'.",
                        provider, expected));
    }
}

std::shared_ptr<const engine::Cube> OnlyCube(const engine::CubeFile& file, const std::string& path) {
    const auto& cubes = file.Cubes();
    if (cubes.size() == 1) {
        return file.FindCube(cubes.front().Name());
    }
    std::string names;
    for (const auto& cube : cubes) {
        names += fmt::format("{}'{}'", names.empty() ? "" : ", ", cube.Name());
    }
    throw ProviderError(
        engine::ErrorKind::UnknownCube,
        fmt::format("No cube is named, and the cube file '{}' holds {}: {}.", path, cubes.size(), names));
}

std::shared_ptr<const engine::CubeFile> OpenFile(OpenCubeFiles& files, const ConnectionText& text) {
    RequireProvider(text.provider);
    return files.Open(text.dataSource);
}

std::shared_ptr<const engine::Cube> ChooseCube(const engine::CubeFile& file, const ConnectionText& text) {
    return TranslatingErrors([&] {
        if (!text.initialCatalog && !file.Cubes().empty()) {
            return file.FindCube(file.Cubes().front().Name());
        }
        const std::string name = text.initialCatalog.value_or("");
        return name.empty() ? OnlyCube(file, text.dataSource) : file.FindCube(name);
    });
}

Rowset CatalogRows(const engine::CubeFile& file) {
    Rowset table{.fields = {"CATALOG_NAME"}, .rows = {}};
    for (const auto& cube : file.Cubes()) {
        table.rows.push_back({cube.Name()});
    }
    return table;
}

} // namespace

std::shared_ptr<const engine::Cube> OpenCube(OpenCubeFiles& files, const std::string& connectionString) {
    const auto text = ParseConnectionText(connectionString);
    return ChooseCube(*OpenFile(files, text), text);
}

void EmbeddedConnection::Open(const std::string& connectionString, const std::string& /*user*/,
                              const std::string& /*password*/, int /*options*/) {
    if (cube_) {
        throw ObjectOpenError(embeddedProvider);
    }
    const auto text = ParseConnectionText(connectionString);
    auto file = OpenFile(*files_, text);
    cube_ = ChooseCube(*file, text);
    plans_ = files_->PlansOf(file);
    file_ = std::move(file);
    connectionString_ = connectionString;
}

void EmbeddedConnection::Close() {
    if (!cube_) {
        throw ObjectClosedError(embeddedProvider);
    }
    cube_ = nullptr;
    plans_ = nullptr;
    file_ = nullptr;
}

std::unique_ptr<Recordset> EmbeddedConnection::OpenSchema(int schema) {
    if (!file_) {
        throw ObjectClosedError(embeddedProvider);
    }
    if (schema != schemaCatalogs) {
        return Connection::OpenSchema(schema);
    }
    return MakeEmbeddedRecordset(CatalogRows(*file_));
}

std::shared_ptr<const engine::Cube>
EmbeddedConnection::CubeOf(const std::shared_ptr<Connection>& connection) {
    return OpenOne(connection).cube_;
}

engine::Cellset EmbeddedConnection::Run(const std::shared_ptr<Connection>& connection,
                                        const std::string& statement) {
    const EmbeddedConnection& local = OpenOne(connection);
    return TranslatingErrors([&] { return local.plans_->Run(*local.cube_, statement); });
}

const EmbeddedConnection& EmbeddedConnection::OpenOne(const std::shared_ptr<Connection>& connection) {
    const auto* local = dynamic_cast<const EmbeddedConnection*>(connection.get());
    if (!local || !local->cube_) {
        throw InvalidConnectionError(embeddedProvider);
    }
    return *local;
}

} // namespace qel
