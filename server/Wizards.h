#pragma once

#include "cube/ThreadState.h"
#include "platform/dialog/win32/Win32DialogToolkit.h"
#include "wizard/WizardContext.h"
#include "wizard/servers/ServersOfWizards.h"

#include <functional>

namespace qel::server {

/// The machine's dialogs for one object. Made when the first dialog is shown, because cells need none. The
/// calling thread must be in an apartment.
class Wizards {
public:
    /// What the objects of the thread share; it outlives the dialogs.
    explicit Wizards(ModSetCube::ThreadState& thread);
    ~Wizards() = default;
    Wizards(const Wizards&) = delete;
    Wizards& operator=(const Wizards&) = delete;

    WizardServices& Services() { return services_; }
    /// Shows a dialog. Cells never find the connection through which it asked a server: they do not wait with
    /// a box.
    void Show(const std::function<void()>& dialog);

private:
    ModSetCube::ThreadState& thread_;
    windows::Win32DialogToolkit toolkit_;
    ServersOfWizards servers_;
    WizardServices services_;
};

} // namespace qel::server
