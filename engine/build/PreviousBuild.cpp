#include "engine/build/PreviousBuild.h"

#include "engine/build/DecodedFile.h"
#include "engine/storage/Format.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qel::engine {

std::string ContinuationObstacle(const CubeDefinition& cube, const Definition& definition) {
    if (!cube.details.empty() || cube.keepsAllDetails) {
        return fmt::format("the cube {} keeps details", cube.name);
    }
    for (const std::size_t index : cube.facts) {
        const TableDefinition& table = definition.tables[index];
        if (table.odbc) {
            return fmt::format("the table \"{}\" comes from a database", table.name);
        }
        if (!DecodedFile::CanSeek(table.file, table.format.encoding)) {
            return fmt::format("the encoding of {} has no certain line starts", table.ShortName());
        }
    }
    return {};
}

PreviousBuild::PreviousBuild(const std::filesystem::path& path)
    : file_(path), image_(PathToUtf8(path), file_.Bytes(), &file_) {}

void PreviousBuild::Take(std::uint32_t cube, Continuation& continuation) const {
    using format::SectionKind;
    const auto id = [cube](SectionKind kind) {
        return format::SectionId{static_cast<std::uint32_t>(kind), cube, 0, 0};
    };
    const format::SectionId description = id(SectionKind::KeptDescription), rows = id(SectionKind::KeptFacts);
    if (!image_.HasSection(description) || !image_.HasSection(rows)) {
        continuation.obstacle = "the previous cube file keeps no facts: it was built without --previous, a "
                                "line was skipped, or a fact file had no end of its last line or changed "
                                "meanwhile";
        return;
    }
    const MappedSection described = image_.Section(description), section = image_.Section(rows);
    auto kept =
        KeptFacts::Parse({described.Bytes(0, described.Size()), static_cast<std::size_t>(described.Size())});
    if (!kept) {
        continuation.obstacle = "the previous cube file is of another version of this program";
    } else if (!(kept->definition == continuation.definition)) {
        continuation.obstacle = "the definition is not the one of the previous cube file";
    } else {
        continuation.previous.emplace(
            std::move(*kept),
            [section](std::uint64_t offset, std::span<std::byte> bytes) {
                std::copy_n(section.Bytes(offset, bytes.size()), bytes.size(), bytes.begin());
            },
            section.Size());
    }
}

} // namespace qel::engine
