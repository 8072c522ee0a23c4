#include "wizard/servers/ServerWait.h"

#include "support/ModError.h"

namespace qel {

namespace {

constexpr const char* waitingLabel = "LabelWaiting";
constexpr const char* askedServer = "TxtServer";
constexpr const char* cancelWaiting = "CmdCancel";
constexpr std::int32_t waitingText = 1557;
constexpr std::int32_t cancelText = 1558;

constexpr ControlDesign waitControls[] = {
    {.name = waitingLabel, .kind = ControlKind::Label, .place = {8, 8, 204, 10}},
    {.name = askedServer, .kind = ControlKind::TextBox, .place = {8, 22, 204, 12}, .isReadOnly = true},
    {.name = cancelWaiting, .kind = ControlKind::Button, .place = {152, 42, 60, 14}},
};

constexpr FormDesign waitDesign = {.name = "frmServerWait",
                                   .caption = componentName,
                                   .width = 220,
                                   .height = 64,
                                   .controls = waitControls,
                                   .cancelButton = cancelWaiting};

} // namespace

const FormDesign& ServerWaitDesign() { return waitDesign; }

ServerWait::ServerWait(DialogToolkit& toolkit, const ModLangFrm::LanguageState& language,
                       const std::string& server)
    : dialog_(toolkit.NewDialog(waitDesign, language.iLang == Language::Hebrew, *this)) {
    dialog_->SetText(waitingLabel, ModLangFrm::GetOwnString(language, waitingText));
    dialog_->SetText(askedServer, server);
    dialog_->SetText(cancelWaiting, ModLangFrm::GetOwnString(language, cancelText));
}

} // namespace qel
