#include "qel/engine/ExportCubes.h"

#include "engine/export/FlatStar.h"
#include "engine/export/MondrianSchema.h"
#include "engine/export/StarRows.h"
#include "engine/storage/WriteFailure.h"
#include "files/AtomicFile.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
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

std::vector<StarSchema> MakeStars(const CubeFile& file) {
    std::set<std::string> takenTables;
    std::vector<StarSchema> stars;
    for (const Cube& cube : file.Cubes()) {
        stars.push_back(MakeStarSchema(cube, takenTables));
    }
    return stars;
}

/// Fits the share of one of several steps into the whole.
std::function<void(double)> ShareOfAll(const std::function<void(double)>& progress, std::size_t step,
                                       std::size_t steps) {
    return [&progress, step, steps](double share) {
        if (progress) {
            progress((static_cast<double>(step) + share) / static_cast<double>(steps));
        }
    };
}

/// Files that are complete together.
class TextFiles {
public:
    void Open(const std::filesystem::path& path) {
        files_.push_back(std::make_unique<AtomicFile>(path, RaiseCannotWrite));
        AtomicFile& file = *files_.back();
        paths_.push_back(path);
        sinks_.emplace_back([&file](std::string_view text) { Append(file, text); });
    }
    std::span<const TextSink> Sinks() const { return sinks_; }
    /// The paths of the files, which now have their contents.
    const std::vector<std::filesystem::path>& Commit() {
        for (const auto& file : files_) {
            file->Commit();
        }
        return paths_;
    }

private:
    std::vector<std::unique_ptr<AtomicFile>> files_;
    std::vector<std::filesystem::path> paths_;
    std::vector<TextSink> sinks_;
};

/// Statements that change a setting of the database that they run in.
std::string DatabaseSetting(std::string_view setting) {
    return fmt::format(
        "DO $$ BEGIN EXECUTE format('ALTER DATABASE %I SET {}', current_database()); END $$;\n", setting);
}

void WriteShards(const std::vector<FlatStar>& flats, std::span<const TextSink> shards,
                 const std::function<void(double)>& progress) {
    for (const TextSink& shard : shards) {
        // Or the planner would not look for the best order of a view's joins.
        shard(DatabaseSetting("join_collapse_limit = 100") + DatabaseSetting("from_collapse_limit = 100"));
    }
    for (std::size_t i = 0; i < flats.size(); ++i) {
        const StarSchema& star = *flats[i].star;
        for (const TextSink& shard : shards) {
            shard(ComposeTables(star));
            WriteMemberRows(star, shard);
        }
        WriteFactRows(star, SpreadOfFacts(flats[i]), shards, ShareOfAll(progress, i, flats.size()));
        for (const TextSink& shard : shards) {
            shard(ComposeShardViews(flats[i]));
        }
    }
    for (const TextSink& shard : shards) {
        shard("ANALYZE;\n");
    }
}

void WriteCoordinator(const std::vector<FlatStar>& flats, const TextSink& sink) {
    // Sums cost much here, so that shards make them even where they are not expected to save rows.
    sink(DatabaseSetting("enable_partitionwise_aggregate = on") + DatabaseSetting("cpu_operator_cost = 1"));
    for (const FlatStar& flat : flats) {
        sink(ComposeMemberTables(*flat.star));
        WriteMemberRows(*flat.star, sink);
        sink(ComposeForeignTables(flat));
    }
}

} // namespace

std::vector<std::filesystem::path> ExportCubes(const CubeFile& file, const std::filesystem::path& folder,
                                               const std::function<void(double)>& progress) {
    MakeFolder(folder);
    const std::vector<StarSchema> stars = MakeStars(file);
    std::vector<std::filesystem::path> written;
    std::string tables;
    for (const StarSchema& star : stars) {
        written.push_back(SchemaFile(folder, star.cube->Name()));
        WriteFile(written.back(), ComposeMondrianSchema(star, nullptr));
        tables += ComposeTables(star);
    }
    written.push_back(folder / "tables.sql");
    WriteFile(written.back(), tables);
    TextFiles rows;
    rows.Open(folder / "rows.sql");
    for (std::size_t i = 0; i < stars.size(); ++i) {
        WriteMemberRows(stars[i], rows.Sinks().front());
        WriteFactRows(stars[i], {}, rows.Sinks(), ShareOfAll(progress, i, stars.size()));
    }
    written.push_back(rows.Commit().front());
    return written;
}

std::vector<std::filesystem::path> ExportShards(const CubeFile& file, const std::filesystem::path& folder,
                                                std::size_t shards,
                                                const std::function<void(double)>& progress) {
    const std::vector<StarSchema> stars = MakeStars(file);
    std::vector<FlatStar> flats;
    flats.reserve(stars.size());
    for (const StarSchema& star : stars) {
        flats.push_back(SpreadStar(star, shards));
    }
    MakeFolder(folder);
    std::vector<std::filesystem::path> written;
    for (const FlatStar& flat : flats) {
        written.push_back(SchemaFile(folder, flat.star->cube->Name()));
        WriteFile(written.back(), ComposeMondrianSchema(*flat.star, &flat));
    }
    TextFiles files;
    for (std::size_t shard = 1; shard <= shards; ++shard) {
        files.Open(folder / fmt::format("shard{}.sql", shard));
    }
    files.Open(folder / "coordinator.sql");
    WriteShards(flats, files.Sinks().first(shards), progress);
    WriteCoordinator(flats, files.Sinks().back());
    const auto& scripts = files.Commit();
    written.insert(written.end(), scripts.begin(), scripts.end());
    return written;
}

} // namespace qel::engine
