#pragma once

#include "lang/ModLangFrm.h"

namespace qel::server {

/// The machine's settings, local database and texts, with their state; one per process. The database is Jet's
/// where this process can load it, otherwise SQLite's. The calling thread must be in an apartment.
ModLangFrm::LanguageState& SuiteLanguage();

/// The language that the suite's settings choose now. Opens no database.
std::int16_t LanguageOfSettings();

} // namespace qel::server
