#pragma once

#include "platform/tables/PersistedTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// One row of Lang.rs.
struct LangRow {
    std::int32_t language = 0;
    std::int32_t number = 0;
    std::string text;
};

/// The rows of a language table: the columns "lId" and "sId" and, third by position, the text. A field
/// without a value is an empty text. Raises AutomationError for a table without these columns or with a
/// language or number that is no whole number.
std::vector<LangRow> LangRowsOf(const PersistedTable& table);

/// Lang.rs while it is open: all its rows, of which a filter shows those of one language.
class LangTable {
public:
    /// Raises 3021 for a table without rows, which has no first row to stand on.
    explicit LangTable(std::vector<LangRow> rows);

    void Filter(std::int16_t language) { language_ = language; }
    /// The first shown row with this number; none when there is none.
    std::optional<std::string> Find(std::int32_t number) const;

private:
    std::vector<LangRow> rows_;
    std::int16_t language_ = 0;
};

} // namespace qel
