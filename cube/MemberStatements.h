#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace qel::ModSetCube {

// Which members a listing asks for, one struct per kind of list. Nothing is quoted or escaped. A firm that is
// empty or "All" restricts nothing; an OBS sub-member stands below the OBS number.

/// Accounts, code by name.
struct AccountsListing {
    std::string firma, obsNumber;
};

/// Account codes alone.
struct AccountCodesListing {
    std::string firma, obsNumber;
};

/// Members of a level of [OBS]. When the level's name is that of none (see NamesObsLevel), cost centres:
/// those under the OBS number, or all of them when it is empty.
struct ObsListing {
    std::string obsNumber, obsLevel;
    std::optional<std::string> obsSubMember = std::nullopt;
};

/// Activities, code by name.
struct ActivitiesListing {
    std::string obsNumber;
    std::optional<std::string> obsSubMember = std::nullopt;
};

/// Every summary group of a level by its code (a level of [SumeryCode]) or its name (of [SumeryName]).
struct SummaryLevelListing {
    enum class By : std::uint8_t { Code, Name };

    By by = By::Code;
    std::string summaryLevel;
    std::string firma, obsNumber;
    std::optional<std::string> obsSubMember = std::nullopt;
};

/// Summary groups with data, code by name. With a firm the statement is invalid: its slicer is closed before
/// the firm.
struct SummaryGroupsListing {
    std::string summaryLevel;
    std::string firma = {};
};

/// The same under an OBS number, for recordsets.
struct SummaryGroupsOfObsListing {
    std::string summaryLevel;
    std::string firma, obsNumber;
};

using ListedMembers = std::variant<AccountsListing, AccountCodesListing, ObsListing, ActivitiesListing,
                                   SummaryLevelListing, SummaryGroupsListing, SummaryGroupsOfObsListing>;

/// A list of members of one cube.
struct MemberListing {
    std::string cubeName;
    ListedMembers members;
};

/// True for a name that begins with "level", in any letter case.
bool NamesObsLevel(const std::string& name);

/// The statement exactly as it is sent.
std::string ComposeListing(const MemberListing& listing);

/// The statement of CountObsLevels.
std::string ComposeObsLevelsStatement(const std::string& cubeName, const std::string& obsNumber,
                                      const std::string& obsMember);

} // namespace qel::ModSetCube
