#pragma once

#include "lang/ModLangFrm.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/dialog/calc/OfficeDialogToolkit.h"
#include "platform/dialog/calc/OfficeMessages.h"
#include "platform/settings/files/FileProfiles.h"
#include "platform/settings/files/FileRegistry.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "store/StoreEnvironment.h"
#include "wizard/WizardContext.h"
#include "wizard/servers/ServersOfWizards.h"

namespace qel::calc {

/// What the dialogs work with: the user's settings and local database, which are `qel`'s too, and the
/// office's own dialogs and boxes. Used by the thread of the user interface alone.
class SuiteOfUser {
public:
    /// Raises AutomationError when the user's configuration folder is not known.
    explicit SuiteOfUser(const office::Context& context);
    ~SuiteOfUser() = default;
    SuiteOfUser(const SuiteOfUser&) = delete;
    SuiteOfUser& operator=(const SuiteOfUser&) = delete;

    WizardServices& Services() { return services_; }
    /// The provider of servers' addresses for the dialogs.
    DataAccess& Servers() { return servers_.Access(); }

private:
    office::OfficeWindows windows_;
    office::OfficeMessages messages_;
    office::OfficeDialogToolkit toolkit_;
    FileRegistry registry_;
    FileProfiles profiles_;
    SqliteDatabase database_;
    XmlTableReader tables_;
    StoreEnvironment environment_; ///< the component's folder is the installed package's
    ModLangFrm::LanguageState language_;
    ServersOfWizards servers_;
    WizardServices services_;
};

} // namespace qel::calc
