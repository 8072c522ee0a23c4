#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/HeldAnswer.h"
#include "platform/data/Rowset.h"

#include <functional>

namespace qel {

/// A recordset whose rows are all in memory and cannot be changed, so that cursor, lock and options make no
/// difference.
class InMemoryRecordset : public Recordset {
public:
    using Run = std::function<Rowset(const std::string& statement, const std::shared_ptr<Connection>&,
                                     const Progress& progress)>;

    /// Open at once when there are rows. `provider` is the source of its errors.
    InMemoryRecordset(const std::string& provider, Run run, std::optional<Rowset> rows = std::nullopt)
        : provider_(provider), run_(std::move(run)), rows_(provider, std::move(rows)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override;
    void ReportTo(const Progress& progress) override { progress_ = progress; }
    void Close() override { rows_.Close(); }
    std::int32_t FieldCount() const override;
    std::string FieldName(std::int32_t index) const override;
    Variant FieldValue(std::int32_t index) const override;
    bool AtEnd() const override;
    void MoveFirst() override;
    void MoveNext() override;
    std::optional<std::uint64_t> TotalRows() const override { return rows_.Get().total; }

private:
    std::size_t CheckedField(std::int32_t index) const;
    void RequireRow() const;

    std::string provider_;
    Run run_;
    Progress progress_;
    HeldAnswer<Rowset> rows_;
    std::size_t row_ = 0;
};

} // namespace qel
