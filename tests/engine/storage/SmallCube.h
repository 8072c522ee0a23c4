#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace qel::engine {

/// Aggregates with their long columns.
struct StoredAggregates : AggregateModel {
    std::vector<std::uint32_t> packedKeys;
    std::vector<std::uint64_t> bucketMasks;
    std::vector<std::uint32_t> prefixStarts{0};
    std::vector<std::vector<std::int32_t>> sums; ///< by measure; empty for a count
    std::vector<std::uint32_t> counts;

    void Write(const CubeModel& model, std::uint32_t cube, CubeFileWriter& writer) const;
};

/// Two accounts in one group, two firms, three facts: made by hand, so that a test can damage any part and
/// still write it with valid checksums.
struct SmallCube {
    CubeModel model;
    /// By sort order: one byte per fact.
    std::vector<std::vector<std::vector<std::uint8_t>>> keys;
    std::vector<std::vector<std::int8_t>> values;
    /// All facts as prefix sums by firm with a coarser aggregate, and those of account 1 as rows.
    StoredAggregates aggregates;
    std::vector<std::uint8_t> aggregateFirms;
    std::vector<std::int8_t> aggregateValues;
    bool hasAggregates = true;
    std::vector<std::vector<std::uint8_t>> detailFacts; ///< by sort order; none without details
    std::vector<std::uint8_t> detailCodes;
    std::vector<std::uint32_t> detailOffsets;
    std::string detailTexts;

    SmallCube();
    /// Facts over several pages, without aggregates; those of row r have the value `valueOf(r)`.
    SmallCube(std::size_t rows, const std::function<std::int8_t(std::size_t row)>& valueOf);
    /// Makes the accounts the time column, with two buckets, and keeps only the prefix-sum aggregate.
    void SumByAccounts();
    /// Keeps a text of each line: "bread", "milk", "bread".
    void KeepDetails();
    HierarchyModel& Accounts() { return model.dimensions[0].hierarchies[0]; }
    /// Adds this cube and its facts to a file of several cubes.
    void AddTo(CubeFileWriter& writer) const;
    /// Writes a file with only this cube.
    void Write(const std::filesystem::path& path) const;
};

} // namespace qel::engine
