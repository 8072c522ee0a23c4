#pragma once

#include "platform/dialog/DialogToolkit.h"

namespace qel::windows {

/// Dialogs of the system's own controls. They belong to the thread that creates them.
class Win32DialogToolkit : public DialogToolkit {
public:
    std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool isRightToLeft,
                                      DialogEvents& events) override;
};

} // namespace qel::windows
