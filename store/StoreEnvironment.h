#pragma once

#include "platform/database/DatabaseCatalog.h"
#include "platform/dialog/MessageBox.h"
#include "platform/settings/Settings.h"
#include "text/Utf8Path.h"

#include <string>
#include <vector>

namespace qel {

/// A registry key that was opened and may have been closed since.
struct OpenKey {
    KeyHandle handle = 0;
    std::string name; ///< in full, with the root's name
};

/// The store's ports, and its state while the component is loaded. Created by a door; used only by the user
/// interface's thread.
struct StoreEnvironment {
    Registry& registry;
    ProfileFiles& profiles;
    DatabaseEngine& database;
    MessageDisplay& messages;
    std::string componentFolder; ///< of the component's file; without a trailing separator
    char separator = pathSeparator;
    std::string settingsFolder = {}; ///< of the door's settings, when they are files

    std::string suiteFolder = {};       ///< set by the last reading of Qel.ini
    std::vector<OpenKey> openKeys = {}; ///< only ever added to
};

} // namespace qel
