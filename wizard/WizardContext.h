#pragma once

#include "cube/ThreadState.h"
#include "lang/ModLangFrm.h"
#include "platform/data/Providers.h"
#include "platform/dialog/DialogToolkit.h"
#include "wizard/WizardServers.h"

#include <optional>

namespace qel {

/// The dialogs' services, provided by a door. It outlives every object of the component.
struct WizardServices {
    DialogToolkit& toolkit;
    ModLangFrm::LanguageState& language;     ///< with the store's settings, local database and message boxes
    WizardServers* servers = nullptr;        ///< null where the wizards take cube files only
    std::optional<Providers> providers = {}; ///< of the dialogs, in place of the cells'
};

/// What a dialog works with.
struct WizardContext {
    ModSetCube::ThreadState& thread;
    Providers providers;
    const Locale& locale;
    DialogToolkit& toolkit;
    ModLangFrm::LanguageState& language;
    WizardServers* servers = nullptr;

    StoreEnvironment& Store() const { return language.store; }
    MessageDisplay& Messages() const { return language.store.messages; }
    bool IsHebrew() const { return language.iLang == Language::Hebrew; }
};

} // namespace qel
