#include "cube/ObsMemory.h"

namespace qel::ModSetCube {

namespace {

/// More names than a level has members are names that no member has.
constexpr std::size_t mostNames = 65536;

} // namespace

std::shared_ptr<const ObsMembers> ObsMemory::Find(std::string_view level, std::string_view member) const {
    const auto names = byLevel_.find(level);
    if (names == byLevel_.end()) {
        return nullptr;
    }
    const auto found = names->second.find(member);
    return found == names->second.end() ? nullptr : found->second;
}

void ObsMemory::Keep(std::string_view level, std::string_view member,
                     std::shared_ptr<const ObsMembers> found) {
    auto& names = byLevel_[std::string(level)];
    if (names.size() >= mostNames) {
        names.clear();
    }
    names.insert_or_assign(std::string(member), std::move(found));
}

} // namespace qel::ModSetCube
