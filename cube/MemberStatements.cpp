#include "cube/MemberStatements.h"

#include "text/CaseFold.h"

namespace qel::ModSetCube {

namespace {

constexpr const char* accountsOnColumns = "SELECT {[AccX].[AccX].[All] } on columns,";
constexpr const char* moneyTypeOnColumns = "SELECT {[MoneyType]} on columns,";
constexpr const char* everyFirma = " where( [Firma].[All]";
constexpr const char* obsNumbers = "[ActX].[OBSx].[All]";

std::string Step(const std::string& name) { return ".[" + name + "]"; }

/// Compared as it stands: "all" in other letters is a member's key.
std::string FirmaSuffix(const std::string& firma) {
    return firma.empty() || firma == "All" ? "" : Step(firma);
}

std::string SubMemberSuffix(const std::string& member) {
    static const std::string none(1, '\0');
    return member == none ? "" : Step(member);
}

/// "…, [ActX].[OBSx].[All].[number])": closes the slicer that everyFirma opens.
std::string FirmaAndObsSlicer(const std::string& firma, const std::string& obsNumber) {
    return everyFirma + FirmaSuffix(firma) + ", " + obsNumbers + Step(obsNumber) + ")";
}

std::string AccountsStatement(const MemberListing& listing) {
    return std::string(accountsOnColumns) +
           "  non empty{  "
           "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames]."
           "[AccountName].members)}on rows FROM " +
           listing.cubeName + FirmaAndObsSlicer(listing.argumentA, listing.argumentB);
}

std::string ObsLevelStatement(const MemberListing& listing) {
    return std::string(moneyTypeOnColumns) + " non empty{[OBS]" + Step(listing.argumentB) +
           ".members }on rows FROM " + listing.cubeName + " WHERE " + obsNumbers + Step(listing.argumentA) +
           SubMemberSuffix(listing.obsSubMember);
}

std::string CostCentersStatement(const MemberListing& listing) {
    std::string text = std::string(moneyTypeOnColumns) +
                       " non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM " + listing.cubeName +
                       " WHERE " + obsNumbers;
    if (!listing.argumentA.empty()) {
        text += Step(listing.argumentA) + SubMemberSuffix(listing.obsSubMember);
    }
    return text;
}

std::string ActivitiesStatement(const MemberListing& listing) {
    return std::string(moneyTypeOnColumns) +
           " non empty{crossjoin ( [Activities].[ActivityCodes].[ActivityCode].members , [Activities]."
           "[ActivityNames].[ActivityName].members)}on rows FROM " +
           listing.cubeName + " WHERE " + obsNumbers + Step(listing.argumentA) +
           SubMemberSuffix(listing.obsSubMember);
}

/// Every member of one level, with data or without. `opening` is the set's brace and hierarchy.
std::string SummaryLevelStatement(const MemberListing& listing, const char* opening) {
    return accountsOnColumns + (opening + Step(listing.summaryLevel)) + ".Allmembers }on rows FROM " +
           listing.cubeName + FirmaAndObsSlicer(listing.argumentA, listing.argumentB) +
           SubMemberSuffix(listing.obsSubMember);
}

/// Up to the slicer.
std::string SummaryGroupsSelection(const MemberListing& listing) {
    return std::string(accountsOnColumns) + "  non empty{  crossjoin( [SuperSumery].[SumeryCode]" +
           Step(listing.summaryLevel) + ".members, [SuperSumery].[SumeryName]" +
           Step(listing.summaryLevel + "Name") + ".members)}on rows FROM " + listing.cubeName;
}

} // namespace

bool NamesObsLevel(const std::string& name) {
    constexpr std::string_view prefix = "level";
    return EqualIgnoringCase(std::string_view(name).substr(0, prefix.size()), prefix);
}

std::optional<std::string> ComposeCellsetStatement(const MemberListing& listing) {
    switch (listing.kind) {
    case CellsetKind::Accounts:
        if (listing.accountsMode != 1) {
            return std::nullopt;
        }
        return AccountsStatement(listing);
    case CellsetKind::ObsOrCostCenters:
        return NamesObsLevel(listing.argumentB) ? ObsLevelStatement(listing) : CostCentersStatement(listing);
    case CellsetKind::Activities:
        return ActivitiesStatement(listing);
    case CellsetKind::SummaryCodes:
        return SummaryLevelStatement(listing, "  {  [SuperSumery].[SumeryCode]");
    case CellsetKind::SummaryNames:
        return SummaryLevelStatement(listing, "  {[SuperSumery].[SumeryName]");
    case CellsetKind::SummaryGroups:
        // The slicer is closed before the firm is appended, so a firm makes the statement invalid.
        return SummaryGroupsSelection(listing) + everyFirma + ")" + FirmaSuffix(listing.argumentA);
    default:
        return std::nullopt;
    }
}

std::optional<std::string> ComposeRecordsetStatement(const MemberListing& listing) {
    switch (listing.kind) {
    case CellsetKind::Accounts:
    case CellsetKind::ObsOrCostCenters:
    case CellsetKind::Activities:
        return ComposeCellsetStatement(listing);
    case RecordsetKind::SummaryGroups:
        return SummaryGroupsSelection(listing) + FirmaAndObsSlicer(listing.argumentA, listing.argumentB);
    case RecordsetKind::AccountCodes:
        return std::string(accountsOnColumns) +
               "  non empty{  [Accounts].[AccountCodes].[AccountCode].members}on rows FROM " +
               listing.cubeName + FirmaAndObsSlicer(listing.argumentA, listing.argumentB);
    default:
        return std::nullopt;
    }
}

std::string ComposeObsLevelsStatement(const std::string& cubeName, const std::string& obsNumber,
                                      const std::string& obsMember) {
    return "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  [" +
           cubeName + "]Where ([Actx].[OBSx].[All]" + Step(obsNumber) + Step(obsMember) + ")";
}

} // namespace qel::ModSetCube
