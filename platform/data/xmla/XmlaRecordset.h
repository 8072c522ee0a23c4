#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/RowsetAnswer.h"

#include <optional>

namespace qel {

/// The tabular answer to one statement, or a rowset that is there already. Cursor, lock and options make no
/// difference: the rows are all there and cannot be changed.
class XmlaRecordset : public Recordset {
public:
    XmlaRecordset() = default;
    /// Open, on these rows.
    explicit XmlaRecordset(RowsetAnswer rows) : answer_(std::move(rows)) {}

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
    const RowsetAnswer& Answer() const;
    std::size_t CheckedField(std::int32_t index) const;
    void RequireRow() const;

    std::optional<RowsetAnswer> answer_;
    std::size_t row_ = 0;
};

} // namespace qel
