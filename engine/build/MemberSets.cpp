#include "engine/build/MemberSets.h"

#include "engine/build/AggregateLayout.h"
#include "engine/storage/NameIndex.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

using Ranges = std::vector<KeyRange>;

/// Sets with more ranges are not worth an aggregate.
constexpr std::size_t mostRanges = 64;

CodeRanges CodesOf(const HierarchyModel& hierarchy, std::size_t member) {
    const std::uint32_t first = hierarchy.rangeOffsets[member];
    return CodeRanges(hierarchy.ranges).subspan(first, hierarchy.rangeOffsets[member + 1] - first);
}

/// Members by the hash of their name. A hash collision only adds a set that no query selects.
using NamedMembers = std::vector<std::pair<std::uint64_t, std::uint32_t>>;

/// The codes of all members of one name; empty when members overlap or the ranges are too many.
Ranges CodesOfAll(const HierarchyModel& hierarchy, NamedMembers::const_iterator first,
                  NamedMembers::const_iterator last) {
    Ranges codes;
    for (; first != last; ++first) {
        const CodeRanges ranges = CodesOf(hierarchy, first->second);
        codes.insert(codes.end(), ranges.begin(), ranges.end());
    }
    return JoinDisjoint(codes) && codes.size() <= mostRanges ? codes : Ranges();
}

template <class Visit>
void VisitNamesOfLevel(const HierarchyModel& hierarchy, std::uint32_t firstMember, std::uint32_t lastMember,
                       const Visit& visit) {
    NamedMembers members;
    for (std::uint32_t member = firstMember; member < lastMember; ++member) {
        members.emplace_back(NameHash(FoldCase(hierarchy.names.At(member))), member);
    }
    std::sort(members.begin(), members.end());
    for (auto first = members.cbegin(); first != members.cend();) {
        const auto last = std::find_if(first, members.cend(),
                                       [&](const auto& member) { return member.first != first->first; });
        if (last - first > 1) {
            visit(CodeRanges(CodesOfAll(hierarchy, first, last)));
        }
        first = last;
    }
}

/// Calls visit(ranges) for the codes of every member of the column's hierarchies, and of every name on each
/// level.
template <class Visit>
void VisitSets(const CubeModel& model, std::size_t keyColumn, const Visit& visit) {
    for (const DimensionModel& dimension : model.dimensions) {
        for (const HierarchyModel& hierarchy : dimension.hierarchies) {
            if (hierarchy.keyColumn != keyColumn) {
                continue;
            }
            for (std::size_t member = 0; member < hierarchy.parents.size(); ++member) {
                visit(CodesOf(hierarchy, member));
            }
            std::uint32_t first = 0;
            for (const LevelModel& level : hierarchy.levels) {
                VisitNamesOfLevel(hierarchy, first, first + level.memberCount, visit);
                first += level.memberCount;
            }
        }
    }
}

} // namespace

void FindGroups(const CubeModel& model, AggregateModel& aggregates) {
    std::vector<Ranges> groups;
    for (std::size_t column = 0; column < model.keyColumns.size(); ++column) {
        if (!IsAggregateKey(aggregates, column)) {
            continue;
        }
        VisitSets(model, column, [&](CodeRanges ranges) {
            if (ranges.size() > 1 && ranges.size() <= mostRanges) {
                groups.emplace_back(ranges.begin(), ranges.end());
            }
        });
    }
    std::sort(groups.begin(), groups.end(), [](const Ranges& left, const Ranges& right) {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(), IsBefore);
    });
    groups.erase(std::unique(groups.begin(), groups.end()), groups.end());
    for (const Ranges& group : groups) {
        aggregates.groupRanges.insert(aggregates.groupRanges.end(), group.begin(), group.end());
        aggregates.groupStarts.push_back(static_cast<std::uint32_t>(aggregates.groupRanges.size()));
    }
}

std::vector<KeyRange> MemberSets(const CubeModel& model, const CodeGroups& groups, std::size_t keyColumn) {
    const KeyRange all{0, model.keyColumns[keyColumn].codes};
    std::vector<KeyRange> found;
    VisitSets(model, keyColumn, [&](CodeRanges ranges) {
        if (ranges.size() == 1 && !(ranges[0] == all)) {
            found.push_back(ranges[0]);
        } else if (ranges.size() > 1) {
            if (const auto group = groups.Find(ranges)) {
                found.push_back(*group);
            }
        }
    });
    std::sort(found.begin(), found.end(), IsBefore);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace qel::engine
