#include "lang/ModLangFrm.h"

#include "store/ModPublics.h"
#include "support/ModError.h"
#include "support/SettingPaths.h"

namespace qel::ModLangFrm {

namespace {

std::string LangTablePath(const StoreEnvironment& store) {
    return store.componentFolder + store.separator + langTableFile;
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
    state.resourceOnly = !FileExists(LangTablePath(state.store));
    if (!state.resourceOnly) {
        LoadLangTable(state);
    }
}

bool LoadLangTable(LanguageState& state) {
    try {
        state.table.reset();
        LangTable table(LangRowsOf(state.tables.Read(LangTablePath(state.store))));
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

} // namespace qel::ModLangFrm
