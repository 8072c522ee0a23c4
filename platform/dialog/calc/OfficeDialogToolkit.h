#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/calc/OfficeWindows.h"

namespace qel::office {

/// Dialogs made of the office's own controls. Raises AutomationError 1004 with the office's words when it
/// cannot make one.
class OfficeDialogToolkit : public DialogToolkit {
public:
    explicit OfficeDialogToolkit(OfficeWindows& windows) : windows_(windows) {}

    std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool isRightToLeft,
                                      DialogEvents& events) override;

private:
    OfficeWindows& windows_;
};

} // namespace qel::office
