#pragma once

#include "engine/storage/ByteBuffer.h"
#include "engine/storage/FactTable.h"
#include "engine/storage/FileImage.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::engine {

/// Reads the aggregates of one cube. Checks their description and the sizes of their sections.
class AggregateLoader {
public:
    AggregateLoader(FileImage& image, std::uint32_t cube) : image_(image), cubeNumber_(cube) {}

    /// Nothing when the file has no aggregates. Raises EngineError (DamagedFile).
    std::optional<AggregateTable> Load(const FactTable& facts) const;

private:
    void ReadPackedKey(ByteReader& in, const FactTable& facts, AggregateTable& table) const;
    void ReadTimeBuckets(const FactTable& facts, AggregateTable& table) const;
    void ReadGroups(AggregateTable& table) const;
    void LoadRows(ByteReader& in, const FactTable& facts, AggregateTable& table) const;
    void LoadPrefixSums(ByteReader& in, const FactTable& facts, AggregateTable& table) const;
    /// A section of exactly `count` elements.
    MappedSection Section(format::SectionKind kind, std::size_t second, std::uint64_t width,
                          std::uint64_t count) const;
    format::SectionId Id(format::SectionKind kind, std::size_t second = 0) const;
    [[noreturn]] void Fail(const std::string& fault) const;

    FileImage& image_;
    std::uint32_t cubeNumber_;
};

} // namespace qel::engine
