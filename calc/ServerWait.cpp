#include "calc/ServerWait.h"

#include "calc/FunctionTexts.h"

namespace qel::calc {

namespace {

constexpr const char* waitingLabel = "LabelWaiting";
constexpr const char* askedServer = "TxtServer";
constexpr const char* cancelWaiting = "CmdCancel";

constexpr ControlDesign waitControls[] = {
    {.name = waitingLabel, .kind = ControlKind::Label, .place = {8, 8, 204, 10}},
    {.name = askedServer, .kind = ControlKind::TextBox, .place = {8, 22, 204, 12}, .isReadOnly = true},
    {.name = cancelWaiting, .kind = ControlKind::Button, .place = {152, 42, 60, 14}},
};

constexpr FormDesign waitDesign = {.name = "frmServerWait",
                                   .caption = "OrmFuncQel4",
                                   .width = 220,
                                   .height = 64,
                                   .controls = waitControls,
                                   .cancelButton = cancelWaiting};

constexpr Bilingual waitingText = {"Waiting for this server.", "ממתינים לשרת הזה."};
constexpr Bilingual cancelText = {"Cancel", "ביטול"};

} // namespace

ServerWait::ServerWait(office::OfficeWindows& windows, const std::string& server, bool isHebrew)
    : dialog_(office::OfficeDialogToolkit(windows).NewDialog(waitDesign, isHebrew, *this)) {
    dialog_->SetText(waitingLabel, waitingText.In(isHebrew));
    dialog_->SetText(askedServer, server);
    dialog_->SetText(cancelWaiting, cancelText.In(isHebrew));
}

} // namespace qel::calc
