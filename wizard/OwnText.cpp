#include "wizard/OwnText.h"

#include "support/ModError.h"

#include <fmt/format.h>

namespace qel {

std::string OwnText(const WizardContext& context, std::int32_t number) {
    return ModLangFrm::GetOwnString(context.language, number);
}

void Warn(const WizardContext& context, const std::string& text) {
    context.Messages().Show(MessageBoxStyle::Exclamation, componentName, text);
}

void ShowOwnTexts(const WizardContext& context, const FormDesign& design, Dialog& dialog) {
    for (const ControlDesign& control : design.controls) {
        if (control.ownText != 0) {
            dialog.SetText(control.name, OwnText(context, control.ownText));
        }
        if (control.spokenText != 0) {
            dialog.SetSpokenName(control.name, OwnText(context, control.spokenText));
        }
    }
}

std::string DroppedChoice(const WizardContext& context, std::int32_t label, const std::string& key) {
    return ModLangFrm::GetLangString(context.language, label) + ": " + key;
}

std::string VersionText() { return fmt::format("{} " QEL_VERSION, componentName); }

} // namespace qel
