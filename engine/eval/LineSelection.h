#pragma once

#include "engine/eval/CodeRanges.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace qel::engine {

/// Facts that a cell adds up: those with codes in all of these sets.
struct FactPart {
    struct Codes {
        std::size_t keyColumn = 0;
        std::vector<KeyRange> ranges;
    };
    std::vector<Codes> codes;

    explicit FactPart(std::span<const Restriction> restrictions);
    std::vector<Restriction> Restrictions() const;
};

/// Where a fact is stored.
struct LinePlace {
    const Projection* projection = nullptr;
    std::uint32_t part = 0;
    std::uint64_t row = 0;
};

/// Some of the facts behind a cell, in their order.
struct SelectedLines {
    std::vector<LinePlace> places;
    std::uint64_t total = 0; ///< of all of them
};

/// The facts of the parts from number `first` (from 0) on, at most `most`: by date, then as the ledger is
/// where details are kept, otherwise by their other keys. Facts of two parts come twice. Raises EngineError
/// (DamagedFile).
SelectedLines SelectLines(const Cube& cube, const std::vector<FactPart>& parts, std::uint64_t first,
                          std::uint64_t most, const std::function<void(double)>& progress);

/// The key column of the cube's first dimension of time, or nothing.
std::optional<std::size_t> DateColumn(const Cube& cube);

/// The number of the fact in the details, which are there.
std::uint32_t FactOf(const FactTable& facts, const LinePlace& place);

/// The code of one fact in a key column. Raises EngineError (DamagedFile).
std::uint32_t CodeOf(const FactTable& facts, const LinePlace& place, std::size_t keyColumn);

} // namespace qel::engine
