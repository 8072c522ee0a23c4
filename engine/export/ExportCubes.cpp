#include "qel/engine/ExportCubes.h"

#include "engine/export/MondrianSchema.h"
#include "engine/export/StarRows.h"
#include "engine/storage/WriteFailure.h"
#include "files/AtomicFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace qel::engine {

namespace {

void Append(AtomicFile& file, std::string_view text) { file.Append(std::as_bytes(std::span(text))); }

std::filesystem::path SchemaFile(const std::filesystem::path& folder, std::string name) {
    std::replace_if(
        name.begin(), name.end(),
        [](char character) {
            return std::string_view("/\\:*?\"<>|").find(character) != std::string_view::npos;
        },
        '_');
    return folder / std::u8string(name.begin(), name.end()).append(u8".xml");
}

void MakeFolder(const std::filesystem::path& folder) {
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    if (failed) {
        throw EngineError(ErrorKind::CannotWrite, fmt::format("The folder '{}' cannot be made: {}.",
                                                              PathToUtf8(folder), failed.message()));
    }
}

void WriteFile(const std::filesystem::path& path, std::string_view text) {
    AtomicFile file(path, RaiseCannotWrite);
    Append(file, text);
    file.Commit();
}

} // namespace

std::vector<std::filesystem::path> ExportCubes(const CubeFile& file, const std::filesystem::path& folder,
                                               const std::function<void(double)>& progress) {
    MakeFolder(folder);
    std::set<std::string> takenTables;
    std::vector<StarSchema> stars;
    for (const Cube& cube : file.Cubes()) {
        stars.push_back(MakeStarSchema(cube, takenTables));
    }

    std::vector<std::filesystem::path> written;
    std::string tables;
    for (const StarSchema& star : stars) {
        written.push_back(SchemaFile(folder, star.cube->Name()));
        WriteFile(written.back(), ComposeMondrianSchema(star));
        tables += ComposeTables(star);
    }
    written.push_back(folder / "tables.sql");
    WriteFile(written.back(), tables);
    written.push_back(folder / "rows.sql");
    AtomicFile rows(written.back(), RaiseCannotWrite);
    for (std::size_t i = 0; i < stars.size(); ++i) {
        WriteRows(
            stars[i], [&](std::string_view text) { Append(rows, text); },
            [&](double share) {
                if (progress) {
                    progress((static_cast<double>(i) + share) / static_cast<double>(stars.size()));
                }
            });
    }
    rows.Commit();
    return written;
}

} // namespace qel::engine
