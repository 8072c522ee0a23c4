#include "server/SuiteStore.h"

#include "platform/PathText.h"
#include "platform/sqlite/SqliteDatabase.h"
#include "platform/windows/SystemMessages.h"
#include "platform/windows/ado/LateBoundTableReader.h"
#include "platform/windows/jet/JetDatabase.h"
#include "platform/windows/msxml/MsxmlTableReader.h"
#include "platform/windows/settings/WindowsProfiles.h"
#include "platform/windows/settings/WindowsRegistry.h"
#include "server/ServerModule.h"

namespace qel::server {

namespace {

std::unique_ptr<DatabaseEngine> DatabaseOfMachine() {
    if (windows::JetDatabase::IsInstalled())
        return std::make_unique<windows::JetDatabase>();
    return std::make_unique<SqliteDatabase>();
}

std::unique_ptr<PersistedTableReader> TablesOfMachine() {
    if (windows::LateBoundTableReader::IsInstalled())
        return std::make_unique<windows::LateBoundTableReader>();
    return std::make_unique<windows::MsxmlTableReader>();
}

struct SuiteStore {
    windows::WindowsRegistry registry;
    windows::WindowsProfiles profiles;
    windows::SystemMessages messages;
    const std::unique_ptr<PersistedTableReader> tables = TablesOfMachine();
    const std::unique_ptr<DatabaseEngine> database = DatabaseOfMachine();
    StoreEnvironment environment{registry, profiles, *database, messages,
                                 TextFromPath(std::filesystem::path(ServerPath()).parent_path())};
    ModLangFrm::LanguageState language{environment, *tables};
};

} // namespace

ModLangFrm::LanguageState& SuiteLanguage() {
    static SuiteStore suite;
    return suite.language;
}

} // namespace qel::server
