#include "wizard/ActivitySelector.h"

#include "support/ModError.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"

namespace qel {

namespace {

using namespace FunctionForm;

constexpr std::int32_t activityLabel = 1489;

} // namespace

ActivitySelector::ActivitySelector(const WizardContext& context, Dialog& dialog)
    : context_(context), dialog_(dialog), activities_(dialog, ComActMember) {}

void ActivitySelector::Clear() {
    activities_.Clear();
    dialog_.SetChecked(ChekAct, false);
}

void ActivitySelector::Enable(bool isEnabled) {
    isEnabled_ = isEnabled;
    dialog_.SetEnabled(ChekAct, isEnabled);
    activities_.Enable(isEnabled && dialog_.IsChecked(ChekAct));
}

void ActivitySelector::BindList(std::shared_ptr<const LoadedCube> cube, const ListScope& scope) {
    const auto before = dialog_.IsChecked(ChekAct) ? activities_.Chosen() : std::nullopt;
    activities_.Bind([context = &context_, cube = std::move(cube), scope] {
        try {
            return ListRows(
                *context, cube->name.cubeFile,
                {cube->name.cubeName,
                 ModSetCube::ActivitiesListing{
                     .obsNumber = InBrackets(scope.obsName),
                     .obsSubMember = scope.obsNumber.empty() ? std::nullopt
                                                             : std::optional(InBrackets(scope.obsNumber))}});
        } catch (...) {
            ModError::ReportError(context->Messages(), ModError::CurrentError(), "", "", "");
            return std::vector<MemberRow>();
        }
    });
    if (before) {
        activities_.Choose(before->code);
    }
}

void ActivitySelector::Read(Selection& selection) const {
    const auto activity = dialog_.IsChecked(ChekAct) ? activities_.Chosen() : std::nullopt;
    selection.activity = activity ? activity->code : allMembers;
}

std::optional<std::int32_t> ActivitySelector::Missing() const {
    if (dialog_.IsChecked(ChekAct) && !activities_.Chosen()) {
        return OwnTextNumber::NoActivity;
    }
    return std::nullopt;
}

void ActivitySelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    if (!selection.activity.empty() && selection.activity != allMembers) {
        const bool isThere = activities_.Choose(selection.activity);
        dialog_.SetChecked(ChekAct, isThere);
        if (!isThere) {
            dropped.push_back(DroppedChoice(context_, activityLabel, selection.activity));
        }
    }
    Enable(isEnabled_);
}

} // namespace qel
