#pragma once

#include "engine/storage/MappedSection.h"
#include "qel/engine/Cube.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A column of the ledger whose texts are kept for each fact.
struct DetailColumn : Detail {
    std::uint32_t texts = 0;      ///< number of different texts
    std::uint8_t codeWidth = 0;   ///< bytes per code; 0: fact number n has text number n
    std::uint8_t offsetWidth = 4; ///< bytes per place of a text: 4 or 8
    MappedSection codes, offsets, bytes;
};

/// Facts from number `first` on stand in consecutive lines of one file.
struct DetailRun {
    std::uint32_t first = 0, file = 0;
    std::uint64_t line = 0;
};
static_assert(sizeof(DetailRun) == 16);

/// Where a fact stood in the ledger.
struct SourceLine {
    std::uint32_t file = 0; ///< number among the cube's fact files
    std::uint64_t line = 0; ///< of the file, from 1
};

/// The ledger's own texts behind the facts, and the ledger's order of the facts: fact number n is the n-th
/// line that was used. Read only for lines; nothing of it is checked before it is read. Raises EngineError
/// (DamagedFile).
class DetailTable {
public:
    std::span<const DetailColumn> Columns() const { return columns_; }
    /// The number of the fact in this row of a sort order.
    std::uint32_t FactOf(std::size_t projection, std::uint64_t row) const;
    /// A view into the mapped file.
    std::string_view Text(std::size_t column, std::uint32_t fact) const;
    std::string_view TextAt(std::size_t column, std::uint32_t text) const;
    SourceLine LineOf(std::uint32_t fact) const;
    const std::vector<std::string>& Files() const { return files_; }
    std::uint64_t RunCount() const;
    /// Why the columns and lines are not well-formed, or an empty text. Reads all of them.
    std::string FindFault() const;

private:
    friend class CubeLoader;

    DetailRun RunAt(std::uint64_t index) const;

    std::uint64_t factCount_ = 0;
    std::vector<std::string> files_;
    std::vector<DetailColumn> columns_;
    std::vector<MappedSection> facts_; ///< by sort order
    std::uint8_t factWidth_ = 4;       ///< bytes per fact number, 1 to 4
    MappedSection runs_;
};

/// The fewest bytes that hold numbers below `count`: 1 to 4.
std::uint8_t BytesFor(std::uint64_t count);

} // namespace qel::engine
