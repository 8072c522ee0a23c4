#include "lang/ModLangFrm.h"

#include "files/FolderNames.h"
#include "store/ModPublics.h"
#include "support/ModError.h"
#include "support/SettingPaths.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <vector>

namespace qel::ModLangFrm {

namespace {

/// The language table in a folder, in any letter case; empty when there is none.
std::string LangTableIn(const std::string& folder, char separator) {
    const std::string start = folder + separator;
    if (FileExists(start + langTableFile)) {
        return start + langTableFile;
    }
    for (const auto& file : NamesInFolder(PathFromSetting(folder))) {
        const std::string name = PathToUtf8(file);
        if (EqualIgnoringCase(name, langTableFile) && FileExists(start + name)) {
            return start + name;
        }
    }
    return {};
}

/// Empty when there is none.
std::string FindLangTable(const StoreEnvironment& store) {
    std::vector<std::string> folders = {store.componentFolder};
    if (!store.settingsFolder.empty()) {
        folders.insert(folders.end(), {store.suiteFolder, store.settingsFolder});
    }
    std::string path;
    for (const std::string& folder : folders) {
        if (path.empty() && !folder.empty()) {
            path = LangTableIn(folder, store.separator);
        }
    }
    return path;
}

} // namespace

std::int16_t LanguageFromIni(StoreEnvironment& store) {
    const std::string setting =
        ModPublics::ReadQelIni(store, ModPublics::languageSection, ModPublics::languageKey);
    if (setting == "1") {
        return Language::Hebrew;
    }
    return setting == "2" ? Language::Further : Language::English;
}

void InitLanguage(LanguageState& state) {
    state.iLang = LanguageFromIni(state.store);
    state.resourceOnly = FindLangTable(state.store).empty();
    if (!state.resourceOnly) {
        LoadLangTable(state);
    }
}

bool LoadLangTable(LanguageState& state) {
    try {
        state.table.reset();
        LangTable table(LangRowsOf(state.tables.Read(FindLangTable(state.store))));
        table.Filter(state.iLang);
        state.table = std::move(table);
        return true;
    } catch (...) {
        ModError::ReportError(state.store.messages, ModError::CurrentError(), "", "", "");
        return false;
    }
}

std::string GetLangString(const LanguageState& state, std::int32_t id) {
    if (!state.table || state.resourceOnly) {
        return ResourceString(id, state.iLang);
    }
    return state.table->Find(id).value_or(std::to_string(id));
}

std::string GetOwnString(const LanguageState& state, std::int32_t id) {
    const auto text = state.table && !state.resourceOnly ? state.table->Find(id) : std::nullopt;
    return text ? *text : ResourceString(id, state.iLang);
}

} // namespace qel::ModLangFrm
