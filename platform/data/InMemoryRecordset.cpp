#include "platform/data/InMemoryRecordset.h"

#include "platform/data/DataAccessErrors.h"

namespace qel {

void InMemoryRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                             int /*cursorType*/, int /*lockType*/, int /*options*/) {
    rows_.Open([&] { return run_(source, connection, progress_); });
    row_ = 0;
}

std::int32_t InMemoryRecordset::FieldCount() const {
    return static_cast<std::int32_t>(rows_.Get().fields.size());
}

std::size_t InMemoryRecordset::CheckedField(std::int32_t index) const {
    if (index < 0 || index >= FieldCount()) {
        throw AutomationError(
            errorItemNotFound,
            "Item cannot be found in the collection corresponding to the requested name or ordinal.",
            provider_);
    }
    return static_cast<std::size_t>(index);
}

void InMemoryRecordset::RequireRow() const {
    if (AtEnd()) {
        throw AutomationError(errorNoCurrentRow, "There is no current row: the recordset is at its end.",
                              provider_);
    }
}

std::string InMemoryRecordset::FieldName(std::int32_t index) const {
    return rows_.Get().fields[CheckedField(index)];
}

Variant InMemoryRecordset::FieldValue(std::int32_t index) const {
    const auto field = CheckedField(index);
    RequireRow();
    return rows_.Get().rows[row_][field];
}

bool InMemoryRecordset::AtEnd() const { return row_ >= rows_.Get().rows.size(); }

void InMemoryRecordset::MoveFirst() {
    row_ = 0;
    RequireRow();
}

void InMemoryRecordset::MoveNext() {
    RequireRow();
    ++row_;
}

} // namespace qel
