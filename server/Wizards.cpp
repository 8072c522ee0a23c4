#include "server/Wizards.h"

#include "platform/dialog/win32/Win32DialogToolkit.h"
#include "server/SuiteStore.h"

namespace qel::server {

WizardServices& Wizards() {
    static windows::Win32DialogToolkit toolkit;
    static WizardServices services{toolkit, SuiteLanguage()};
    return services;
}

} // namespace qel::server
