#include "function/ArgumentText.h"
#include "function/OrmQelFunction.h"
#include "function/SheetWriter.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "support/ModError.h"
#include "wizard/frmFuncQelWiz.h"
#include "wizard/frmNameWizz.h"

// The members that show a dialog and write what was chosen in it into the sheet.

namespace qel {

namespace {

constexpr const char* canceled = " ";
constexpr std::int16_t detailShown = -1; // the platform's number for true
constexpr std::int32_t notImplemented = static_cast<std::int32_t>(0x80004001);

std::shared_ptr<SheetApplication> ApplicationOf(const std::shared_ptr<SheetRange>& cell) {
    if (!cell) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return cell->Application();
}

} // namespace

WizardContext OrmQelFunction::RequireWizards() const {
    if (context_.wizards == nullptr) {
        throw AutomationError(notImplemented,
                              "There are no dialogs here: write the formula into the cell itself.");
    }
    WizardServices& wizards = *context_.wizards;
    return {context_.thread,  wizards.providers.value_or(context_.providers),
            context_.locale,  wizards.toolkit,
            wizards.language, wizards.servers};
}

std::string OrmQelFunction::ShowFormGetVal(const std::shared_ptr<SheetRange>& xlActiveCell) {
    const WizardContext wizards = RequireWizards();
    try {
        const auto application = ApplicationOf(xlActiveCell);
        frmFuncQelWiz form(wizards);
        form.Show();
        if (form.CanceledPivot) {
            return canceled;
        }
        put_ResQel(form.QelResult.Is<Null>() ? "0" : ToText(form.QelResult, context_.locale));
        put_iShowDetail(form.bDetail ? detailShown : std::int16_t{0});
        put_iLang(wizards.language.iLang);
        std::string text = ComposeArgumentText(form.FormulaArgs, context_.locale);
        if (get_iShowDetail() != 0) {
            WriteDetailTable(*xlActiveCell, text, get_iLang(), wizards.Messages());
        } else {
            WriteFormula(*application, "QelF1", text);
        }
        return text;
    } catch (...) {
        ModError::ReportError(wizards.Messages(), ModError::CurrentError(), "", "ShowformGetVal",
                              "OrmQelFunc");
        return {};
    }
}

std::string OrmQelFunction::ShowFormQelName(const std::shared_ptr<SheetRange>& xlActiveCell) {
    const WizardContext wizards = RequireWizards();
    try {
        const auto application = ApplicationOf(xlActiveCell);
        frmNameWizz form(wizards);
        form.Show();
        if (form.CanceledPivot) {
            return canceled;
        }
        put_iLang(wizards.language.iLang);
        std::string text = ComposeNameArgumentText(form.Arguments);
        WriteFormula(*application, "QelName", text);
        return text;
    } catch (...) {
        ModError::ReportError(wizards.Messages(), ModError::CurrentError(), "", "ShowFormQelName",
                              "OrmQelFunc");
        return {};
    }
}

} // namespace qel
