#pragma once

#include "engine/storage/ByteBuffer.h"
#include "engine/storage/FactTable.h"
#include "engine/storage/FileImage.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::engine {

/// Reads the rollups of one cube: their description and the sizes of their sections.
class RollupLoader {
public:
    RollupLoader(FileImage& image, std::uint32_t cube) : image_(image), cubeNumber_(cube) {}

    /// None when the file has none. Raises EngineError (DamagedFile).
    std::optional<RollupTable> Load(const FactTable& facts) const;

private:
    void ReadWord(ByteReader& in, const FactTable& facts, RollupTable& table) const;
    void ReadGranules(const FactTable& facts, RollupTable& table) const;
    void ReadGroups(RollupTable& table) const;
    void LoadRows(ByteReader& in, const FactTable& facts, RollupTable& table) const;
    void LoadStrips(ByteReader& in, const FactTable& facts, RollupTable& table) const;
    /// A section of exactly `count` elements.
    MappedSection Section(format::SectionKind kind, std::size_t second, std::uint64_t width,
                          std::uint64_t count) const;
    format::SectionId Id(format::SectionKind kind, std::size_t second = 0) const;
    [[noreturn]] void Fail(const std::string& fault) const;

    FileImage& image_;
    std::uint32_t cubeNumber_;
};

} // namespace qel::engine
