#pragma once

#include "engine/build/FactStore.h"
#include "engine/build/FilePrint.h"
#include "engine/build/KeyColumnBuilder.h"
#include "engine/storage/ByteBuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// A fact table that was read to its end, without a line that could not be used.
struct KeptTable {
    FilePrint file;
    std::uint64_t nextLine = 0; ///< number of the line behind the last one
    std::uint64_t rows = 0;
};

/// What a cube file keeps of the facts as they were read, for a build that goes on from them.
struct KeptFacts {
    FilePrint definition;
    std::vector<KeptTable> tables;
    std::vector<std::uint8_t> currencies; ///< see FactColumns
    /// By key column and value number; absent where no fact has it.
    std::vector<std::vector<std::optional<std::string>>> texts;
    std::vector<bool> isSummed; ///< by measure

    /// Nothing when another version of the program wrote it, or the bytes are not well-formed.
    static std::optional<KeptFacts> Parse(std::span<const std::byte> description);
    ByteWriter Describe() const;
};

/// The facts of a build before, to be added to one that goes on.
class KeptRows {
public:
    /// `rows` are FactStore's blocks.
    KeptRows(KeptFacts facts, ReadBytes rows, std::uint64_t size)
        : facts_(std::move(facts)), rows_(std::move(rows)), size_(size) {}

    const KeptFacts& Facts() const { return facts_; }
    /// Whether every value of the facts is one that the key columns take.
    bool AreTaken(const std::vector<KeyColumnBuilder>& keyColumns) const;
    /// Adds the next `rows` facts. Raises EngineError (DamagedFile).
    void AddRows(std::uint64_t rows, std::vector<KeyColumnBuilder>& keyColumns, FactStore& facts);

private:
    std::uint32_t NumberOf(std::size_t column, std::uint32_t kept, KeyColumnBuilder& keys);
    void ReadBlock();

    KeptFacts facts_;
    ReadBytes rows_;
    std::uint64_t size_, offset_ = 0;
    std::vector<std::vector<std::uint32_t>> numbers_; ///< in this build, by key column and kept number
    FactBlock block_;
    std::size_t next_ = 0; ///< row of the block
};

} // namespace qel::engine
