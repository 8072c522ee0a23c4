#pragma once

#include "lang/LangTable.h"

#include <cstdint>
#include <map>
#include <vector>

namespace qel {

/// Missing and superfluous rows of a language table, for one language.
struct LangFindings {
    std::size_t rows = 0;
    std::vector<std::int32_t> missing;   ///< numbers used by the component without a row
    std::vector<std::int32_t> empty;     ///< numbers whose first row has no text
    std::vector<std::int32_t> duplicate; ///< numbers with several rows, of which the first is used
    std::vector<std::int32_t> unknown;   ///< numbers that the component does not use
};

/// By language: English, Hebrew, and every other language of the rows. Lists are ascending.
std::map<std::int32_t, LangFindings> CheckLangRows(const std::vector<LangRow>& rows);

} // namespace qel
