#include "wizard/ObsSelector.h"

#include "cube/MemberListing.h"
#include "text/CaseFold.h"
#include "wizard/FunctionFormDesign.h"
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
    kept_.clear();
    keptLevel_.clear();
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
    } else if (kinds_.Is(control)) {
        FillMembers();
    } else if (levels_.Is(control)) {
        keptLevel_ = levels_.Key().value_or("");
        FillMembers();
    } else if (members_.Is(control)) {
        kept_[Level()].shown = members_.Key().value_or("");
        TellWhichCounts();
    }
    Enable(isEnabled_);
}

void ObsSelector::FillNumbers() {
    numbers_.Clear(); // a listing that fails leaves nothing of the name before
    levels_.Clear();
    ClearMembers();
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
    levels_.Clear();
    ClearMembers();
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
    levels_.Choose(keptLevel_);
    FillMembers();
}

bool ObsSelector::UsesObsLevels() const { return kinds_.Key() == std::optional<std::string>(obsLevels); }

std::string ObsSelector::Level() const {
    return UsesObsLevels() ? levels_.Key().value_or("") : kinds_.Key().value_or(allMembers);
}

void ObsSelector::FillMembers() {
    ClearMembers();
    const std::string level = Level();
    if (level.empty() || level == allMembers) {
        return;
    }
    members_.Fill(ListChoices(
        context_, cube_->name.cubeFile,
        {cube_->name.cubeName,
         ModSetCube::ObsListing{.obsNumber = InBrackets(Name()),
                                .obsLevel = InBrackets(level),
                                .obsSubMember =
                                    numbers_.Key() ? std::optional(InBrackets(Number())) : std::nullopt}}));
    const LevelChoice& kept = kept_[level];
    members_.Choose(kept.shown);
    ShowChosen(kept.listed);
}

void ObsSelector::ClearMembers() {
    members_.Clear();
    ShowChosen({});
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
    KeepChosen(std::move(chosen));
}

void ObsSelector::RemoveMember() {
    const auto member = chosen_.Chosen();
    if (!member) {
        return;
    }
    auto chosen = chosen_.Choices();
    std::erase(chosen, *member);
    KeepChosen(std::move(chosen));
}

void ObsSelector::KeepChosen(std::vector<MemberChoice> chosen) {
    LevelChoice& kept = kept_[Level()];
    kept.listed = std::move(chosen);
    ShowChosen(kept.listed);
}

void ObsSelector::ShowChosen(const std::vector<MemberChoice>& chosen) {
    const auto& members = members_.Choices();
    std::vector<MemberChoice> shown;
    std::copy_if(chosen.begin(), chosen.end(), std::back_inserter(shown), [&](const MemberChoice& choice) {
        return std::find(members.begin(), members.end(), choice) != members.end();
    });
    const std::string last = shown.empty() ? std::string() : shown.back().key;
    chosen_.Fill(std::move(shown));
    chosen_.Choose(last);
    TellWhichCounts();
}

void ObsSelector::TellWhichCounts() {
    const auto& chosen = chosen_.Choices();
    std::string text;
    if (chosen.size() > 1) {
        text = OwnText(context_, OwnTextNumber::FirstMemberCounts);
    } else if (chosen.size() == 1 && members_.Key() != chosen.front().key) {
        text = OwnText(context_, OwnTextNumber::ListCounts);
    }
    dialog_.SetText(LabelFirst, text);
}

std::optional<std::int32_t> ObsSelector::Missing() const {
    const std::string level = Level();
    const bool isComplete =
        level == allMembers || (!level.empty() && (!chosen_.Choices().empty() || members_.Key()));
    return isComplete ? std::nullopt : std::optional(OwnTextNumber::NoObsMember);
}

void ObsSelector::Read(Selection& selection) const {
    selection.obsName = Name();
    selection.obsNumber = Number();
    selection.obsLevel = Level();
    if (selection.obsLevel == allMembers) {
        return;
    }
    for (const MemberChoice& member : chosen_.Choices()) {
        selection.obsMembers.push_back(member.key);
    }
    // A single member need not be added: the one shown in the combo box counts.
    selection.isObsMemberShown = selection.obsMembers.empty() && members_.Key();
    if (selection.isObsMemberShown) {
        selection.obsMembers.push_back(*members_.Key());
    }
}

void ObsSelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    if (selection.obsLevel.empty()) {
        return;
    }
    RestoreScope(selection, dropped);
    const bool isObsLevel = selection.obsLevel != allMembers && selection.obsLevel != costCentersLevel;
    kinds_.Choose(isObsLevel ? obsLevels : selection.obsLevel);
    if (isObsLevel && !levels_.Choose(selection.obsLevel)) {
        dropped.push_back(DroppedChoice(context_, levelLabel, selection.obsLevel));
        kinds_.Choose(allMembers);
    }
    keptLevel_ = levels_.Key().value_or("");
    FillMembers();
    if (Level() == selection.obsLevel) {
        RestoreMembers(selection, dropped);
    }
    Enable(isEnabled_);
}

void ObsSelector::RestoreScope(const Selection& selection, std::vector<std::string>& dropped) {
    const auto choose = [&](ChoiceBox& box, const std::string& key) {
        if (!key.empty() && !box.Choose(key)) {
            dropped.push_back(DroppedChoice(context_, obsLabel, key));
        }
    };
    choose(names_, selection.obsName);
    FillNumbers();
    choose(numbers_, selection.obsNumber);
    FillLevels();
}

void ObsSelector::RestoreMembers(const Selection& selection, std::vector<std::string>& dropped) {
    LevelChoice& kept = kept_[selection.obsLevel];
    for (const std::string& key : selection.obsMembers) {
        if (!members_.Choose(key)) {
            dropped.push_back(DroppedChoice(context_, dataLabel, key));
        } else {
            kept.shown = key;
            if (!selection.isObsMemberShown) {
                kept.listed.push_back(*members_.Chosen());
            }
        }
    }
    ShowChosen(kept.listed);
}

} // namespace qel
