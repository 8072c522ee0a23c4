#include "cube/ObsMembers.h"

#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"

namespace qel::ModSetCube {

namespace {

/// Members of a level are counted in 16 bits.
constexpr std::int32_t mostMembers = 32768;

ObsMembers LookUp(const ThreadState& thread, const std::string& level, const std::string& member) {
    const auto catalog = OpenCatalog(thread);
    const auto obsLevel = catalog->CubeAt(0)->DimensionNamed("OBS")->HierarchyAt(0)->LevelNamed(level);
    if (obsLevel->MemberCount() > mostMembers) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    ObsMembers uniqueNames;
    for (const auto& found : obsLevel->MembersNamed(member)) {
        uniqueNames.push_back(found->UniqueName());
    }
    return uniqueNames;
}

} // namespace

std::shared_ptr<const ObsMembers> FindObsMembers(ThreadState& thread, const std::string& level,
                                                 const std::string& member) {
    auto members = thread.obsMembers.Find(level, member);
    if (!members) {
        members = std::make_shared<const ObsMembers>(LookUp(thread, level, member));
        thread.obsMembers.Keep(level, member, members);
    }
    return members;
}

} // namespace qel::ModSetCube
