#include "wizard/DateSelector.h"

#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"
#include "support/ModError.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"

namespace qel {

namespace {

using namespace FunctionForm;

constexpr std::int32_t fromLabel = 1475;
constexpr const char* dateErrorText = "Error with the date in the Cube\r\nContinue with another cube";

} // namespace

void DateSelector::Fill(const ModSetCube::OpenedCube& cube) {
    Clear();
    try {
        if (!ModSetCube::EnsureCurrentCubeOpen(context_.thread, context_.providers, opened_, cube)) {
            throw AutomationError(ErrorNumber::InvalidProcedureCall, "Outdated Cube Version");
        }
        opened_ = cube;
        first_ = context_.thread.dates.CubeMinDate;
        last_ = context_.thread.dates.CubeMaxDate;
        Show(first_, last_);
    } catch (...) {
        ModError::ReportError(context_.Messages(), ModError::CurrentError(), dateErrorText, "SetDate",
                              "frmFuncQelWiz");
    }
}

void DateSelector::Clear() {
    dialog_.SetText(TxtDateFrom, "");
    dialog_.SetText(TxtDateTo, "");
}

void DateSelector::Enable(bool isEnabled) {
    dialog_.SetEnabled(TxtDateFrom, isEnabled);
    dialog_.SetEnabled(TxtDateTo, isEnabled);
}

void DateSelector::Show(AutomationDate from, AutomationDate to) {
    dialog_.SetText(TxtDateFrom, FormatShortDate(from, context_.locale));
    dialog_.SetText(TxtDateTo, FormatShortDate(to, context_.locale));
}

std::optional<AutomationDate> DateSelector::DateIn(std::string_view control) const {
    try {
        return ParseDate(dialog_.Text(control), context_.locale);
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

std::string DateSelector::NoDateText(std::string_view control) const {
    return OwnText(context_, OwnTextNumber::NoDate) + " " + dialog_.Text(control);
}

std::optional<std::string> DateSelector::Fault() const {
    const auto from = DateIn(TxtDateFrom), to = DateIn(TxtDateTo);
    if (!from || !to) {
        return NoDateText(from ? TxtDateTo : TxtDateFrom);
    }
    if (*from > *to) {
        return OwnText(context_, OwnTextNumber::ReversedDates);
    }
    // The last period begins on the cube's last date.
    if (*to < first_ || *from >= AddMonths(last_, 1)) {
        return OwnText(context_, OwnTextNumber::DatesOutsideCube) + " " +
               FormatShortDate(first_, context_.locale) + " - " + FormatShortDate(last_, context_.locale);
    }
    return std::nullopt;
}

void DateSelector::OnLeave(std::string_view control) {
    if (control != TxtDateFrom && control != TxtDateTo) {
        return;
    }
    // The other date may not be typed yet, so a range is checked when its end date is left.
    const auto fault = DateIn(control) ? (control == TxtDateTo ? Fault() : std::nullopt)
                                       : std::optional(NoDateText(control));
    const std::string dates = dialog_.Text(TxtDateFrom) + " - " + dialog_.Text(TxtDateTo);
    // The same dates are refused once: the way to the other date, which may be the wrong one, leads out of
    // this.
    if (!fault || dates == refused_) {
        return;
    }
    refused_ = dates;
    Warn(context_, *fault);
    dialog_.SetFocus(control);
}

void DateSelector::Read(Selection& selection) const {
    selection.from = DateIn(TxtDateFrom).value_or(selection.from);
    selection.to = DateIn(TxtDateTo).value_or(selection.to);
}

void DateSelector::Restore(const Selection& selection, std::vector<std::string>& dropped) {
    const std::string from = dialog_.Text(TxtDateFrom), to = dialog_.Text(TxtDateTo);
    if (selection.from.IsZero() || selection.to.IsZero() || from.empty()) {
        return; // no choice, or a cube whose dates cannot be read
    }
    Show(selection.from, selection.to);
    if (!Fault()) {
        return;
    }
    dropped.push_back(
        DroppedChoice(context_, fromLabel, dialog_.Text(TxtDateFrom) + " - " + dialog_.Text(TxtDateTo)));
    dialog_.SetText(TxtDateFrom, from);
    dialog_.SetText(TxtDateTo, to);
}

} // namespace qel
