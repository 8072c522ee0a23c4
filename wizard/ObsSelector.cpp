#include "wizard/ObsSelector.h"

#include "cube/MemberListing.h"
#include "text/CaseFold.h"
#include "wizard/FunctionForm.h"
#include "wizard/OwnText.h"

#include <algorithm>

namespace qel {

namespace {

using namespace FunctionForm;

constexpr std::int32_t nameLevel = 1, numberLevel = 2; // below the level of All
constexpr const char* obsLevels = "OBS";
constexpr std::string_view listedLevelPrefix = "level"; // listings recognise the levels of [OBS] by it
/// A spreadsheet's arrays start at 1, and the value function takes no element above 5.
constexpr std::size_t mostMembers = 5;
constexpr std::int32_t obsLabel = 1486, levelLabel = 1487, dataLabel = 1488;

} // namespace

ObsSelector::ObsSelector(const WizardContext& context, Dialog& dialog)
    : context_(context), dialog_(dialog), names_(dialog, ComOBSNum), numbers_(dialog, ComObsX),
      kinds_(dialog, ComLevel), levels_(dialog, ComLevelObs), members_(dialog, ComOBSData),
      chosen_(dialog, ListObs) {}

void ObsSelector::Fill(std::shared_ptr<const LoadedCube> cube) {
    Clear();
    cube_ = std::move(cube);
    const auto hierarchy = cube_->FirstHierarchy("ActX");
    if (hierarchy && hierarchy->LevelCount() > nameLevel) {
        names_.Fill(ChoicesOf(*hierarchy->LevelAt(nameLevel)));
    }
    kinds_.Fill({{allMembers, OwnText(context_, OwnTextNumber::Everything)},
                 {costCentersLevel, OwnText(context_, OwnTextNumber::CostCenters)},
                 {obsLevels, OwnText(context_, OwnTextNumber::ObsLevels)}});
    FillNumbers();
}

void ObsSelector::Clear() {
    cube_.reset();
    for (ChoiceBox* box : {&names_, &numbers_, &kinds_, &levels_, &members_, &chosen_}) {
        box->Clear();
    }
    TellWhichCounts();
}

void ObsSelector::Enable(bool isEnabled) {
    isEnabled_ = isEnabled;
    for (ChoiceBox* box : {&names_, &numbers_, &kinds_}) {
        box->Enable(isEnabled);
    }
    const bool hasMembers = isEnabled && kinds_.Key().value_or(allMembers) != allMembers;
    levels_.Enable(isEnabled && UsesObsLevels());
    members_.Enable(hasMembers);
    chosen_.Enable(hasMembers);
    dialog_.SetEnabled(ComAddOBS, hasMembers);
    dialog_.SetEnabled(ComRemoveObs, hasMembers);
}

void ObsSelector::OnChange(std::string_view control) {
    if (!cube_) {
        return;
    }
    if (names_.Is(control)) {
        FillNumbers();
    } else if (numbers_.Is(control)) {
        FillLevels();
    } else if (kinds_.Is(control) || levels_.Is(control)) {
        ShowChosen({});
        FillMembers();
    }
    Enable(isEnabled_);
}

void ObsSelector::FillNumbers() {
    std::vector<MemberChoice> choices;
    const auto hierarchy = cube_->FirstHierarchy("ActX");
    if (hierarchy && hierarchy->LevelCount() > numberLevel) {
        const auto level = hierarchy->LevelAt(numberLevel);
        const std::string name = Name();
        for (std::int32_t i = 0; i < level->MemberCount(); ++i) {
            const auto member = level->MemberAt(i);
            const auto parent = member->Parent();
            if (parent && parent->Name() == name) {
                choices.push_back(ChoiceOf(*member));
            }
        }
    }
    numbers_.Fill(std::move(choices));
    FillLevels();
}

void ObsSelector::FillLevels() {
    const auto before = levels_.Key();
    std::vector<MemberChoice> choices;
    const auto hierarchy = cube_->FirstHierarchy("OBS");
    if (hierarchy && numbers_.Key()) {
        // Levels above the first one with data under this number belong to other structures.
        const std::int32_t count = hierarchy->LevelCount();
        const std::int32_t filled =
            ModSetCube::CountObsLevels(context_.providers, cube_->name.cubeName, cube_->name.cubeFile,
                                       InBrackets(Name()), InBrackets(Number()));
        for (std::int32_t i = std::max(1, count - filled); i < count; ++i) {
            const auto level = hierarchy->LevelAt(i);
            const std::string name = level->Name();
            if (EqualIgnoringCase(std::string_view(name).substr(0, listedLevelPrefix.size()),
                                  listedLevelPrefix)) {
                choices.push_back({name, CaptionWithKey(name, level->Caption())});
            }
        }
    }
    levels_.Fill(std::move(choices));
    if (before) {
        levels_.Choose(*before);
    }
    FillMembers();
}

bool ObsSelector::UsesObsLevels() const { return kinds_.Key() == std::optional<std::string>(obsLevels); }

std::string ObsSelector::Level() const {
    return UsesObsLevels() ? levels_.Key().value_or("") : kinds_.Key().value_or(allMembers);
}

void ObsSelector::FillMembers() {
    const std::string level = Level();
    if (level.empty() || level == allMembers) {
        return members_.Clear();
    }
    const auto before = members_.Key();
    members_.Fill(ListChoices(
        context_, cube_->name.cubeFile,
        {cube_->name.cubeName,
         ModSetCube::ObsListing{.obsNumber = InBrackets(Name()),
                                .obsLevel = InBrackets(level),
                                .obsSubMember =
                                    numbers_.Key() ? std::optional(InBrackets(Number())) : std::nullopt}}));
    if (before) {
        members_.Choose(*before);
    }
}

void ObsSelector::AddMember() {
    const auto member = members_.Chosen();
    if (!member) {
        return;
    }
    auto chosen = chosen_.Choices();
    if (std::find(chosen.begin(), chosen.end(), *member) != chosen.end()) {
        return;
    }
    if (chosen.size() == mostMembers) {
        return Warn(context_, OwnText(context_, OwnTextNumber::TooManyObsMembers));
    }
    chosen.push_back(*member);
    ShowChosen(std::move(chosen));
}

void ObsSelector::RemoveMember() {
    const auto member = chosen_.Chosen();
    if (!member) {
        return;
    }
    auto chosen = chosen_.Choices();
    std::erase(chosen, *member);
    ShowChosen(std::move(chosen));
}

void ObsSelector::ShowChosen(std::vector<MemberChoice> chosen) {
    const std::string last = chosen.empty() ? std::string() : chosen.back().key;
    chosen_.Fill(std::move(chosen));
    chosen_.Choose(last);
    TellWhichCounts();
}

void ObsSelector::TellWhichCounts() {
    const bool areSeveral = chosen_.Choices().size() > 1;
    dialog_.SetText(LabelFirst, areSeveral ? OwnText(context_, OwnTextNumber::FirstMemberCounts) : "");
}

void ObsSelector::Read(Selection& selection) const {
    selection.obsName = Name();
    selection.obsNumber = Number();
    selection.obsLevel = Level();
    selection.obsMembers.clear();
    if (selection.obsLevel == allMembers) {
        return;
    }
    for (const MemberChoice& member : chosen_.Choices()) {
        selection.obsMembers.push_back(member.key);
    }
    // A single member need not be added: the one shown in the combo box counts.
    if (selection.obsMembers.empty() && members_.Key()) {
        selection.obsMembers.push_back(*members_.Key());
    }
}

void ObsSelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    const auto drop = [&](std::int32_t label, const std::string& key) {
        dropped.push_back(DroppedChoice(context_, label, key));
    };
    if (!names_.Choose(selection.obsName)) {
        drop(obsLabel, selection.obsName);
    }
    FillNumbers();
    if (!numbers_.Choose(selection.obsNumber)) {
        drop(obsLabel, selection.obsNumber);
    }
    FillLevels();
    const bool isObsLevel = selection.obsLevel != allMembers && selection.obsLevel != costCentersLevel;
    kinds_.Choose(isObsLevel ? obsLevels : selection.obsLevel);
    if (isObsLevel && !levels_.Choose(selection.obsLevel)) {
        drop(levelLabel, selection.obsLevel);
        kinds_.Choose(allMembers);
    }
    FillMembers();
    if (Level() == selection.obsLevel) {
        RestoreMembers(selection, dropped);
    }
    Enable(isEnabled_);
}

void ObsSelector::RestoreMembers(const Selection& selection, std::vector<std::string>& dropped) {
    std::vector<MemberChoice> chosen;
    for (const std::string& key : selection.obsMembers) {
        if (members_.Choose(key)) {
            chosen.push_back(*members_.Chosen());
        } else {
            dropped.push_back(DroppedChoice(context_, dataLabel, key));
        }
    }
    ShowChosen(std::move(chosen));
}

} // namespace qel
