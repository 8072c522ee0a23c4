#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qel::ModSetCube {

/// Which members a listing asks for, as its caller gives it. Nothing is quoted or escaped.
struct MemberListing { // NOLINT(clang-analyzer-optin.performance.Padding)
    std::string cubeName;
    std::int16_t kind = 0;
    std::string argumentA = {};                      ///< the Firma member; for kinds 2 and 3 the OBS number
    std::string argumentB = {};                      ///< the OBS number; for kind 2 the OBS level
    std::string obsSubMember = std::string(1, '\0'); ///< the text of one zero character stands for none
    std::string summaryLevel = {};
    std::int16_t accountsMode = 0; ///< kind 1 is composed when it is 1 alone
};

/// The kinds of ListMembersCellset.
namespace CellsetKind {
inline constexpr std::int16_t Accounts = 1;
inline constexpr std::int16_t ObsOrCostCenters = 2;
inline constexpr std::int16_t Activities = 3;
inline constexpr std::int16_t SummaryCodes = 4;
inline constexpr std::int16_t SummaryNames = 5;
inline constexpr std::int16_t SummaryGroups = 6;
} // namespace CellsetKind

/// The kinds of OpenMemberRecordset; 1 to 3 are those of ListMembersCellset.
namespace RecordsetKind {
inline constexpr std::int16_t SummaryGroups = 4;
inline constexpr std::int16_t AccountCodes = 5;
} // namespace RecordsetKind

/// True for a name that begins with "level", in any letter case. A listing of OBS members whose level is
/// called otherwise lists cost centres.
bool NamesObsLevel(const std::string& name);

/// The statements exactly as they are sent; none for a kind that has none.
std::optional<std::string> ComposeCellsetStatement(const MemberListing& listing);
std::optional<std::string> ComposeRecordsetStatement(const MemberListing& listing);

/// The statement of CountObsLevels.
std::string ComposeObsLevelsStatement(const std::string& cubeName, const std::string& obsNumber,
                                      const std::string& obsMember);

} // namespace qel::ModSetCube
