#pragma once

#include "engine/build/Definition.h"

#include <string>
#include <string_view>
#include <vector>

// The connection texts of ODBC: "DSN=books;UID=reader;PWD={a;b}".
// https://learn.microsoft.com/sql/odbc/reference/syntax/sqldriverconnect-function

namespace qel::engine {

/// Whether a password stands in the text itself, not in an environment variable.
bool HoldsPassword(std::string_view connection);

struct OdbcConnectionText {
    std::string text;
    std::vector<std::string> passwords; ///< that no message may show
};

/// The source's connection text with the values of the variables that it names, in braces where the syntax
/// needs them. Raises EngineError (InvalidDefinition) naming a variable that is not set.
OdbcConnectionText WithVariables(const OdbcSource& source);

} // namespace qel::engine
