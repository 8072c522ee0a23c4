#pragma once

#include "lang/ModLangFrm.h"

namespace qel::server {

/// The suite's settings, local database and texts as this machine has them, with their state; one a process.
/// Jet keeps the database where this process can load it, SQLite elsewhere. The calling thread must have an
/// apartment.
ModLangFrm::LanguageState& SuiteLanguage();

} // namespace qel::server
