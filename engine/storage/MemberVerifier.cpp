#include "engine/storage/MemberVerifier.h"

#include "engine/storage/FactTable.h"
#include "engine/storage/FileImage.h"
#include "engine/storage/NameIndex.h"
#include "engine/storage/Ranges.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace qel::engine {

namespace {

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

/// The names and captions of everything but members.
bool AreNamesUtf8(const Cube& cube) {
    std::vector<std::string_view> texts = {cube.Name(), cube.Caption()};
    for (const Dimension& dimension : cube.Dimensions()) {
        texts.insert(texts.end(), {dimension.name, dimension.caption});
    }
    for (const Hierarchy& hierarchy : cube.Hierarchies()) {
        texts.insert(texts.end(), {hierarchy.Name(), hierarchy.Caption()});
        for (const Level& level : hierarchy.Levels()) {
            texts.emplace_back(level.name);
        }
    }
    for (const MeasureColumn& measure : cube.Facts().Measures()) {
        texts.insert(texts.end(), {measure.name, measure.caption});
    }
    for (const KeyColumn& column : cube.Facts().KeyColumns()) {
        texts.emplace_back(column.name);
    }
    return std::all_of(texts.begin(), texts.end(), IsValidUtf8);
}

std::string FaultOf(const Hierarchy& hierarchy, MemberId member) {
    if (!IsValidUtf8(hierarchy.MemberName(member)) || !IsValidUtf8(hierarchy.MemberCaption(member)) ||
        !IsValidUtf8(hierarchy.MemberKey(member))) {
        return "a text is not UTF-8";
    }
    const MemberId parent = hierarchy.Parent(member);
    if (parent != noMember && !Covers(hierarchy.Ranges(parent), hierarchy.Ranges(member))) {
        return "its parent lacks some of its keys";
    }
    return {};
}

/// Whether the members of a hierarchy are found by their names and keys.
bool AreFound(const FileImage& image, std::uint32_t cube, const Hierarchy& hierarchy) {
    const auto slots = [&](format::SectionKind kind) {
        const MappedSection section = image.Section(
            {static_cast<std::uint32_t>(kind), cube, static_cast<std::uint32_t>(hierarchy.Index()), 0});
        const std::byte* const bytes = section.Bytes(0, section.Size());
        return std::span(reinterpret_cast<const std::uint32_t*>(bytes),
                         static_cast<std::size_t>(section.Size() / sizeof(std::uint32_t)));
    };
    return IsWholeNameIndex(slots(format::SectionKind::MemberNameSlots), hierarchy.MemberCount(),
                            [&](MemberId member) { return hierarchy.MemberName(member); }) &&
           IsWholeNameIndex(slots(format::SectionKind::MemberKeySlots), hierarchy.MemberCount(),
                            [&](MemberId member) { return hierarchy.MemberKey(member); });
}

} // namespace

std::string FindMemberFault(const Cube& cube, const FileImage& image, std::uint32_t cubeNumber) {
    if (!AreNamesUtf8(cube)) {
        return fmt::format("cube {}: a name is not UTF-8", cube.Name());
    }
    for (const Hierarchy& hierarchy : cube.Hierarchies()) {
        for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
            const std::string fault = FaultOf(hierarchy, member);
            if (!fault.empty()) {
                return fmt::format("cube {}, {}, member {}: {}", cube.Name(), hierarchy.UniqueName(), member,
                                   fault);
            }
        }
        if (!AreFound(image, cubeNumber, hierarchy)) {
            return fmt::format("cube {}, {}: the lookup tables do not find every member", cube.Name(),
                               hierarchy.UniqueName());
        }
    }
    return {};
}

} // namespace qel::engine
