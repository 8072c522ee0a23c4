#include "why/CheckForm.h"

#include "platform/dialog/ReadingOrder.h"
#include "support/ModError.h"
#include "wizard/OwnText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qel {

namespace {

constexpr const char* summary = "LabelSummary";
constexpr const char* findingList = "ListFindings";
constexpr const char* allSheets = "ChkAllSheets";
constexpr const char* againButton = "CmdAgain";
constexpr const char* copyButton = "CmdCopy";
constexpr const char* closeButton = "CmdClose";
constexpr std::int32_t checkingText = 1673, summaryText = 1674, summaryOfSomeText = 1675,
                       hiddenSheetText = 1676;
constexpr std::size_t mostRows = 1000;

using enum ControlKind;

constexpr ControlDesign checkControls[] = {
    {.name = summary, .kind = Label, .place = {8, 6, 304, 9}},
    {.name = findingList, .kind = ListBox, .place = {8, 19, 304, 130}, .spokenText = 1670},
    {.name = allSheets, .kind = CheckBox, .place = {8, 155, 90, 12}, .mnemonic = "Aכ", .ownText = 1671},
    {.name = againButton, .kind = Button, .place = {102, 154, 78, 14}, .mnemonic = "Kש", .ownText = 1672},
    {.name = copyButton, .kind = Button, .place = {184, 154, 62, 14}, .mnemonic = "Cת", .ownText = 1657},
    {.name = closeButton, .kind = Button, .place = {250, 154, 62, 14}, .ownText = 1658},
};

constexpr FormDesign checkDesign = {.name = "frmCheck",
                                    .tag = 1670,
                                    .width = 320,
                                    .height = 174,
                                    .controls = checkControls,
                                    .cancelButton = closeButton};

} // namespace

CheckForm::CheckForm(const WizardContext& context, CheckPlace place)
    : BesideForm(context, checkDesign), place_(std::move(place)) {}

void CheckForm::OnLoad() { Form().SetFocus(findings_.empty() ? closeButton : findingList); }

void CheckForm::OnClick(std::string_view control) {
    if (control == closeButton) {
        return CloseByPerson();
    }
    RunCommand(HandlerName(control, "Click"), [&] {
        if (control == copyButton) {
            std::vector<std::string> rows{Form().Text(summary)};
            for (const SheetFinding& finding : findings_) {
                rows.push_back(RowOf(finding));
            }
            return place_.copy(WithoutDirection(fmt::format("{}\n", fmt::join(rows, "\n"))));
        }
        try {
            place_.alone([&] { Check(); });
        } catch (const ActionStopped&) { // NOLINT(bugprone-empty-catch): what was found before stays
        }
    });
}

void CheckForm::OnChange(std::string_view control) {
    RunCommand(ChangeHandlerName(control), [&] {
        if (const auto row = Form().Selected(findingList)) {
            place_.goTo(findings_.at(*row).sheet, findings_.at(*row).place);
        }
    });
}

void CheckForm::Check() {
    const auto action = place_.book->BeginAction(OwnText(Context(), checkingText));
    const ServerAction servers(Context().servers);
    SheetCheck check(Context().providers, Context().locale, Context().language.iLang, place_.fullPath);
    check.Run(place_.read(Form().IsChecked(allSheets)), place_.readCell,
              [&](double share) { action->Report(share); });
    findings_ = check.Findings();
    Show(check.Formulas());
}

void CheckForm::Show(std::size_t formulas) {
    std::vector<std::string> rows;
    for (const SheetFinding& finding : findings_) {
        if (rows.size() < mostRows) {
            rows.push_back(RowOf(finding));
        }
    }
    const std::string text =
        OwnText(Context(), rows.size() < findings_.size() ? summaryOfSomeText : summaryText);
    Form().SetText(summary, fmt::format(fmt::runtime(text), formulas, findings_.size(), rows.size()));
    Form().SetItems(findingList, rows);
}

std::string CheckForm::RowOf(const SheetFinding& finding) const {
    const std::string cell = finding.sheet + '.' + CellName(finding.place);
    return (Context().IsHebrew() ? InOwnDirection(cell) : cell) +
           (place_.isHidden(finding.sheet) ? " " + OwnText(Context(), hiddenSheetText) : "") + ": " +
           finding.reason;
}

std::unique_ptr<CheckForm> MakeCheckForm(const WizardContext& context, const CheckPlace& place) {
    try {
        FindLanguage(context);
        auto form = std::make_unique<CheckForm>(context, place);
        form->Check();
        return form;
    } catch (const ActionStopped&) {
        return nullptr;
    } catch (...) {
        ModError::ReportError(context.Messages(), ModError::CurrentError(), "", "MakeCheckForm",
                              "OrmQelFunc");
        return nullptr;
    }
}

} // namespace qel
