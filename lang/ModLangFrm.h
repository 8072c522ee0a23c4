#pragma once

#include "lang/LangTable.h"
#include "lang/StringTable.h"
#include "platform/dialog/Form.h"
#include "store/StoreEnvironment.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::ModLangFrm {

inline constexpr const char* langTableFile = "Lang.rs";

/// The user interface's language while the component is loaded. Used only by the user interface's thread.
struct LanguageState {
    StoreEnvironment& store;
    PersistedTableReader& tables;

    std::int16_t iLang = Language::English;
    bool resourceOnly = true; ///< set when Lang.rs is missing
    std::optional<LangTable> table = std::nullopt;
};

/// The suite's setting: 0, 1 or 2; 0 for any other text, or when it is missing.
std::int16_t LanguageFromIni(StoreEnvironment& store);

/// Chooses the language and loads Lang.rs, in any letter case, from the component's folder. A door whose
/// settings are files looks in the suite's folder and in that of the settings, too.
void InitLanguage(LanguageState& state);

/// Opens Lang.rs, filtered by the language. A failure is reported and returns false; no table is open then.
bool LoadLangTable(LanguageState& state);

/// The text with that number from the table, or from the component's own strings when no table is in use.
/// Without such a text, the number itself as text.
std::string GetLangString(const LanguageState& state, std::int32_t id);

/// The same of a text that suites' tables may lack: without a row it is the component's own.
std::string GetOwnString(const LanguageState& state, std::int32_t id);

/// Replaces the numbers in a dialog's controls by their texts, and sets its font. Controls without a number,
/// or with 0, keep their designed text.
void TranslateForm(const LanguageState& state, TranslatableForm& form);

} // namespace qel::ModLangFrm
