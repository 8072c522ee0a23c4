#include "engine/eval/NameResolver.h"

#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

Resolved NameResolver::Resolve(const mdx::Node& path, bool wantsLevel) {
    TakeParts(path);
    if (std::optional<Resolved> resolved = ResolveAll()) {
        return *resolved;
    }
    Fail(wantsLevel);
}

MemberRef NameResolver::ParentOfNew(const mdx::Node& path) {
    TakeParts(path);
    parts_.pop_back();
    if (parts_.empty()) {
        return {space_.Measures(), noMember};
    }
    const std::optional<Resolved> resolved = ResolveAll();
    if (!resolved) {
        Fail(false);
    }
    if (const auto* hierarchy = std::get_if<HierarchyName>(&*resolved)) {
        return {hierarchy->hierarchy, noMember};
    }
    if (const auto* level = std::get_if<LevelName>(&*resolved)) {
        return {level->level.hierarchy, level->member};
    }
    return std::get<MemberRef>(*resolved);
}

void NameResolver::TakeParts(const mdx::Node& path) {
    parts_.clear();
    furthest_ = 0;
    for (mdx::NodeId part = path.firstChild; part != mdx::noNode; part = statement_.At(part).next) {
        parts_.push_back(&statement_.At(part));
    }
}

bool NameResolver::IsNamed(std::size_t part, std::string_view name) const {
    return !parts_[part]->isKey && EqualIgnoringCase(parts_[part]->text, name);
}

std::optional<Resolved> NameResolver::ResolveAll() {
    if (IsNamed(0, "Measures")) {
        return InMeasures();
    }
    const Cube& cube = space_.GetCube();
    const std::optional<std::size_t> index =
        parts_[0]->isKey ? std::nullopt : cube.FindDimension(parts_[0]->text);
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
std::optional<Resolved> NameResolver::WithoutDimension() {
    const Cube& cube = space_.GetCube();
    for (const Dimension& dimension : cube.Dimensions()) {
        for (const std::size_t number : dimension.hierarchies) {
            const auto hierarchy = static_cast<HierarchyId>(number);
            std::optional<Resolved> resolved;
            if (IsNamed(0, cube.Hierarchies()[number].Name())) {
                resolved = InHierarchy(hierarchy, 1);
            } else if (!parts_[0]->isKey && StartsIn(hierarchy)) {
                resolved = InHierarchy(hierarchy, 0);
            }
            if (resolved) {
                return resolved;
            }
        }
    }
    if (!parts_[0]->isKey) { // a measure without [Measures]
        if (const std::optional<std::size_t> measure = cube.FindMeasure(parts_[0]->text);
            measure && parts_.size() == 1) {
            return MemberRef{space_.Measures(), static_cast<MemberId>(*measure)};
        }
    }
    furthest_ = 0;
    return std::nullopt;
}

/// Whether the first part names a level, or a member on the top level or below All.
bool NameResolver::StartsIn(HierarchyId hierarchy) const {
    const Hierarchy& stored = space_.Stored(hierarchy);
    const MemberRange top = space_.LevelMembers({hierarchy, 0});
    const MemberRange start = stored.HasAll() && stored.Levels().size() > 1
                                  ? MemberRange{top.first, space_.LevelMembers({hierarchy, 1}).last}
                                  : top;
    std::vector<MemberId> found;
    Find(hierarchy, start, 0, found);
    return !found.empty() || stored.FindLevel(parts_[0]->text).has_value();
}

std::optional<Resolved> NameResolver::InMeasures() {
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
    if (const auto calculated = space_.FindCalculated({measures, noMember}, parts_[part]->text, scope_)) {
        return part + 1 == parts_.size() ? std::optional<Resolved>(MemberRef{measures, *calculated})
                                         : std::nullopt;
    }
    const std::optional<std::size_t> measure = space_.GetCube().FindMeasure(parts_[part]->text);
    if (!measure || part + 1 < parts_.size()) {
        furthest_ += measure ? 1U : 0U;
        return std::nullopt;
    }
    return MemberRef{measures, static_cast<MemberId>(*measure)};
}

std::optional<Resolved> NameResolver::InHierarchy(HierarchyId hierarchy, std::size_t part) {
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
        parts_[part]->isKey ? std::nullopt : space_.Stored(hierarchy).FindLevel(parts_[part]->text);
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

MemberId NameResolver::MemberPath(HierarchyId hierarchy, MemberRange among, std::size_t part) {
    furthest_ = std::max(furthest_, part);
    std::vector<MemberId> found;
    Find(hierarchy, among, part, found);
    for (const MemberId member : found) {
        const MemberId descendant = Descend(hierarchy, member, part + 1);
        if (descendant != noMember) {
            return descendant;
        }
    }
    return noMember;
}

MemberId NameResolver::Descend(HierarchyId hierarchy, MemberId member, std::size_t part) {
    if (part == parts_.size()) {
        return member;
    }
    const MemberId calculated = CalculatedBelow({hierarchy, member}, part);
    return calculated != noMember ? calculated
                                  : MemberPath(hierarchy, space_.Children({hierarchy, member}), part);
}

MemberId NameResolver::CalculatedBelow(MemberRef parent, std::size_t part) const {
    const bool canBe = part + 1 == parts_.size() && !parts_[part]->isKey;
    return canBe ? space_.FindCalculated(parent, parts_[part]->text, scope_).value_or(noMember) : noMember;
}

void NameResolver::Find(HierarchyId hierarchy, MemberRange among, std::size_t part,
                        std::vector<MemberId>& found) const {
    const mdx::Node& name = *parts_[part];
    if (name.text.empty()) {
        return;
    }
    const Hierarchy& stored = space_.Stored(hierarchy);
    if (name.isKey) {
        stored.FindByKey(name.text, found);
    } else {
        stored.FindByName(name.text, found);
    }
    std::erase_if(found, [among](MemberId member) { return member < among.first || member >= among.last; });
    if (found.size() < 2) {
        return;
    }
    // Names may differ only in letter case; an exact match comes first.
    std::stable_sort(found.begin(), found.end(), [&](MemberId left, MemberId right) {
        const auto rank = [&](MemberId member) {
            const std::string_view spelling =
                name.isKey ? stored.MemberKey(member) : stored.MemberName(member);
            return std::pair(stored.LevelOf(member), spelling != name.text);
        };
        return rank(left) < rank(right);
    });
}

void NameResolver::Fail(bool wantsLevel) const {
    const std::size_t failed = std::min(furthest_, parts_.size() - 1);
    const mdx::Node& part = *parts_[failed];
    std::string before;
    for (std::size_t i = 0; i < failed; ++i) {
        before +=
            (i > 0 ? "." : "") + std::string(parts_[i]->isKey ? "&" : "") + BracketedName(parts_[i]->text);
    }
    const std::string name = (part.isKey ? "&" : "") + BracketedName(part.text);
    if (failed == 0) {
        mdx::RaiseAt(
            ErrorKind::UnknownName, statement_.source, part.range,
            fmt::format("the cube {} has no dimension {}", BracketedName(space_.GetCube().Name()), name));
    }
    const bool isMember = !wantsLevel || failed + 1 < parts_.size();
    mdx::RaiseAt(isMember ? ErrorKind::UnknownMember : ErrorKind::UnknownName, statement_.source, part.range,
                 fmt::format("{} has no {} {}", before, isMember ? "member" : "hierarchy or level", name));
}

} // namespace qel::engine
