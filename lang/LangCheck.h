#pragma once

#include "lang/LangTable.h"

#include <cstdint>
#include <map>
#include <vector>

namespace qel {

/// What a language table lacks or has too much of, in one language.
struct LangFindings {
    std::size_t rows = 0;
    std::vector<std::int32_t> missing;   ///< numbers that the component uses and that have no row
    std::vector<std::int32_t> empty;     ///< numbers whose first row has no text
    std::vector<std::int32_t> duplicate; ///< numbers with several rows, of which the first is used
    std::vector<std::int32_t> unknown;   ///< numbers that no text of the component has
};

/// By language: English and Hebrew, and every other that the rows name. Lists ascend.
std::map<std::int32_t, LangFindings> CheckLangRows(const std::vector<LangRow>& rows);

} // namespace qel
