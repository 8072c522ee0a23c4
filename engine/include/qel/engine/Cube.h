#pragma once

#include "qel/engine/Calculations.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

// The engine's own types, which no public header defines.
class FactTable;
class PageVerifier;
struct KeyRange;
struct MemberColumns;

/// A member's number in its hierarchy: level by level from the top, in member order within a level. The
/// children of a member are consecutive, so they form a range.
using MemberId = std::uint32_t;
inline constexpr MemberId noMember = 0xFFFFFFFFU;

/// A half-open range of member numbers.
struct MemberRange {
    MemberId first = 0;
    MemberId last = 0;

    std::uint32_t Count() const { return last - first; }
};

struct Level {
    std::string name;
    std::uint32_t depth = 0; ///< 0 for the top level
    MemberRange members;
    bool isAll = false;
};

/// One hierarchy of a dimension. Each member stands for a set of codes of one key column of the fact table.
/// Two hierarchies over the same key column (codes and names of the same accounts) restrict each other.
class Hierarchy {
public:
    const std::string& Name() const { return name_; }
    const std::string& Caption() const { return caption_; }
    /// "[Dimension].[Hierarchy]", or "[Dimension]" when the two names are equal.
    const std::string& UniqueName() const { return uniqueName_; }
    /// The dimension's number in the cube.
    std::size_t DimensionIndex() const { return dimensionIndex_; }
    /// This hierarchy's number in the cube, over all dimensions.
    std::size_t Index() const { return index_; }
    std::span<const Level> Levels() const { return levels_; }
    bool HasAll() const { return !levels_.empty() && levels_.front().isAll; }
    MemberId DefaultMember() const { return defaultMember_; }
    std::uint32_t MemberCount() const { return static_cast<std::uint32_t>(parents_.size()); }

    std::string_view MemberName(MemberId member) const;
    std::string_view MemberCaption(MemberId member) const;
    std::string_view MemberKey(MemberId member) const;
    /// "[Dimension].[Hierarchy].[All].[parent].[member]" with "]" doubled. A step is written "&[key]" when
    /// its name is not unique among its siblings.
    std::string MemberUniqueName(MemberId member) const;
    /// noMember at the top level.
    MemberId Parent(MemberId member) const { return parents_[member]; }
    MemberRange Children(MemberId member) const;
    /// The number of the level that the member belongs to.
    std::size_t LevelOf(MemberId member) const;
    /// All members of that name (any letter case) in ascending order, appended to `found`.
    void FindByName(std::string_view name, std::vector<MemberId>& found) const;
    /// The same by key.
    void FindByKey(std::string_view key, std::vector<MemberId>& found) const;
    /// The level of that name (any letter case), or nothing.
    std::optional<std::size_t> FindLevel(std::string_view name) const;

    // For the engine's own use: how the members select facts.

    /// The number of the fact table's key column that the members stand on; none for a dimension without
    /// facts.
    std::optional<std::size_t> KeyColumn() const { return keyColumn_; }
    /// The codes of the key column that the member stands for: ascending, disjoint, not adjacent. Empty for a
    /// member without facts' keys, and for every member of a hierarchy without a key column.
    std::span<const KeyRange> Ranges(MemberId member) const;

private:
    friend class CubeLoader;

    std::string name_, caption_, uniqueName_;
    std::size_t dimensionIndex_ = 0;
    std::size_t index_ = 0;
    std::optional<std::size_t> keyColumn_;
    std::vector<Level> levels_;
    MemberId defaultMember_ = 0;
    std::span<const MemberId> parents_;
    std::shared_ptr<const MemberColumns> columns_;
};

struct Dimension {
    std::string name;
    std::string caption;
    std::vector<std::size_t>
        hierarchies; ///< numbers in Cube::Hierarchies(); the first is the default hierarchy
    bool isTime = false;
};

enum class AggregateFunction : std::uint8_t { Sum = 0, Count = 1 };

struct Measure {
    std::string name;
    std::string caption;
    AggregateFunction function = AggregateFunction::Sum;
    std::uint8_t decimals = 0; ///< of its sums: amounts times 10^decimals are integers
};

/// A column of the ledger whose texts the cube keeps for each fact.
struct Detail {
    std::string name;    ///< the column
    std::string caption; ///< what lines call it
};

/// One cube of a file: metadata, read and checked when the file was opened, and the mapped facts.
/// Thread-safe. Valid as long as the file is open; CubeFile::FindCube returns shared ownership.
class Cube {
public:
    const std::string& Name() const { return name_; }
    const std::string& Caption() const { return caption_; }
    std::span<const Dimension> Dimensions() const { return dimensions_; }
    std::span<const Hierarchy> Hierarchies() const { return hierarchies_; }
    std::span<const Measure> Measures() const { return measures_; }
    /// The measure that a cell reads when the statement names none.
    std::size_t DefaultMeasure() const { return defaultMeasure_; }
    /// The calculated members and named sets that the cube's definition gave it.
    const Calculations& GetCalculations() const { return calculations_; }
    /// Whether the ledger's order of the facts, their lines and the texts of these columns are kept.
    bool KeepsDetails() const;
    std::vector<Detail> Details() const;
    std::uint64_t FactCount() const;
    /// The sort orders in which the facts are stored, at least one: the names of the ledger's columns, most
    /// significant first.
    std::vector<std::vector<std::string>> SortOrders() const;

    std::optional<std::size_t> FindDimension(std::string_view name) const;
    std::optional<std::size_t> FindMeasure(std::string_view name) const;

    // For the engine's own use.

    const FactTable& Facts() const { return *facts_; }
    /// Raises EngineError (DamagedFile) when the file was changed on disk, not replaced, since it was opened.
    /// Facts that were read are right only when this is asked afterwards.
    void CheckUnchanged() const;

private:
    friend class CubeLoader;

    std::string name_, caption_;
    std::vector<Dimension> dimensions_;
    std::vector<Hierarchy> hierarchies_;
    std::vector<Measure> measures_;
    std::size_t defaultMeasure_ = 0;
    Calculations calculations_;
    std::shared_ptr<const FactTable> facts_;
    const PageVerifier* pages_ = nullptr; ///< owned by the file
};

} // namespace qel::engine
