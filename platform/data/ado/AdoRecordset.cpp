#include "platform/data/ado/AdoRecordset.h"

#include "platform/data/ado/AdoConnection.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

void AdoRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                        int cursorType, int lockType, int options) {
    recordset_.Call(L"Open",
                    ArgumentList(source, AdoConnection::ObjectOf(connection), std::int32_t{cursorType},
                                 std::int32_t{lockType}, std::int32_t{options}));
}

template <class Key>
DispatchObject AdoRecordset::Field(const Key& key) const {
    return recordset_.Child(L"Fields").Child(L"Item", ArgumentList(key));
}

std::int32_t AdoRecordset::FieldCount() const { return recordset_.Child(L"Fields").Number(L"Count"); }

std::string AdoRecordset::FieldName(std::int32_t index) const { return Field(index).Text(L"Name"); }

Variant AdoRecordset::FieldValue(std::int32_t index) const {
    return FromAutomation(Field(index).Property(L"Value").Get());
}

Variant AdoRecordset::FieldValueNamed(const std::string& name) const {
    return FromAutomation(Field(name).Property(L"Value").Get());
}

bool AdoRecordset::AtEnd() const { return recordset_.Number(L"EOF") != 0; }

} // namespace qel::windows
