#include "engine/eval/NameSearch.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

bool NameSearch::IsNamed(std::size_t part, std::string_view name) const {
    return !parts_[part].isKey && EqualIgnoringCase(parts_[part].text, name);
}

std::optional<Resolved> NameSearch::Find(std::span<const NamePart> parts) {
    parts_ = parts;
    furthest_ = 0;
    found_.clear();
    if (IsNamed(0, "Measures")) {
        return InMeasures();
    }
    const Cube& cube = space_.GetCube();
    const std::optional<std::size_t> index =
        parts_[0].isKey ? std::nullopt : cube.FindDimension(parts_[0].text);
    if (!index) {
        return WithoutDimension();
    }
    const std::vector<std::size_t>& hierarchies = cube.Dimensions()[*index].hierarchies;
    furthest_ = 1;
    if (parts_.size() == 1) {
        return HierarchyName{static_cast<HierarchyId>(hierarchies.front())};
    }
    for (const std::size_t hierarchy : hierarchies) {
        if (!IsNamed(1, cube.Hierarchies()[hierarchy].Name())) {
            continue;
        }
        if (std::optional<Resolved> resolved = InHierarchy(static_cast<HierarchyId>(hierarchy), 2)) {
            return resolved;
        }
    }
    for (const std::size_t hierarchy : hierarchies) {
        if (std::optional<Resolved> resolved = InHierarchy(static_cast<HierarchyId>(hierarchy), 1)) {
            return resolved;
        }
    }
    return std::nullopt;
}

/// A path that starts with a hierarchy, a level, or a member that has no parent or only All: in the first
/// dimension of the cube that has it.
std::optional<Resolved> NameSearch::WithoutDimension() {
    const Cube& cube = space_.GetCube();
    for (const Dimension& dimension : cube.Dimensions()) {
        for (const std::size_t number : dimension.hierarchies) {
            const auto hierarchy = static_cast<HierarchyId>(number);
            std::optional<Resolved> resolved;
            if (IsNamed(0, cube.Hierarchies()[number].Name())) {
                resolved = InHierarchy(hierarchy, 1);
            } else if (!parts_[0].isKey && StartsIn(hierarchy)) {
                resolved = InHierarchy(hierarchy, 0);
            }
            if (resolved) {
                return resolved;
            }
        }
    }
    if (!parts_[0].isKey) { // a measure without [Measures]
        if (const std::optional<std::size_t> measure = cube.FindMeasure(parts_[0].text);
            measure && parts_.size() == 1) {
            return MemberRef{space_.Measures(), static_cast<MemberId>(*measure)};
        }
    }
    furthest_ = 0;
    return std::nullopt;
}

/// Whether the first part names a level, or a member on the top level or below All.
bool NameSearch::StartsIn(HierarchyId hierarchy) {
    const Hierarchy& stored = space_.Stored(hierarchy);
    const MemberRange top = space_.LevelMembers({hierarchy, 0});
    const MemberRange start = stored.HasAll() && stored.Levels().size() > 1
                                  ? MemberRange{top.first, space_.LevelMembers({hierarchy, 1}).last}
                                  : top;
    const std::size_t before = found_.size();
    FindMembers(hierarchy, start, 0);
    const bool isFound = found_.size() > before;
    found_.resize(before);
    return isFound || stored.FindLevel(parts_[0].text).has_value();
}

std::optional<Resolved> NameSearch::InMeasures() {
    const HierarchyId measures = space_.Measures();
    std::size_t part = 1;
    furthest_ = 1;
    // Skip an explicit hierarchy or level: [Measures].[Measures], [Measures].[MeasuresLevel].
    if (part < parts_.size() && IsNamed(part, "Measures")) {
        ++part;
    }
    if (part == parts_.size()) {
        return HierarchyName{measures};
    }
    if (IsNamed(part, "MeasuresLevel")) {
        if (++part == parts_.size()) {
            return LevelName{{measures, 0}, noMember};
        }
    }
    furthest_ = part;
    if (const auto calculated = space_.FindCalculated({measures, noMember}, parts_[part].text, scope_)) {
        return part + 1 == parts_.size() ? std::optional<Resolved>(MemberRef{measures, *calculated})
                                         : std::nullopt;
    }
    const std::optional<std::size_t> measure = space_.GetCube().FindMeasure(parts_[part].text);
    if (!measure || part + 1 < parts_.size()) {
        furthest_ += measure ? 1U : 0U;
        return std::nullopt;
    }
    return MemberRef{measures, static_cast<MemberId>(*measure)};
}

