#include "engine/storage/Format.h"
#include "engine/storage/MemberColumns.h"
#include "engine/storage/NameIndex.h"
#include "qel/engine/BracketedName.h"
#include "qel/engine/Cube.h"
#include "text/CaseFold.h"

namespace qel::engine {

namespace {

std::string_view TextAt(std::span<const std::uint32_t> offsets, std::string_view texts, MemberId member) {
    return texts.substr(offsets[member], offsets[member + 1] - offsets[member]);
}

} // namespace

std::string_view Hierarchy::MemberName(MemberId member) const {
    return TextAt(columns_->nameOffsets, columns_->names, member);
}

std::string_view Hierarchy::MemberCaption(MemberId member) const {
    return TextAt(columns_->captionOffsets, columns_->captions, member);
}

std::string_view Hierarchy::MemberKey(MemberId member) const {
    return TextAt(columns_->keyOffsets, columns_->keys, member);
}

std::string Hierarchy::MemberUniqueName(MemberId member) const {
    std::vector<MemberId> path;
    path.reserve(levels_.size());
    for (MemberId step = member; step != noMember; step = Parent(step)) {
        path.push_back(step);
    }
    constexpr std::size_t usualLength = 96;
    std::string text;
    text.reserve(usualLength);
    text += uniqueName_;
    for (auto step = path.rbegin(); step != path.rend(); ++step) {
        const bool isShared = (columns_->flags[*step] & format::nameIsShared) != 0;
        text += isShared ? ".&" : ".";
        AppendBracketed(isShared ? MemberKey(*step) : MemberName(*step), text);
    }
    return text;
}

MemberRange Hierarchy::Children(MemberId member) const {
    return {columns_->firstChild[member], columns_->firstChild[member + 1]};
}

std::size_t Hierarchy::LevelOf(MemberId member) const {
    std::size_t level = 0;
    while (member >= levels_[level].members.last) {
        ++level;
    }
    return level;
}

std::span<const KeyRange> Hierarchy::Ranges(MemberId member) const {
    const std::uint32_t first = columns_->rangeOffsets[member];
    return columns_->ranges.subspan(first, columns_->rangeOffsets[member + 1] - first);
}

void Hierarchy::FindByName(std::string_view name, std::vector<MemberId>& found) const {
    FindInNameIndex(
        columns_->nameSlots, name, [this](MemberId member) { return MemberName(member); },
        [&found](MemberId member) { found.push_back(member); });
}

void Hierarchy::FindByKey(std::string_view key, std::vector<MemberId>& found) const {
    FindInNameIndex(
        columns_->keySlots, key, [this](MemberId member) { return MemberKey(member); },
        [&found](MemberId member) { found.push_back(member); });
}

std::optional<std::size_t> Hierarchy::FindLevel(std::string_view name) const {
    for (std::size_t level = 0; level < levels_.size(); ++level) {
        if (EqualIgnoringCase(levels_[level].name, name)) {
            return level;
        }
    }
    return std::nullopt;
}

} // namespace qel::engine
