#pragma once

#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace qel::engine {

/// Two accounts in one group, two firms, three facts: made by hand, so that a test can spoil any part of it
/// and still write it with right checksums.
struct SmallCube {
    CubeModel model;
    /// By sort order: a byte for each fact.
    std::vector<std::vector<std::vector<std::uint8_t>>> keys;
    std::vector<std::vector<std::int8_t>> values;
    /// All facts in strips by firm and merged, and those of account 1 as rows.
    AggregateModel aggregates;
    std::vector<std::uint8_t> aggregateFirms;
    std::vector<std::int8_t> aggregateValues;
    bool hasAggregates = true;

    SmallCube();
    /// Lets the accounts be the aggregates' time, of two buckets, and the strips be the only aggregate.
    void SumByAccounts();
    HierarchyModel& Accounts() { return model.dimensions[0].hierarchies[0]; }
    /// Adds this cube and its facts to a file of several.
    void AddTo(CubeFileWriter& writer) const;
    /// Writes a file of this cube alone.
    void Write(const std::filesystem::path& path) const;
};

} // namespace qel::engine
