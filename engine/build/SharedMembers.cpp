#include "engine/build/SharedMembers.h"

#include "text/CaseFold.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <optional>

namespace qel::engine {

namespace {

using Node = MemberTree::Node;
constexpr std::uint32_t none = MemberTree::none;

struct NodePair {
    std::uint32_t first = none, second = none;
};

/// The members of the highest level at which the paths to two nodes part; nothing when one lies on the
/// other's path.
std::optional<NodePair> WherePathsPart(std::span<const Node> nodes, std::uint32_t left, std::uint32_t right) {
    while (nodes[left].level > nodes[right].level) {
        left = nodes[left].parent;
    }
    while (nodes[right].level > nodes[left].level) {
        right = nodes[right].parent;
    }
    if (left == right) {
        return std::nullopt;
    }
    while (nodes[left].parent != nodes[right].parent) {
        left = nodes[left].parent;
        right = nodes[right].parent;
    }
    return NodePair{left, right};
}

std::string Quoted(const MemberTree& tree, const NodePair& pair) {
    const auto name = [&](std::uint32_t node) { return tree.Text(tree.Nodes()[node].name); };
    const auto key = [&](std::uint32_t node) { return tree.Text(tree.Nodes()[node].key); };
    return name(pair.first) == name(pair.second)
               ? fmt::format("\"{}\" ({}) and \"{}\" ({})", name(pair.first), key(pair.first),
                             name(pair.second), key(pair.second))
               : fmt::format("\"{}\" and \"{}\"", name(pair.first), name(pair.second));
}

/// Flags the values that stand right below several nodes.
std::vector<bool> RepeatedValues(const MemberTree& tree) {
    std::vector<bool> isSeen, isRepeated;
    for (const auto& [node, value] : tree.Values()) {
        if (node == none) {
            continue;
        }
        if (value >= isSeen.size()) {
            isSeen.resize(std::size_t{value} + 1);
        }
        if (isSeen[value]) {
            isRepeated.resize(std::max<std::size_t>(isRepeated.size(), std::size_t{value} + 1));
            isRepeated[value] = true;
        }
        isSeen[value] = true;
    }
    return isRepeated;
}

std::string DescribeSharedName(const MemberTree& tree, const NodePair& pair) {
    const Node& first = tree.Nodes()[pair.first];
    const Node& second = tree.Nodes()[pair.second];
    if (first.name != second.name) {
        return fmt::format("\"{}\" and \"{}\", which are the same to formulas", tree.Text(first.name),
                           tree.Text(second.name));
    }
    return fmt::format("\"{}\" under {}", tree.Text(first.name), Quoted(tree, {first.parent, second.parent}));
}

/// Siblings of one name are told apart by their keys alone.
bool IsSameByName(const MemberTree& tree, std::uint32_t left, std::uint32_t right) {
    return tree.Nodes()[left].parent == tree.Nodes()[right].parent &&
           tree.Nodes()[left].name == tree.Nodes()[right].name;
}

} // namespace

SharedValues FindSharedValues(const MemberTree& tree) {
    const auto isRepeated = RepeatedValues(tree);
    if (isRepeated.empty()) {
        return {};
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> places; // value and node
    for (const auto& [node, value] : tree.Values()) {
        if (node != none && value < isRepeated.size() && isRepeated[value]) {
            places.emplace_back(value, node);
        }
    }
    std::sort(places.begin(), places.end());
    SharedValues shared;
    for (std::size_t first = 0, last = 0; first < places.size(); first = last) {
        while (last < places.size() && places[last].first == places[first].first) {
            ++last;
        }
        // Nodes are numbered level by level: the last is the deepest, and its path holds the others or parts.
        std::optional<NodePair> parting;
        for (std::size_t i = first; i + 1 < last && !parting; ++i) {
            parting = WherePathsPart(tree.Nodes(), places[i].second, places[last - 1].second);
        }
        if (!parting) {
            continue;
        }
        if (shared.values.empty()) {
            shared.parents = Quoted(tree, *parting);
        }
        shared.values.push_back(places[first].first);
    }
    return shared;
}

SharedNames FindSharedNames(const MemberTree& tree, std::uint32_t level) {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> hashes; // of the name in lower case, and the node
    std::string folded;
    for (std::uint32_t node = 0; node < tree.Nodes().size(); ++node) {
        if (tree.Nodes()[node].level == level) {
            folded.clear();
            AppendFolded(tree.Text(tree.Nodes()[node].name), folded);
            hashes.emplace_back(XXH3_64bits(folded.data(), folded.size()), node);
        }
    }
    std::sort(hashes.begin(), hashes.end());
    SharedNames shared;
    NodePair firstPair;
    for (std::size_t first = 0, last = 0; first < hashes.size(); first = last) {
        const std::uint32_t node = hashes[first].second;
        std::uint32_t other = none;
        for (last = first; last < hashes.size() && hashes[last].first == hashes[first].first; ++last) {
            if (other == none && !IsSameByName(tree, node, hashes[last].second)) {
                other = hashes[last].second;
            }
        }
        if (other == none) {
            continue;
        }
        ++shared.count;
        if (node < firstPair.first) {
            firstPair = {node, other};
        }
    }
    if (shared.count > 0) {
        shared.first = DescribeSharedName(tree, firstPair);
    }
    return shared;
}

} // namespace qel::engine
