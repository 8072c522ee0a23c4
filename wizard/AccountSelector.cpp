#include "wizard/AccountSelector.h"

#include "support/ModError.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"

namespace qel {

namespace {

using namespace FunctionForm;
using namespace ModSetCube;

constexpr std::int32_t typeLabel = 1483, groupLabel = 1484, accountLabel = 1493;

} // namespace

AccountSelector::AccountSelector(const WizardContext& context, Dialog& dialog)
    : context_(context), dialog_(dialog), levels_(dialog, ComAccX), members_(dialog, ComMember),
      accounts_(dialog, ListAccount) {}

void AccountSelector::Fill(std::shared_ptr<const LoadedCube> cube) {
    Clear();
    cube_ = std::move(cube);
    std::vector<MemberChoice> levels = {{allMembers, OwnText(context_, OwnTextNumber::Everything)}};
    const auto hierarchy = cube_->HierarchyNamed("SuperSumery", "SumeryCode");
    for (std::int32_t i = 1; hierarchy && i < hierarchy->LevelCount(); ++i) {
        const auto level = hierarchy->LevelAt(i);
        levels.push_back({level->Name(), CaptionWithKey(level->Name(), level->Caption())});
    }
    levels_.Fill(std::move(levels));
    FillMembers();
}

void AccountSelector::Clear() {
    cube_.reset();
    levels_.Clear();
    members_.Clear();
    accounts_.Clear();
    dialog_.SetChecked(CheckAcc, false);
}

void AccountSelector::Enable(bool isEnabled) {
    isEnabled_ = isEnabled;
    levels_.Enable(isEnabled);
    members_.Enable(isEnabled && Level() != allMembers);
    dialog_.SetEnabled(CheckAcc, isEnabled);
    accounts_.Enable(isEnabled && dialog_.IsChecked(CheckAcc));
}

void AccountSelector::BindList(const ListScope& scope) {
    if (!cube_) {
        return;
    }
    const auto before = dialog_.IsChecked(CheckAcc) ? accounts_.Chosen() : std::nullopt;
    accounts_.Bind([context = &context_, cube = cube_, scope] {
        try {
            return ListRows(*context, cube->name.cubeFile,
                            {cube->name.cubeName, AccountsListing{.firma = InBrackets(scope.firma),
                                                                  .obsNumber = InBrackets(scope.obsName)}});
        } catch (...) {
            ModError::ReportError(context->Messages(), ModError::CurrentError(), "", "", "");
            return std::vector<MemberRow>();
        }
    });
    if (before) {
        accounts_.Choose(before->code);
    }
}

void AccountSelector::OnChange(std::string_view control) {
    if (cube_ && levels_.Is(control)) {
        FillMembers();
    }
    Enable(isEnabled_);
}

void AccountSelector::FillMembers() {
    members_.Clear(); // a listing that fails leaves nothing of the level before
    const std::string level = Level();
    if (level == allMembers) {
        return;
    }
    members_.Fill(ListChoices(context_, cube_->name.cubeFile,
                              {cube_->name.cubeName, SummaryGroupsListing{.summaryLevel = level}}));
}

void AccountSelector::Read(Selection& selection) const {
    selection.summaryLevel = Level();
    selection.summaryMember = selection.summaryLevel == allMembers ? allMembers : members_.Key().value_or("");
    const auto account = dialog_.IsChecked(CheckAcc) ? accounts_.Chosen() : std::nullopt;
    selection.account = account ? account->code : allMembers;
}

std::optional<std::int32_t> AccountSelector::Missing() const {
    if (Level() != allMembers && !members_.Key()) {
        return OwnTextNumber::NoMember;
    }
    if (dialog_.IsChecked(CheckAcc) && !accounts_.Chosen()) {
        return OwnTextNumber::NoAccount;
    }
    return std::nullopt;
}

void AccountSelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    const auto drop = [&](std::int32_t label, const std::string& key) {
        dropped.push_back(DroppedChoice(context_, label, key));
    };
    if (levels_.Choose(selection.summaryLevel)) {
        FillMembers();
        if (selection.summaryLevel != allMembers && !members_.Choose(selection.summaryMember)) {
            drop(groupLabel, selection.summaryMember);
        }
    } else if (!selection.summaryLevel.empty()) {
        drop(typeLabel, selection.summaryLevel);
    }
    if (!selection.account.empty() && selection.account != allMembers) {
        const bool isThere = accounts_.Choose(selection.account);
        dialog_.SetChecked(CheckAcc, isThere);
        if (!isThere) {
            drop(accountLabel, selection.account);
        }
    }
    Enable(isEnabled_);
}

} // namespace qel
