#include "cube/ObsSel.h"

#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"
#include "text/Text.h"

namespace qel::ModSetCube {

namespace {

/// Members of a level are counted in 16 bits.
constexpr std::int32_t mostMembers = 32768;

} // namespace

std::string BuildObsSel(const ThreadState& thread, DataAccess& dataAccess, const std::string& level,
                        const std::string& member) {
    const auto catalog = dataAccess.CreateCatalog();
    catalog->SetActiveConnection(RequireConnection(thread).ConnectionString());
    const auto hierarchy = catalog->CubeAt(0)->DimensionNamed("OBS")->HierarchyAt(0);
    const auto obsLevel = hierarchy->LevelNamed(level);
    if (obsLevel->MemberCount() > mostMembers) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    std::string text;
    for (const auto& found : obsLevel->MembersNamed(member)) {
        if (text.empty()) {
            text = "\r\n Member [Obs].Sel as ' SUM ({ ";
        }
        text.append(" , ").append(ReplaceAll(found->UniqueName(), "'", "''"));
    }
    return text + " }) ' ";
}

} // namespace qel::ModSetCube
