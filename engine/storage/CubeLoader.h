#pragma once

#include "engine/storage/ByteBuffer.h"
#include "engine/storage/FactTable.h"
#include "engine/storage/FileImage.h"
#include "qel/engine/Cube.h"
#include "qel/engine/SourceTotals.h"

#include <cstdint>
#include <span>
#include <string>

namespace qel::engine {

/// Reads one cube of a file and checks everything that the cube's accessors rely on: counts, offsets, trees,
/// code ranges, lookup tables, section sizes. Member columns are copied as they are stored; no per-member
/// objects are built.
class CubeLoader {
public:
    CubeLoader(FileImage& image, std::uint32_t cube) : image_(image), cubeNumber_(cube) {}

    /// Raises EngineError (DamagedFile).
    Cube Load();
    /// What came from each fact file; empty when the file has no totals. Raises EngineError (DamagedFile).
    std::vector<SourceTotals> LoadSources(const Cube& cube);

private:
    void ReadFactColumns(ByteReader& in, FactTable& facts) const;
    void CheckLayout(const KeyColumn& column, FactTable& facts, std::vector<std::uint32_t>& taken) const;
    void ReadSortOrders(ByteReader& in, FactTable& facts) const;
    void ReadDimensions(ByteReader& in, const FactTable& facts, Cube& cube) const;
    Hierarchy ReadHierarchy(ByteReader& in, const FactTable& facts, const std::string& dimensionName) const;
    void ReadLevels(ByteReader& in, Hierarchy& hierarchy) const;
    void LoadMembers(Hierarchy& hierarchy) const;
    void CheckTree(const Hierarchy& hierarchy) const;
    void CheckRanges(const Hierarchy& hierarchy, std::uint32_t codes) const;
    void CheckTexts(std::span<const std::uint32_t> offsets, std::string_view texts, std::size_t count) const;
    void CheckSlots(std::span<const std::uint32_t> slots, std::size_t count) const;
    Calculations LoadCalculations() const;
    std::optional<DetailTable> LoadDetails(const FactTable& facts) const;
    DetailColumn LoadDetail(ByteReader& in, std::size_t number, std::uint64_t facts) const;
    /// `keysIn`: the number of key columns in each packed column.
    void LoadProjection(const FactTable& facts, std::size_t index, std::span<const std::uint32_t> keysIn,
                        Projection& projection) const;
    format::SectionId Id(format::SectionKind kind, std::size_t first = 0, std::size_t second = 0) const;
    [[noreturn]] void Fail(const std::string& fault) const;

    FileImage& image_;
    std::uint32_t cubeNumber_;
};

} // namespace qel::engine
