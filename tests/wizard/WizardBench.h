#pragma once

#include "function/OrmQelFunction.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/settings/files/FileProfiles.h"
#include "platform/settings/files/FileRegistry.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/DialogDouble.h"
#include "tests/helpers/doubles/SheetDouble.h"
#include "tests/helpers/doubles/StoreDoubles.h"

namespace qel::test {

/// The example's cube file.
const std::string& LedgerFile();
/// A cube file with special characters in its members' names, and with cubes that the wizards do not list or
/// cannot load.
const std::string& OddFile();

/// A cube file whose cube lacks dimensions that the listings name.
const std::string& PlainBooksFile();
/// A cube file without a cube that the wizards list.
const std::string& UnlistedFile();

/// A user's machine: settings, local database and cubes are real files; sheet, screen and person are doubles.
class WizardBench {
public:
    explicit WizardBench(const std::string& rememberedFile = {});

    /// Makes the suite Hebrew, with its table of texts or without.
    void BeHebrew(bool hasTable);
    void Remember(const std::string& cubeFile);
    std::string RememberedFile() const;
    std::vector<TableRow> Rows(const std::string& table);
    void PutRows(const std::string& table, const std::vector<TableRow>& rows);

    /// A macro's call while the person acts.
    std::string ShowFormGetVal(const std::function<void(DialogDouble&)>& person);
    std::string ShowFormQelName(const std::function<void(DialogDouble&)>& person);

    /// The text of a cell with that formula, calculated by another object on another connection.
    std::string Evaluate(const std::string& formula);
    /// The boxes shown since the last call, and their texts. Reports that the local database exists already,
    /// of which every opening of it shows one, are left out and counted.
    std::vector<ShownMessage> TakeShown();
    std::vector<std::string> TakeMessages();

    int databaseReports = 0;

    test::TemporaryFolder folder;
    RecordedMessages messages;
    FileRegistry registry;
    FileProfiles profiles;
    SqliteDatabase database;
    XmlTableReader tables;
    EmbeddedDataAccess dataAccess;
    Locale locale;
    ModSetCube::ThreadState thread;
    StoreEnvironment store;
    ModLangFrm::LanguageState language;
    ToolkitDouble toolkit;
    WizardServices services;
    OrmQelFunction object;
    SheetDouble sheet;
};

} // namespace qel::test
