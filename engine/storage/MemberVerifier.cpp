#include "engine/storage/MemberVerifier.h"

#include "engine/storage/Ranges.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

bool Contains(const std::vector<MemberId>& members, MemberId member) {
    return std::binary_search(members.begin(), members.end(), member);
}

/// Whether every inner range lies within an outer one. Both ascend.
bool Covers(std::span<const KeyRange> outer, std::span<const KeyRange> inner) {
    auto place = outer.begin();
    for (const KeyRange& range : inner) {
        while (place != outer.end() && place->last < range.last) {
            ++place;
        }
        if (place == outer.end() || place->first > range.first) {
            return false;
        }
    }
    return true;
}

std::string FaultOf(const Hierarchy& hierarchy, MemberId member, std::vector<MemberId>& found) {
    if (!IsValidUtf8(hierarchy.MemberName(member)) || !IsValidUtf8(hierarchy.MemberCaption(member)) ||
        !IsValidUtf8(hierarchy.MemberKey(member))) {
        return "a text is not UTF-8";
    }
    found.clear();
    hierarchy.FindByName(hierarchy.MemberName(member), found);
    if (!Contains(found, member)) {
        return "its name does not find it";
    }
    found.clear();
    hierarchy.FindByKey(hierarchy.MemberKey(member), found);
    if (!Contains(found, member)) {
        return "its key does not find it";
    }
    const MemberId parent = hierarchy.Parent(member);
    if (parent != noMember && !Covers(hierarchy.Ranges(parent), hierarchy.Ranges(member))) {
        return "its parent lacks some of its keys";
    }
    return {};
}

} // namespace

std::string FindMemberFault(const Cube& cube) {
    std::vector<MemberId> found;
    for (const Hierarchy& hierarchy : cube.Hierarchies()) {
        for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
            const std::string fault = FaultOf(hierarchy, member, found);
            if (!fault.empty()) {
                return fmt::format("cube {}, {}, member {}: {}", cube.Name(), hierarchy.UniqueName(), member,
                                   fault);
            }
        }
    }
    return {};
}

} // namespace qel::engine
