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

/// The rows of a language table: the columns "lId" and "sId" and, as the third column, the text. A Null field
/// is an empty text. Raises AutomationError when a column is missing, or a language or number is not a whole
/// number.
std::vector<LangRow> LangRowsOf(const PersistedTable& table);

/// The open Lang.rs: all rows, filtered by language.
class LangTable {
public:
    /// Raises 3021 for a table without rows.
    explicit LangTable(std::vector<LangRow> rows);

    void Filter(std::int16_t language) { language_ = language; }
    /// The text of the first row with this number in the filtered language, or nullopt.
    std::optional<std::string> Find(std::int32_t number) const;

private:
    std::vector<LangRow> rows_;
    std::int16_t language_ = 0;
};

} // namespace qel
