#include "engine/build/HierarchyParts.h"

#include "qel/engine/Cube.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace qel::engine {

void NormalizeRanges(std::vector<KeyRange>& ranges) {
    std::sort(ranges.begin(), ranges.end(),
              [](const KeyRange& left, const KeyRange& right) { return left.first < right.first; });
    std::size_t kept = 0;
    for (const KeyRange& range : ranges) {
        if (kept > 0 && range.first <= ranges[kept - 1].last) {
            ranges[kept - 1].last = std::max(ranges[kept - 1].last, range.last);
        } else {
            ranges[kept++] = range;
        }
    }
    ranges.resize(kept);
}

void AddTopMember(std::string_view name, std::uint32_t codes, HierarchyModel& model) {
    // Named differently from its member "All", otherwise [Firma].[All] would refer to the level.
    model.levels.push_back({"(All)", true, 1});
    model.names.Add(name);
    model.captions.Add(name);
    model.keys.Add(name);
    model.parents.push_back(noMember);
    AddRanges(codes == 0 ? std::vector<KeyRange>() : std::vector<KeyRange>{{0, codes}}, model);
}

void AddRanges(const std::vector<KeyRange>& ranges, HierarchyModel& model) {
    model.ranges.insert(model.ranges.end(), ranges.begin(), ranges.end());
    model.rangeOffsets.push_back(static_cast<std::uint32_t>(model.ranges.size()));
}

void FillFirstChildren(HierarchyModel& model) {
    const auto count = static_cast<std::uint32_t>(model.parents.size());
    std::uint32_t child = 0;
    while (child < count && model.parents[child] == noMember) {
        ++child;
    }
    for (std::uint32_t member = 0; member < count; ++member) {
        model.firstChild.push_back(child);
        while (child < count && model.parents[child] == member) {
            ++child;
        }
    }
    model.firstChild.push_back(count);
}

std::uint32_t FindDefaultMember(const HierarchyDefinition& definition, const HierarchyModel& model) {
    const auto fail = [&definition](const std::string& fault) {
        throw EngineError(
            ErrorKind::InvalidDefinition,
            fmt::format("{}: the hierarchy \"{}\" {}", definition.place, definition.name, fault));
    };
    if (model.parents.empty()) {
        fail("would have no members");
    }
    if (!definition.defaultKey) {
        return 0;
    }
    for (std::uint32_t member = 0; member < model.keys.Count(); ++member) {
        if (model.keys.At(member) == *definition.defaultKey) {
            return member;
        }
    }
    fail(
        fmt::format("has no member with the key \"{}\", which is to be its default", *definition.defaultKey));
    return 0;
}

} // namespace qel::engine
