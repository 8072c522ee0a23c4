#pragma once

#include "engine/storage/CubeModel.h"
#include "engine/storage/Format.h"
#include "files/AtomicFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <span>
#include <vector>

namespace qel::engine {

class CubeFileWriter;

/// A section that is written at the same time as others, which other threads may write.
class ParallelSection {
public:
    ParallelSection(CubeFileWriter& writer, std::uint64_t position, std::uint64_t size)
        : writer_(&writer), position_(position), end_(position + size) {}

    void Append(std::span<const std::byte> bytes);

private:
    CubeFileWriter* writer_;
    std::uint64_t position_, end_; ///< of the bytes to come
    std::vector<std::byte> page_;  ///< the part of a page before the position
};

/// Writes a cube file: AddCube for every cube, then Begin, Append and End for each fact column, then Complete
/// and Commit. Raises EngineError (CannotWrite). Without Commit the old file stays.
class CubeFileWriter {
public:
    explicit CubeFileWriter(const std::filesystem::path& path);

    /// Writes the metadata of the next cube and returns its number.
    std::uint32_t AddCube(const CubeModel& cube);

    void BeginPackedColumn(std::uint32_t cube, std::size_t projection, std::size_t packedColumn);
    void BeginValues(std::uint32_t cube, std::size_t projection, std::size_t measure);
    /// Begins any other section.
    void Begin(const format::SectionId& id);
    void Append(std::span<const std::byte> bytes);
    void End();

    /// Begins sections of which the sizes are known, one behind the other, to be filled in any order. Until
    /// EndTogether nothing else is written.
    struct SizedSection {
        format::SectionId id;
        std::uint64_t size = 0;
    };
    std::vector<ParallelSection> BeginTogether(std::span<const SizedSection> sections);
    /// Every section is complete.
    void EndTogether();

    /// Completes the file under its temporary name, which it returns: readers can open it.
    const std::filesystem::path& Complete();
    /// Completes the file if need be and moves it into place. Returns its size in bytes.
    std::uint64_t Commit();

private:
    friend class ParallelSection;

    /// A page that several sections fill.
    struct SharedPage {
        std::vector<std::byte> bytes;
        std::size_t filled = 0;
    };

    void Section(const format::SectionId& id, std::span<const std::byte> bytes);
    void AddHierarchy(std::uint32_t cube, std::uint32_t index, const HierarchyModel& hierarchy);
    /// Appends bytes to the current page.
    void Emit(std::span<const std::byte> bytes);
    void Pad();
    void FinishPage();
    /// Stores a complete page, on any thread.
    void StorePage(std::uint64_t number, std::span<const std::byte> bytes);
    /// Stores a part of a page, on any thread.
    void StorePart(std::uint64_t position, std::span<const std::byte> bytes);
    std::uint64_t Position() const { return flushed_ + page_.size(); }

    AtomicFile file_;
    std::uint32_t cubes_ = 0;
    std::uint64_t fileSize_ = 0;           ///< of the complete file
    std::uint64_t flushed_ = 0;            ///< bytes already in the file
    std::vector<std::byte> page_;          ///< the page being filled
    std::vector<std::uint64_t> checksums_; ///< by page
    std::mutex mutex_;
    std::map<std::uint64_t, SharedPage> sharedPages_; ///< by number, until they are full
    std::uint64_t endTogether_ = 0;
    std::vector<format::DirectoryEntry> directory_;
};

} // namespace qel::engine
