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

/// The members of one hierarchy as they are gathered from the lines of a dimension table, and the values of
/// the key column that stand under them.
class MemberTree {
public:
    /// One level of a line: the member's key, name and caption, of which the last two may be empty.
    struct LevelFields {
        std::string_view key, name, caption;
    };

    explicit MemberTree(const HierarchyDefinition& definition) : definition_(definition) {}

    /// Takes a line: its levels from the top, an empty key ending the branch, and the number of its value in
    /// the key column (none for a dimension without one). A member keeps the name of its first line.
    void Add(std::span<const LevelFields> levels, std::optional<std::uint32_t> value);

    /// Puts the members into their order; to be called once after the last line.
    void Finish();

    /// All values, each once, so that the values of every member follow one another as far as the tree
    /// allows. `rank` orders the values of one member.
    std::vector<std::uint32_t> ValuesInTreeOrder(const std::vector<std::uint32_t>& rank) const;

    /// The finished hierarchy. `codeOf` gives each value's code, out of `codes`. Raises EngineError
    /// (InvalidDefinition) when it has no member, or none of the default member's key.
    HierarchyModel Model(std::optional<std::uint32_t> keyColumn, const std::vector<std::uint32_t>& codeOf,
                         std::uint32_t codes) const;

private:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;

    struct Node {
        std::uint32_t parent = none;
        std::uint32_t level = 0;
        std::uint32_t key = 0, name = 0, caption = 0; ///< numbers of texts
    };

    std::uint32_t FindOrAdd(std::uint32_t parent, std::uint32_t level, const LevelFields& fields);
    /// The nodes of a level in member order, given the places of their parents.
    std::vector<std::uint32_t> SortLevel(const std::vector<std::uint32_t>& level,
                                         const std::vector<std::uint32_t>& placeOf) const;
    void Renumber(const std::vector<std::uint32_t>& order);
    std::vector<std::vector<KeyRange>> NodeRanges(const std::vector<std::uint32_t>& codeOf) const;
    void AddMembers(HierarchyModel& model) const;

    const HierarchyDefinition& definition_;
    TextDictionary texts_;
    std::vector<Node> nodes_; ///< once finished, in the order of the member numbers
    std::unordered_map<std::uint64_t, std::uint32_t> children_;   ///< parent and key to node, while gathering
    std::vector<std::pair<std::uint32_t, std::uint32_t>> values_; ///< node (or none for the top) and value
};

} // namespace qel::engine
