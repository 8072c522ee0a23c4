#include "wizard/OtherDimensions.h"

#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"

namespace qel {

namespace {

using namespace FunctionForm;

struct OtherDimension {
    const char* control;
    const char* dimension;
    std::string Selection::*member;
    std::int32_t label;
};

constexpr OtherDimension dimensions[] = {
    {ComMoneySet, "MoneySet", &Selection::moneySet, 1480},
    {ComPlbs, "Plbs", &Selection::plbs, 1482},
    {ComRh, "RH", &Selection::rh, 1478},
    {ComFirma, "Firma", &Selection::firma, 1479},
    {ComOB, "Opening_Balance", &Selection::openingBalance, 1481},
};
constexpr std::size_t firmaIndex = 3;
constexpr std::int32_t measureLabel = 1477;

/// The members of a hierarchy's lowest level.
std::vector<MemberChoice> LowestMembers(const Hierarchy& hierarchy) {
    return ChoicesOf(*hierarchy.LevelAt(hierarchy.LevelCount() - 1));
}

} // namespace

OtherDimensions::OtherDimensions(const WizardContext& context, Dialog& dialog) : context_(context) {
    for (const OtherDimension& dimension : dimensions) {
        boxes_.emplace_back(dialog, dimension.control);
    }
}

void OtherDimensions::Fill(const LoadedCube& cube) {
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        std::vector<MemberChoice> choices = {{allMembers, OwnText(context_, OwnTextNumber::Everything)}};
        if (const auto hierarchy = cube.FirstHierarchy(dimensions[i].dimension)) {
            for (MemberChoice& choice : LowestMembers(*hierarchy)) {
                choices.push_back(std::move(choice));
            }
        }
        boxes_[i].Fill(std::move(choices));
    }
}

void OtherDimensions::Clear() {
    for (ChoiceBox& box : boxes_) {
        box.Clear();
    }
}

void OtherDimensions::Enable(bool isEnabled) {
    for (ChoiceBox& box : boxes_) {
        box.Enable(isEnabled);
    }
}

std::string OtherDimensions::Firma() const { return boxes_[firmaIndex].Key().value_or(allMembers); }

void OtherDimensions::Read(Selection& selection) const {
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        selection.*dimensions[i].member = boxes_[i].Key().value_or(allMembers);
    }
}

void OtherDimensions::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
        const std::string& key = selection.*dimensions[i].member;
        if (!key.empty() && !boxes_[i].Choose(key)) {
            dropped.push_back(DroppedChoice(context_, dimensions[i].label, key));
        }
    }
}

MeasureSelector::MeasureSelector(const WizardContext& context, Dialog& dialog)
    : context_(context), box_(dialog, ChcMeasure) {}

void MeasureSelector::Fill(const LoadedCube& cube) {
    box_.Clear();
    if (const auto hierarchy = cube.FirstHierarchy("Measures")) {
        box_.Fill(LowestMembers(*hierarchy));
    }
}

void MeasureSelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    if (!selection.measure.empty() && !box_.Choose(selection.measure)) {
        dropped.push_back(DroppedChoice(context_, measureLabel, selection.measure));
    }
}

} // namespace qel
