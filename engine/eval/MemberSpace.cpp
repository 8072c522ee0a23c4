#include "engine/eval/MemberSpace.h"

#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

namespace qel::engine {

std::string MemberSpace::HierarchyUniqueName(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? "[Measures]" : Stored(hierarchy).UniqueName();
}

std::string MemberSpace::HierarchyName(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? "Measures" : Stored(hierarchy).Name();
}

std::string MemberSpace::DimensionName(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? "Measures" : cube_.Dimensions()[Stored(hierarchy).DimensionIndex()].name;
}

MemberId MemberSpace::DefaultMember(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? static_cast<MemberId>(cube_.DefaultMeasure())
                                 : Stored(hierarchy).DefaultMember();
}

std::size_t MemberSpace::LevelCount(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? 1 : Stored(hierarchy).Levels().size();
}

std::string_view MemberSpace::LevelName(LevelRef level) const {
    return IsMeasures(level.hierarchy) ? std::string_view("MeasuresLevel")
                                       : std::string_view(Stored(level.hierarchy).Levels()[level.level].name);
}

MemberRange MemberSpace::LevelMembers(LevelRef level) const {
    return IsMeasures(level.hierarchy) ? AllMembers(level.hierarchy)
                                       : Stored(level.hierarchy).Levels()[level.level].members;
}

MemberRange MemberSpace::AllMembers(HierarchyId hierarchy) const {
    return {0, IsMeasures(hierarchy) ? static_cast<MemberId>(cube_.Facts().Measures().size())
                                     : Stored(hierarchy).MemberCount()};
}

std::size_t MemberSpace::LevelOf(MemberRef member) const {
    if (IsCalculated(member.id)) {
        return CalculatedAt(member.id).level;
    }
    return IsMeasures(member.hierarchy) ? 0 : Stored(member.hierarchy).LevelOf(member.id);
}

MemberId MemberSpace::Parent(MemberRef member) const {
    if (IsCalculated(member.id)) {
        return CalculatedAt(member.id).parent;
    }
    return IsMeasures(member.hierarchy) ? noMember : Stored(member.hierarchy).Parent(member.id);
}

MemberRange MemberSpace::Children(MemberRef member) const {
    return IsMeasures(member.hierarchy) || IsCalculated(member.id)
               ? MemberRange{}
               : Stored(member.hierarchy).Children(member.id);
}

MemberRange MemberSpace::Siblings(MemberRef member) const {
    const MemberId parent = Parent(member);
    return parent == noMember ? LevelMembers({member.hierarchy, 0}) : Children({member.hierarchy, parent});
}

MemberRange MemberSpace::DescendantsAt(MemberRef member, std::size_t level) const {
    std::size_t at = LevelOf(member);
    if (at > level || level >= LevelCount(member.hierarchy)) {
        return {};
    }
    MemberRange range{member.id, member.id + 1};
    // Children of consecutive members are consecutive, so the descendants on each level are one range.
    for (; at < level && range.Count() > 0; ++at) {
        range = {Children({member.hierarchy, range.first}).first,
                 Children({member.hierarchy, range.last - 1}).last};
    }
    return range;
}

MemberId MemberSpace::AncestorAt(MemberRef member, std::size_t level) const {
    while (member.id != noMember && LevelOf(member) > level) {
        member.id = Parent(member);
    }
    return member.id != noMember && LevelOf(member) == level ? member.id : noMember;
}

MemberId MemberSpace::Shifted(MemberRef member, std::int64_t steps) const {
    if (member.id == noMember || IsCalculated(member.id)) {
        return noMember;
    }
    const MemberRange range = LevelMembers({member.hierarchy, LevelOf(member)});
    const std::int64_t shifted = std::int64_t{member.id} + steps;
    return shifted < range.first || shifted >= range.last ? noMember : static_cast<MemberId>(shifted);
}

std::string_view MemberSpace::Name(MemberRef member) const {
    if (IsCalculated(member.id)) {
        return CalculatedAt(member.id).name;
    }
    return IsMeasures(member.hierarchy) ? std::string_view(cube_.Facts().Measures()[member.id].name)
                                        : Stored(member.hierarchy).MemberName(member.id);
}

std::string_view MemberSpace::Caption(MemberRef member) const {
    if (IsCalculated(member.id)) {
        return CalculatedAt(member.id).name;
    }
    return IsMeasures(member.hierarchy) ? std::string_view(cube_.Facts().Measures()[member.id].caption)
                                        : Stored(member.hierarchy).MemberCaption(member.id);
}

std::string_view MemberSpace::Key(MemberRef member) const {
    return IsMeasures(member.hierarchy) || IsCalculated(member.id)
               ? Name(member)
               : Stored(member.hierarchy).MemberKey(member.id);
}

std::string MemberSpace::UniqueName(MemberRef member) const {
    if (!IsMeasures(member.hierarchy) && !IsCalculated(member.id)) {
        return Stored(member.hierarchy).MemberUniqueName(member.id);
    }
    const MemberId parent = Parent(member);
    return (parent == noMember ? HierarchyUniqueName(member.hierarchy)
                               : UniqueName({member.hierarchy, parent})) +
           "." + BracketedName(Name(member));
}

std::optional<std::size_t> MemberSpace::KeyColumn(HierarchyId hierarchy) const {
    return IsMeasures(hierarchy) ? std::nullopt : Stored(hierarchy).KeyColumn();
}

bool MemberSpace::AddCalculated(MemberRef parent, std::string_view name, Scope scope) {
    SameName& same = calculatedBelow_[{parent.hierarchy, parent.id}][FoldCase(name)];
    MemberId& own = scope == Scope::Cube ? same.ofCube : same.ofStatement;
    if (own != noMember) {
        return false;
    }
    own = firstCalculated + static_cast<MemberId>(calculated_.size());
    if (scope == Scope::Statement && same.ofCube != noMember) {
        calculated_[same.ofCube - firstCalculated].isHidden = true;
    }
    const std::size_t level = parent.id == noMember ? 0 : LevelOf(parent) + 1;
    calculated_.push_back({parent.hierarchy, parent.id, level, std::string(name)});
    return true;
}

std::optional<MemberId> MemberSpace::FindCalculated(MemberRef parent, std::string_view name,
                                                    Scope scope) const {
    const auto siblings = calculatedBelow_.find({parent.hierarchy, parent.id});
    if (siblings == calculatedBelow_.end()) {
        return std::nullopt;
    }
    const auto found = siblings->second.find(FoldCase(name));
    if (found == siblings->second.end()) {
        return std::nullopt;
    }
    const SameName& same = found->second;
    const bool isOwn = scope == Scope::Statement && same.ofStatement != noMember;
    const MemberId member = isOwn ? same.ofStatement : same.ofCube;
    return member == noMember ? std::nullopt : std::optional(member);
}

} // namespace qel::engine
