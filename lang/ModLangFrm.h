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

/// The user interface's language while the component is loaded. Used by the thread of the user interface
/// alone.
struct LanguageState {
    StoreEnvironment& store;
    PersistedTableReader& tables;

    std::int16_t iLang = Language::English;
    bool resourceOnly = true; ///< set when Lang.rs is missing
    std::optional<LangTable> table = std::nullopt;
};

/// The suite's setting: 0, 1 or 2; 0 for any other text or none.
std::int16_t LanguageFromIni(StoreEnvironment& store);

/// Chooses the language and, when the component's folder has a Lang.rs, loads it.
void InitLanguage(LanguageState& state);

/// Opens Lang.rs and shows the rows of the language. False when that failed, which is reported; no table is
/// open then.
bool LoadLangTable(LanguageState& state);

/// The text of that number from the table, or from the component's own strings when no table is in use. A
/// number without a text is its own text.
std::string GetLangString(const LanguageState& state, std::int32_t id);

/// Replaces the numbers that a dialog's controls carry by their texts, and sets its font. What carries no
/// number, or 0, keeps the text that it was designed with.
void TranslateForm(const LanguageState& state, TranslatableForm& form);

} // namespace qel::ModLangFrm