std::optional<Resolved> NameSearch::InHierarchy(HierarchyId hierarchy, std::size_t part) {
    furthest_ = std::max(furthest_, part);
    if (part == parts_.size()) {
        return HierarchyName{hierarchy};
    }
    const bool isLast = part + 1 == parts_.size();
    if (const MemberId calculated = CalculatedBelow({hierarchy, noMember}, part); calculated != noMember) {
        return MemberRef{hierarchy, calculated};
    }
    const MemberRange all = space_.AllMembers(hierarchy);
    const auto level =
        parts_[part].isKey ? std::nullopt : space_.Stored(hierarchy).FindLevel(parts_[part].text);
    if (level && isLast) {
        return LevelName{{hierarchy, *level}, MemberPath(hierarchy, all, part)};
    }
    if (level) {
        const MemberRange members = space_.LevelMembers({hierarchy, *level});
        if (const MemberId member = MemberPath(hierarchy, members, part + 1); member != noMember) {
            return MemberRef{hierarchy, member};
        }
    }
    if (const MemberId member = MemberPath(hierarchy, all, part); member != noMember) {
        return MemberRef{hierarchy, member};
    }
    if (space_.Stored(hierarchy).HasAll()) { // the path through All may be left out
        if (const MemberId calculated = CalculatedBelow({hierarchy, all.first}, part);
            calculated != noMember) {
            return MemberRef{hierarchy, calculated};
        }
    }
    return std::nullopt;
}

MemberId NameSearch::MemberPath(HierarchyId hierarchy, MemberRange among, std::size_t part) {
    furthest_ = std::max(furthest_, part);
    const std::size_t before = found_.size();
    FindMembers(hierarchy, among, part);
    const std::size_t end = found_.size();
    MemberId descendant = noMember;
    for (std::size_t i = before; i < end && descendant == noMember; ++i) {
        descendant = Descend(hierarchy, found_[i], part + 1);
    }
    found_.resize(before);
    return descendant;
}

MemberId NameSearch::Descend(HierarchyId hierarchy, MemberId member, std::size_t part) {
    if (part == parts_.size()) {
        return member;
    }
    const MemberId calculated = CalculatedBelow({hierarchy, member}, part);
    return calculated != noMember ? calculated
                                  : MemberPath(hierarchy, space_.Children({hierarchy, member}), part);
}

MemberId NameSearch::CalculatedBelow(MemberRef parent, std::size_t part) const {
    const bool canBe = part + 1 == parts_.size() && !parts_[part].isKey;
    return canBe ? space_.FindCalculated(parent, parts_[part].text, scope_).value_or(noMember) : noMember;
}

void NameSearch::FindMembers(HierarchyId hierarchy, MemberRange among, std::size_t part) {
    const NamePart& name = parts_[part];
    if (name.text.empty()) {
        return;
    }
    const Hierarchy& stored = space_.Stored(hierarchy);
    const auto first = static_cast<std::ptrdiff_t>(found_.size());
    if (name.isKey) {
        stored.FindByKey(name.text, found_);
    } else {
        stored.FindByName(name.text, found_);
    }
    found_.erase(
        std::remove_if(found_.begin() + first, found_.end(),
                       [among](MemberId member) { return member < among.first || member >= among.last; }),
        found_.end());
    if (found_.end() - found_.begin() < first + 2) {
        return;
    }
    // Names may differ only in letter case; an exact match comes first.
    std::stable_sort(found_.begin() + first, found_.end(), [&](MemberId left, MemberId right) {
        const auto rank = [&](MemberId member) {
            const std::string_view spelling =
                name.isKey ? stored.MemberKey(member) : stored.MemberName(member);
            return std::pair(stored.LevelOf(member), spelling != name.text);
        };
        return rank(left) < rank(right);
    });
}

} // namespace qel::engine
