#pragma once

#include "lang/ModLangFrm.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/settings/files/FileProfiles.h"
#include "platform/settings/files/FileRegistry.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "store/StoreEnvironment.h"

#include <filesystem>
#include <ostream>

namespace qel {

/// Message boxes as lines on a stream; every one is answered with OK.
class StreamMessages : public MessageDisplay {
public:
    explicit StreamMessages(std::ostream& stream) : stream_(stream) {}

    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override;
    bool HasShown() const { return hasShown_; }

private:
    std::ostream& stream_;
    bool hasShown_ = false;
};

/// The suite's settings and texts as this program has them: settings in files of the user's configuration
/// folder, the local database in SQLite.
class LocalStore {
public:
    /// Raises AutomationError when the configuration folder is not known.
    explicit LocalStore(std::ostream& messageStream);
    ~LocalStore() = default;
    LocalStore(const LocalStore&) = delete;
    LocalStore& operator=(const LocalStore&) = delete;

    const std::filesystem::path settingsFile;
    StreamMessages messages;
    FileRegistry registry;
    FileProfiles profiles;
    SqliteDatabase database;
    XmlTableReader tables;
    StoreEnvironment environment; ///< the component's folder is the program's own
};

} // namespace qel
