#include "tests/helpers/automation/RecordsetDouble.h"

#include "platform/data/InMemoryRecordset.h"

namespace qel::test {

namespace {

ComPointer<IDispatch> MakeField(const std::shared_ptr<Recordset>& rows, std::int32_t index) {
    return MakeObject([&](DispatchDouble& field) {
        field.Value(L"Name", rows->FieldName(index));
        field.Property(L"Value", [rows, index] { return rows->FieldValue(index); });
    });
}

ComPointer<IDispatch> MakeNamedField(const std::shared_ptr<Recordset>& rows, const std::string& name) {
    return MakeObject([&](DispatchDouble& field) { field.Value(L"Value", rows->FieldValueNamed(name)); });
}

} // namespace

void DefineRows(DispatchDouble& object, const std::shared_ptr<Recordset>& rows) {
    object.Method(L"MoveFirst", [rows](const Inputs&) { rows->MoveFirst(); });
    object.Method(L"MoveNext", [rows](const Inputs&) { rows->MoveNext(); });
    object.Property(L"EOF", [rows] { return Variant(rows->AtEnd()); });
    object.Child(L"Fields", [rows] {
        return MakeCollection(rows->FieldCount(), [rows](const Variant& key) {
            return key.Is<std::string>() ? MakeNamedField(rows, key.As<std::string>())
                                         : MakeField(rows, key.As<std::int32_t>());
        });
    });
}

std::shared_ptr<Recordset> RecordsetOf(Rowset rows) {
    return std::make_shared<InMemoryRecordset>("double", nullptr, std::move(rows));
}

} // namespace qel::test
