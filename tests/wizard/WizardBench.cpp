#include "tests/wizard/WizardBench.h"

#include "function/formula/ParseFormula.h"
#include "platform/value/ValueText.h"
#include "qel/engine/BuildCube.h"
#include "reason/RunFormula.h"
#include "store/LocalDb.h"
#include "store/ModAPI.h"
#include "store/ModPublics.h"

#include <map>

namespace qel::test {

namespace {

std::filesystem::path SourceFile(const char* path) { return std::filesystem::path(QEL_SOURCE_DIR) / path; }

/// The cube file of a definition, built once for the whole program.
const std::string& FileOf(const char* definition) {
    static const TemporaryFolder folder;
    static std::map<std::string, std::string> files;
    const auto [file, isNew] = files.try_emplace(definition);
    if (isNew) {
        engine::BuildOptions options;
        options.definition = SourceFile(definition);
        options.output = folder.Path(std::to_string(files.size()) + ".cub");
        engine::BuildCube(options);
        file->second = options.output.string();
    }
    return file->second;
}

} // namespace

const std::string& LedgerFile() { return FileOf("examples/ledger/ledger.json"); }
const std::string& OddFile() { return FileOf("tests/wizard/odd/odd.json"); }
const std::string& PlainBooksFile() { return FileOf("tests/helpers/books/books.json"); }
const std::string& UnlistedFile() { return FileOf("tests/wizard/odd/unlisted.json"); }

WizardBench::WizardBench(const std::string& rememberedFile)
    : registry(folder.Path("settings.ini")),
      store{registry, profiles, database, messages, folder.Path("component").string()},
      language{store, tables}, services{toolkit, language}, object({thread, dataAccess, locale, &services}) {
    std::filesystem::create_directory(folder.Path("component"));
    registry.SetValue(RootKey::CurrentUser, ModAPI::suiteKey, ModAPI::mdbPathValue,
                      folder.Path("suite").string());
    std::filesystem::create_directory(folder.Path("suite"));
    if (!rememberedFile.empty()) {
        Remember(rememberedFile);
    }
}

void WizardBench::BeHebrew(bool hasTable) {
    folder.Write("suite/Qel.ini", "[Qel]\nQelUILanguage=1\n");
    if (hasTable) {
        std::filesystem::copy_file(SourceFile("examples/lang/Lang.rs"), folder.Path("component/Lang.rs"));
    }
}

void WizardBench::Remember(const std::string& cubeFile) {
    ModPublics::WriteCubIni(store, ModPublics::cubeFileSection, ModPublics::cubeFileKey, cubeFile);
}

std::string WizardBench::RememberedFile() const {
    const std::string text = folder.Read("suite/Cub.ini");
    const auto start = text.find("F=");
    return start == std::string::npos ? ""
                                      : text.substr(start + 2, text.find_first_of("\r\n", start) - start - 2);
}

std::vector<TableRow> WizardBench::Rows(const std::string& table) {
    return database.Open(LocalDbConnectionText(store))->ReadRows(table);
}

void WizardBench::PutRows(const std::string& table, const std::vector<TableRow>& rows) {
    if (!std::filesystem::exists(folder.Path("suite/QelFunction17.mdb"))) {
        CreateLocalDb(store);
    }
    database.Open(LocalDbConnectionText(store))->ReplaceRows(table, rows);
}

std::string WizardBench::ShowFormGetVal(const std::function<void(DialogDouble&)>& person) {
    toolkit.person = person;
    return object.ShowFormGetVal(sheet.Cell(sheet.activeCell));
}

std::string WizardBench::ShowFormQelName(const std::function<void(DialogDouble&)>& person) {
    toolkit.person = person;
    return object.ShowFormQelName(sheet.Cell(sheet.activeCell));
}

std::string WizardBench::Evaluate(const std::string& formula) {
    ModSetCube::ThreadState own;
    OrmQelFunction function({own, dataAccess, locale});
    return ValueText(RunFormula(function, BindFormula(ParseFormula(formula), locale)).value);
}

std::vector<ShownMessage> WizardBench::TakeShown() {
    const auto isDatabaseReport = [](const ShownMessage& message) {
        return message.text.find("QelFunction17.mdb' already exists") != std::string::npos;
    };
    databaseReports += static_cast<int>(std::erase_if(messages.shown, isDatabaseReport));
    return std::exchange(messages.shown, {});
}

std::vector<std::string> WizardBench::TakeMessages() {
    std::vector<std::string> texts;
    for (const ShownMessage& message : TakeShown()) {
        texts.push_back(message.text);
    }
    return texts;
}

} // namespace qel::test
