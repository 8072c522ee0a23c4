#include "server/SuiteStore.h"

#include "platform/database/jet/JetDatabase.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/dialog/win32/SystemMessages.h"
#include "platform/settings/windows/WindowsProfiles.h"
#include "platform/settings/windows/WindowsRegistry.h"
#include "platform/tables/ado/AdoTableReader.h"
#include "platform/tables/msxml/MsxmlTableReader.h"
#include "server/ServerModule.h"
#include "text/Utf8Path.h"

namespace qel::server {

namespace {

std::unique_ptr<DatabaseEngine> DatabaseOfMachine() {
    if (windows::JetDatabase::IsInstalled()) {
        return std::make_unique<windows::JetDatabase>();
    }
    return std::make_unique<SqliteDatabase>();
}

std::unique_ptr<PersistedTableReader> TablesOfMachine() {
    if (windows::AdoTableReader::IsInstalled()) {
        return std::make_unique<windows::AdoTableReader>();
    }
    return std::make_unique<windows::MsxmlTableReader>();
}

std::string ComponentFolder() { return PathToUtf8(std::filesystem::path(ServerPath()).parent_path()); }

struct SuiteStore {
    windows::WindowsRegistry registry;
    windows::WindowsProfiles profiles;
    windows::SystemMessages messages;
    const std::unique_ptr<PersistedTableReader> tables = TablesOfMachine();
    const std::unique_ptr<DatabaseEngine> database = DatabaseOfMachine();
    StoreEnvironment environment{registry, profiles, *database, messages, ComponentFolder()};
    ModLangFrm::LanguageState language{environment, *tables};
};

} // namespace

ModLangFrm::LanguageState& SuiteLanguage() {
    static SuiteStore suite;
    return suite.language;
}

std::int16_t LanguageOfSettings() {
    windows::WindowsRegistry registry;
    windows::WindowsProfiles profiles;
    windows::SystemMessages messages;
    SqliteDatabase database;
    StoreEnvironment environment{registry, profiles, database, messages, ComponentFolder()};
    return ModLangFrm::LanguageFromIni(environment);
}

} // namespace qel::server
