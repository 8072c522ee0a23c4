#include "engine/build/MemberTree.h"

#include "engine/build/HierarchyParts.h"
#include "engine/build/TextOrder.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

void MemberTree::Add(std::span<const LevelFields> levels, std::optional<std::uint32_t> value) {
    std::uint32_t node = none;
    for (std::uint32_t level = 0; level < levels.size() && !levels[level].key.empty(); ++level) {
        node = FindOrAdd(node, level, levels[level]);
    }
    const auto entry = std::pair(node, value.value_or(0));
    if (value && (values_.empty() || values_.back() != entry)) {
        values_.push_back(entry);
    }
}

std::uint32_t MemberTree::FindOrAdd(std::uint32_t parent, std::uint32_t level, const LevelFields& fields) {
    const std::uint32_t key = texts_.Add(fields.key);
    const auto next = static_cast<std::uint32_t>(nodes_.size());
    const auto [place, isNew] = children_.emplace((std::uint64_t{parent} << 32U) | key, next);
    if (isNew) {
        const std::uint32_t name = fields.name.empty() ? key : texts_.Add(fields.name);
        const std::uint32_t caption = fields.caption.empty() ? name : texts_.Add(fields.caption);
        nodes_.push_back({parent, level, key, name, caption});
    }
    return place->second;
}

void MemberTree::Finish() {
    children_.clear();
    std::vector<std::uint32_t> order, rankOf(nodes_.size());
    for (std::uint32_t depth = 0; order.size() < nodes_.size(); ++depth) {
        std::vector<std::uint32_t> level;
        for (std::uint32_t node = 0; node < nodes_.size(); ++node) {
            if (nodes_[node].level == depth) {
                level.push_back(node);
            }
        }
        for (const std::uint32_t node : SortLevel(level, rankOf)) {
            rankOf[node] = static_cast<std::uint32_t>(order.size());
            order.push_back(node);
        }
    }
    Renumber(order);
    for (auto& [node, value] : values_) {
        node = node == none ? none : rankOf[node];
    }
    std::sort(values_.begin(), values_.end());
    values_.erase(std::unique(values_.begin(), values_.end()), values_.end());
}

std::vector<std::uint32_t> MemberTree::SortLevel(const std::vector<std::uint32_t>& level,
                                                 const std::vector<std::uint32_t>& rankOf) const {
    if (level.empty()) {
        return {};
    }
    const MemberOrder rule = definition_.levels[nodes_[level.front()].level].order;
    std::vector<std::uint32_t> sorted = level;
    if (rule != MemberOrder::File) {
        std::vector<std::string_view> texts;
        texts.reserve(level.size());
        for (const std::uint32_t node : level) {
            texts.push_back(texts_.Text(rule == MemberOrder::Key ? nodes_[node].key : nodes_[node].name));
        }
        const auto places = SortTexts(texts);
        std::transform(places.begin(), places.end(), sorted.begin(),
                       [&level](std::uint32_t place) { return level[place]; });
    }
    const auto parentPlace = [&](std::uint32_t node) {
        return nodes_[node].parent == none ? 0 : rankOf[nodes_[node].parent];
    };
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](auto left, auto right) { return parentPlace(left) < parentPlace(right); });
    return sorted;
}

void MemberTree::Renumber(const std::vector<std::uint32_t>& order) {
    std::vector<std::uint32_t> rankOf(nodes_.size());
    std::vector<Node> nodes;
    nodes.reserve(nodes_.size());
    for (const std::uint32_t node : order) {
        rankOf[node] = static_cast<std::uint32_t>(nodes.size());
        nodes.push_back(nodes_[node]);
        if (nodes.back().parent != none) {
            nodes.back().parent = rankOf[nodes.back().parent];
        }
    }
    nodes_ = std::move(nodes);
}

std::vector<std::uint32_t> MemberTree::ValuesInTreeOrder(const std::vector<std::uint32_t>& rank) const {
    std::vector<std::vector<std::uint32_t>> children(nodes_.size()), values(nodes_.size());
    std::vector<std::uint32_t> pending; // a stack: the next node is at the end
    for (auto node = static_cast<std::uint32_t>(nodes_.size()); node-- > 0;) {
        const std::uint32_t parent = nodes_[node].parent;
        (parent == none ? pending : children[parent]).push_back(node);
    }
    std::uint32_t highest = 0;
    for (const auto& [node, value] : values_) {
        highest = std::max(highest, value);
        if (node != none) {
            values[node].push_back(value);
        }
    }
    std::vector<bool> isPlaced(std::size_t{highest} + 1);
    std::vector<std::uint32_t> ordered;
    while (!pending.empty()) {
        const std::uint32_t node = pending.back();
        pending.pop_back();
        std::sort(values[node].begin(), values[node].end(),
                  [&rank](auto left, auto right) { return rank[left] < rank[right]; });
        for (const std::uint32_t value : values[node]) {
            if (!isPlaced[value]) {
                ordered.push_back(value);
            }
            isPlaced[value] = true;
        }
        pending.insert(pending.end(), children[node].begin(), children[node].end());
    }
    return ordered;
}

std::vector<std::vector<KeyRange>> MemberTree::NodeRanges(const std::vector<std::uint32_t>& codeOf) const {
    std::vector<std::vector<KeyRange>> ranges(nodes_.size());
    for (const auto& [node, value] : values_) {
        if (node != none) {
            ranges[node].push_back({codeOf[value], codeOf[value] + 1});
        }
    }
    for (auto node = static_cast<std::uint32_t>(nodes_.size()); node-- > 0;) {
        NormalizeRanges(ranges[node]); // complete: children come after their parents
        const std::uint32_t parent = nodes_[node].parent;
        if (parent != none) {
            ranges[parent].insert(ranges[parent].end(), ranges[node].begin(), ranges[node].end());
        }
    }
    return ranges;
}

HierarchyModel MemberTree::Model(std::optional<std::uint32_t> keyColumn,
                                 const std::vector<std::uint32_t>& codeOf, std::uint32_t codes) const {
    HierarchyModel model;
    model.name = definition_.name;
    model.caption = definition_.caption;
    model.keyColumn = keyColumn;
    if (definition_.all) {
        AddTopMember(*definition_.all, keyColumn ? codes : 0, model);
    }
    for (const LevelDefinition& level : definition_.levels) {
        model.levels.push_back({level.name, false, 0});
    }
    AddMembers(model);
    for (const auto& ranges :
         keyColumn ? NodeRanges(codeOf) : std::vector<std::vector<KeyRange>>(nodes_.size())) {
        AddRanges(ranges, model);
    }
    FillFirstChildren(model);
    model.defaultMember = FindDefaultMember(definition_, model);
    return model;
}

void MemberTree::AddMembers(HierarchyModel& model) const {
    const std::uint32_t top = definition_.all ? 1 : 0;
    for (const Node& node : nodes_) {
        model.names.Add(texts_.Text(node.name));
        model.captions.Add(texts_.Text(node.caption));
        model.keys.Add(texts_.Text(node.key));
        model.parents.push_back(node.parent != none ? node.parent + top : top != 0 ? 0 : none);
        ++model.levels[node.level + top].memberCount;
    }
}

} // namespace qel::engine
