#pragma once

#include "platform/data/DataAccess.h"
#include "platform/windows/DispatchObject.h"

namespace qel::windows {

/// ADODB.Recordset.
class AdoRecordset : public Recordset {
public:
    AdoRecordset() : recordset_(DispatchObject::Create(L"ADODB.Recordset")) {}
    /// One that the provider opened itself.
    explicit AdoRecordset(DispatchObject recordset) : recordset_(std::move(recordset)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override;
    void Close() override { recordset_.Call(L"Close"); }
    std::int32_t FieldCount() const override;
    std::string FieldName(std::int32_t index) const override;
    Variant FieldValue(std::int32_t index) const override;
    Variant FieldValueNamed(const std::string& name) const override;
    bool AtEnd() const override;
    void MoveFirst() override { recordset_.Call(L"MoveFirst"); }
    void MoveNext() override { recordset_.Call(L"MoveNext"); }

private:
    template <class Key>
    DispatchObject Field(const Key& key) const;

    DispatchObject recordset_;
};

} // namespace qel::windows
