#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/embedded/FlattenedRows.h"

#include <optional>

namespace qel {

/// The flattened answer to one statement, or a table that is there already. Cursor, lock and options make no
/// difference: the rows are all there and cannot be changed.
class EmbeddedRecordset : public Recordset {
public:
    EmbeddedRecordset() = default;
    /// Open, on these rows.
    explicit EmbeddedRecordset(FlattenedRows rows) : answer_(std::move(rows)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override;
    void Close() override;
    std::int32_t FieldCount() const override;
    std::string FieldName(std::int32_t index) const override;
    Variant FieldValue(std::int32_t index) const override;
    bool AtEnd() const override;
    void MoveFirst() override;
    void MoveNext() override;

private:
    const FlattenedRows& Answer() const;
    std::size_t CheckedField(std::int32_t index) const;
    void RequireRow() const;

    std::optional<FlattenedRows> answer_;
    std::size_t row_ = 0;
};

} // namespace qel
