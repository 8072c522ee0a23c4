#include "wizard/WizardForm.h"

#include "store/ModAPI.h"
#include "support/ModError.h"
#include "support/SettingPaths.h"
#include "wizard/OwnText.h"

#include <algorithm>

namespace qel {

namespace {

constexpr const char* helpFileName = "PralixHeb.chm";

bool HasSuiteTexts(const FormDesign& design) {
    return std::any_of(design.controls.begin(), design.controls.end(),
                       [](const ControlDesign& control) { return control.tag != 0; });
}

std::unique_ptr<Dialog> NewDialog(const WizardContext& context, const FormDesign& design,
                                  DialogEvents& events) {
    FindLanguage(context);
    const auto& language = context.language;
    // A dialog with texts of the suite is mirrored only with the suite's table.
    const bool hasTable = !language.resourceOnly && language.table.has_value();
    const bool isRightToLeft = context.IsHebrew() && (hasTable || !HasSuiteTexts(design));
    auto dialog = context.toolkit.NewDialog(design, isRightToLeft, events);
    const std::string helpFile = context.Store().componentFolder + "/" + helpFileName;
    if (FileExists(helpFile)) {
        dialog->SetHelpFile(helpFile);
    }
    ModLangFrm::TranslateForm(language, dialog->Texts());
    ShowOwnTexts(context, design, *dialog);
    return dialog;
}

} // namespace

void FindLanguage(const WizardContext& context) {
    StoreEnvironment& store = context.Store();
    store.suiteFolder = ModAPI::GetRegSetting(store, ModAPI::mdbPathValue);
    if (store.suiteFolder.empty()) {
        store.suiteFolder = store.componentFolder;
    }
    ModLangFrm::InitLanguage(context.language);
}

WizardForm::WizardForm(const WizardContext& context, const FormDesign& design)
    : context_(context), design_(design), dialog_(NewDialog(context_, design, *this)) {}

void WizardForm::Cancel() {
    CanceledPivot = true;
    dialog_->Hide();
}

bool WizardForm::Trapped(const std::string& function, const std::function<void()>& operation,
                         const char* module) noexcept {
    try {
        const ServerAction action(context_.servers);
        operation();
        return true;
    } catch (...) {
        ModError::ReportError(context_.Messages(), ModError::CurrentError(), "", function,
                              module != nullptr ? module : design_.name);
        return false;
    }
}

std::string WizardForm::HandlerName(std::string_view control, const char* event) {
    return std::string(control.substr(0, control.find('('))) + "_" + event;
}

std::string WizardForm::ChangeHandlerName(std::string_view control) const {
    const bool isText =
        std::any_of(design_.controls.begin(), design_.controls.end(), [&](const ControlDesign& design) {
            return control == design.name && design.kind == ControlKind::TextBox;
        });
    return HandlerName(control, isText ? "Change" : "Click");
}

void WizardForm::WarnNumbered(std::int32_t number) const {
    Warn(context_, ModLangFrm::GetLangString(context_.language, number));
}

} // namespace qel
