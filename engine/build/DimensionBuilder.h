#pragma once

#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/MemberTree.h"
#include "engine/build/TableReader.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qel::engine {

/// Collects the members of one dimension and creates its model.
class DimensionBuilder {
public:
    explicit DimensionBuilder(const DimensionDefinition& definition);

    const DimensionDefinition& Definition() const { return definition_; }
    /// Adds the lines of one of the dimension's tables. `keys` is the dimension's key column (null for a
    /// dimension without one), for which this is table number `tableOfKeys`.
    void ReadTables(TableReader& reader, KeyColumnBuilder* keys, std::size_t tableOfKeys);
    /// For a dimension without tables: adds the listed members, or every value of its column.
    void TakeValues(const KeyColumnBuilder* keys);
    /// To be called after the last member.
    void Finish();

    /// The hierarchy with the most levels.
    std::size_t DeepestTree() const;
    const MemberTree& Tree(std::size_t index) const { return trees_[index]; }
    /// One per hierarchy; empty for a calendar.
    const std::vector<MemberTree>& Trees() const { return trees_; }
    DimensionModel Model(const KeyColumnBuilder* keys, std::optional<std::uint32_t> keyColumn) const;

private:
    const DimensionDefinition& definition_;
    std::vector<MemberTree> trees_;
};

} // namespace qel::engine
