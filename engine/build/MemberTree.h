#pragma once

#include "engine/build/Definition.h"
#include "engine/build/TextDictionary.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qel::engine {

/// Collects the members of one hierarchy from the lines of a dimension table, with the values of the key
/// column below them.
class MemberTree {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;

    struct Node {
        std::uint32_t parent = none;
        std::uint32_t level = 0;
        std::uint32_t key = 0, name = 0, caption = 0; ///< texts, see Text
    };

    /// The fields of one level of a line. Name and caption may be empty.
    struct LevelFields {
        std::string_view key, name, caption;
    };

    explicit MemberTree(const HierarchyDefinition& definition) : definition_(definition) {}

    /// Adds a line: its levels from the top (an empty key ends the branch) and the number of its value in the
    /// key column (nothing for a dimension without one). A member keeps the name of its first line.
    void Add(std::span<const LevelFields> levels, std::optional<std::uint32_t> value);

    /// Sorts the members. To be called once, after the last line.
    void Finish();

    /// Every value once, in an order that keeps the values of each member consecutive as far as the tree
    /// allows. `rank` orders the values of one member.
    std::vector<std::uint32_t> ValuesInTreeOrder(const std::vector<std::uint32_t>& rank) const;

    /// The hierarchy's model. `codeOf` maps values to codes, of which there are `codes`. Raises EngineError
    /// (InvalidDefinition) when there are no members, or none with the default member's key.
    HierarchyModel Model(std::optional<std::uint32_t> keyColumn, const std::vector<std::uint32_t>& codeOf,
                         std::uint32_t codes) const;

    const HierarchyDefinition& Definition() const { return definition_; }
    /// In member order after Finish.
    std::span<const Node> Nodes() const { return nodes_; }
    std::string_view Text(std::uint32_t text) const { return texts_.Text(text); }
    /// Each node (none for the top member) with the values right below it.
    std::span<const std::pair<std::uint32_t, std::uint32_t>> Values() const { return values_; }

private:
    std::uint32_t FindOrAdd(std::uint32_t parent, std::uint32_t level, const LevelFields& fields);
    /// The nodes of a level in member order, given the ranks of their parents.
    std::vector<std::uint32_t> SortLevel(const std::vector<std::uint32_t>& level,
                                         const std::vector<std::uint32_t>& rankOf) const;
    void Renumber(const std::vector<std::uint32_t>& order);
    std::vector<std::vector<KeyRange>> NodeRanges(const std::vector<std::uint32_t>& codeOf) const;
    void AddMembers(HierarchyModel& model) const;

    const HierarchyDefinition& definition_;
    TextDictionary texts_;
    std::vector<Node> nodes_;
    std::unordered_map<std::uint64_t, std::uint32_t> children_; ///< parent and key to node, before Finish
    std::vector<std::pair<std::uint32_t, std::uint32_t>> values_;
};

} // namespace qel::engine
