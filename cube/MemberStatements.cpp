#include "cube/MemberStatements.h"

#include "text/CaseFold.h"

namespace qel::ModSetCube {

namespace {

constexpr const char* accountsOnColumns = "SELECT {[AccX].[AccX].[All] } on columns,";
constexpr const char* moneyTypeOnColumns = "SELECT {[MoneyType]} on columns,";
constexpr const char* everyFirma = " where( [Firma].[All]";
constexpr const char* obsNumbers = "[ActX].[OBSx].[All]";

std::string Step(const std::string& name) { return ".[" + name + "]"; }

std::string StepIfAny(const std::optional<std::string>& name) { return name ? Step(*name) : std::string(); }

/// Compared as it stands: "all" in other letters is a member's key.
std::string FirmaSuffix(const std::string& firma) {
    return firma.empty() || firma == "All" ? "" : Step(firma);
}

/// "…, [ActX].[OBSx].[All].[number])": closes the slicer that everyFirma opens.
std::string FirmaAndObsSlicer(const std::string& firma, const std::string& obsNumber) {
    return everyFirma + FirmaSuffix(firma) + ", " + obsNumbers + Step(obsNumber) + ")";
}

/// Composes the statement of each kind of list.
struct Composer {
    const std::string& cubeName;

    std::string operator()(const AccountsListing& list) const {
        return std::string(accountsOnColumns) +
               "  non empty{  "
               "crossjoin([Accounts].[AccountCodes].[AccountCode].members,[Accounts].[AccountNames]."
               "[AccountName].members)}on rows FROM " +
               cubeName + FirmaAndObsSlicer(list.firma, list.obsNumber);
    }

    std::string operator()(const AccountCodesListing& list) const {
        return std::string(accountsOnColumns) +
               "  non empty{  [Accounts].[AccountCodes].[AccountCode].members}on rows FROM " + cubeName +
               FirmaAndObsSlicer(list.firma, list.obsNumber);
    }

    std::string operator()(const ObsListing& list) const {
        if (!NamesObsLevel(list.obsLevel)) {
            return CostCenters(list);
        }
        return std::string(moneyTypeOnColumns) + " non empty{[OBS]" + Step(list.obsLevel) +
               ".members }on rows FROM " + cubeName + " WHERE " + obsNumbers + Step(list.obsNumber) +
               StepIfAny(list.obsSubMember);
    }

    std::string operator()(const ActivitiesListing& list) const {
        return std::string(moneyTypeOnColumns) +
               " non empty{crossjoin ( [Activities].[ActivityCodes].[ActivityCode].members , [Activities]."
               "[ActivityNames].[ActivityName].members)}on rows FROM " +
               cubeName + " WHERE " + obsNumbers + Step(list.obsNumber) + StepIfAny(list.obsSubMember);
    }

    /// With data or without. The sub-member follows the closed slicer, which makes the statement invalid.
    std::string operator()(const SummaryLevelListing& list) const {
        const char* opening = list.by == SummaryLevelListing::By::Code ? "  {  [SuperSumery].[SumeryCode]"
                                                                       : "  {[SuperSumery].[SumeryName]";
        return accountsOnColumns + (opening + Step(list.summaryLevel)) + ".Allmembers }on rows FROM " +
               cubeName + FirmaAndObsSlicer(list.firma, list.obsNumber) + StepIfAny(list.obsSubMember);
    }

    std::string operator()(const SummaryGroupsListing& list) const {
        return SummaryGroups(list.summaryLevel) + everyFirma + ")" + FirmaSuffix(list.firma);
    }

    std::string operator()(const SummaryGroupsOfObsListing& list) const {
        return SummaryGroups(list.summaryLevel) + FirmaAndObsSlicer(list.firma, list.obsNumber);
    }

private:
    std::string CostCenters(const ObsListing& list) const {
        std::string text = std::string(moneyTypeOnColumns) +
                           " non empty{ [Cost_Centers].[Cost_Center].members }on rows FROM " + cubeName +
                           " WHERE " + obsNumbers;
        if (!list.obsNumber.empty()) {
            text += Step(list.obsNumber) + StepIfAny(list.obsSubMember);
        }
        return text;
    }

    /// Up to the slicer.
    std::string SummaryGroups(const std::string& level) const {
        return std::string(accountsOnColumns) + "  non empty{  crossjoin( [SuperSumery].[SumeryCode]" +
               Step(level) + ".members, [SuperSumery].[SumeryName]" + Step(level + "Name") +
               ".members)}on rows FROM " + cubeName;
    }
};

} // namespace

bool NamesObsLevel(const std::string& name) {
    constexpr std::string_view prefix = "level";
    return EqualIgnoringCase(std::string_view(name).substr(0, prefix.size()), prefix);
}

std::string ComposeListing(const MemberListing& listing) {
    return std::visit(Composer{listing.cubeName}, listing.members);
}

std::string ComposeObsLevelsStatement(const std::string& cubeName, const std::string& obsNumber,
                                      const std::string& obsMember) {
    return "SELECT  NON Empty {[Measures] } ON COLUMNS, NON Empty { [OBS].Members } ON ROWS  From  [" +
           cubeName + "]Where ([Actx].[OBSx].[All]" + Step(obsNumber) + Step(obsMember) + ")";
}

} // namespace qel::ModSetCube
