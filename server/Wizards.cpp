#include "server/Wizards.h"

#include "platform/dialog/win32/Win32DialogToolkit.h"
#include "server/SuiteStore.h"

namespace qel::server {

namespace {

/// The machine's provider, which RequireAllowedServer guards: its requests end by themselves, and each fails
/// on its own.
class ServersOfMachine : public WizardServers {
public:
    void BeginAction() override {}
    void EndAction() override {}
};

} // namespace

WizardServices& Wizards() {
    static windows::Win32DialogToolkit toolkit;
    static ServersOfMachine servers;
    static WizardServices services{toolkit, SuiteLanguage(), &servers};
    return services;
}

} // namespace qel::server
