#include "function/ArgumentText.h"
#include "function/EditedCall.h"
#include "function/OrmQelFunction.h"
#include "function/SheetWriter.h"
#include "function/formula/WrittenCalls.h"
#include "support/ModError.h"
#include "wizard/OwnText.h"
#include "wizard/frmFuncQelWiz.h"
#include "wizard/frmNameWizz.h"

// The wizards on a formula that is there already.

namespace qel {

namespace {

/// Where the formula that is edited stands.
struct EditedFormula {
    FormulaCell& cell;
    std::string formula;
    WrittenCall call;

    void Replace(const std::vector<std::string>& arguments) const {
        cell.ReplaceFormula(WithArguments(formula, call, arguments));
    }
};

void EditValue(const WizardContext& wizards, const EditedFormula& edited, const ArgumentReader& reader) {
    const EditedValueCall call(edited.call.arguments, reader);
    frmFuncQelWiz form(wizards, call.Choices());
    form.Show();
    if (form.CanceledPivot) {
        return;
    }
    if (form.bDetail) {
        const std::string text = ComposeArgumentText(form.FormulaArgs, reader.locale);
        return WriteDetailTable(edited.cell, text, wizards.language.iLang, wizards.Messages());
    }
    edited.Replace(call.Rewritten(form.Call, form.FormulaArgs, edited.call.separator));
}

void EditName(const WizardContext& wizards, const EditedFormula& edited, const ArgumentReader& reader) {
    const EditedNameCall call(edited.call.arguments, reader);
    frmNameWizz form(wizards, call.Choice());
    form.Show();
    if (!form.CanceledPivot) {
        edited.Replace(call.Rewritten(form.Arguments));
    }
}

} // namespace

void OrmQelFunction::EditFormula(FormulaCell& cell, const FullPath& fullPath) {
    const WizardContext wizards = RequireWizards();
    try {
        const std::string formula = cell.Formula();
        const auto calls = FindCalls(formula);
        if (calls.size() != 1) {
            FindLanguage(wizards);
            return Warn(wizards, OwnText(wizards, OwnTextNumber::NoFormulaToEdit));
        }
        const EditedFormula edited{cell, formula, calls.front()};
        const auto reader = ArgumentReader::Of(cell, fullPath, context_.locale);
        IsNameCall(edited.call) ? EditName(wizards, edited, reader) : EditValue(wizards, edited, reader);
    } catch (...) {
        ModError::ReportError(wizards.Messages(), ModError::CurrentError(), "", "EditFormula", "OrmQelFunc");
    }
}

} // namespace qel
