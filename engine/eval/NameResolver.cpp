#include "engine/eval/NameResolver.h"

#include "qel/engine/BracketedName.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

Resolved NameResolver::Resolve(const mdx::Node& path, bool wantsLevel) {
    TakeParts(path);
    if (std::optional<Resolved> resolved = search_.Find(parts_)) {
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
    const std::optional<Resolved> resolved = search_.Find(parts_);
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
    for (mdx::NodeId part = path.firstChild; part != mdx::noNode; part = statement_.At(part).next) {
        const mdx::Node& node = statement_.At(part);
        parts_.push_back({node.text, node.isKey, node.range});
    }
}

void NameResolver::Fail(bool wantsLevel) const {
    const std::size_t failed = std::min(search_.Furthest(), parts_.size() - 1);
    const NamePart& part = parts_[failed];
    std::string before;
    for (std::size_t i = 0; i < failed; ++i) {
        before +=
            (i > 0 ? "." : "") + std::string(parts_[i].isKey ? "&" : "") + BracketedName(parts_[i].text);
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
