#pragma once

#include "platform/database/DatabaseCatalog.h"
#include "platform/dialog/MessageBox.h"
#include "platform/settings/Settings.h"
#include "text/Utf8Path.h"

#include <string>
#include <vector>

namespace qel {

/// A registry key that was opened at some time; it may be closed by now.
struct OpenKey {
    KeyHandle handle = 0;
    std::string name; ///< in full, with the root's name
};

/// What the store works with, and what it remembers while the component is loaded. Made by a door; used by
/// the thread of the user interface alone.
struct StoreEnvironment {
    Registry& registry;
    ProfileFiles& profiles;
    DatabaseEngine& database;
    MessageDisplay& messages;
    std::string componentFolder; ///< holds the component's own file; without a separator at its end
    char separator = pathSeparator;

    std::string suiteFolder = {};       ///< as the last reading of Qel.ini found it
    std::vector<OpenKey> openKeys = {}; ///< only ever added to
};

} // namespace qel
