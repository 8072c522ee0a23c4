#include "platform/database/jet/JetRows.h"

#include "platform/database/jet/JetCatalog.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

namespace {

constexpr auto unspecifiedError = static_cast<std::int32_t>(0x80004005);
constexpr std::int32_t optionsUnspecified = -1;
constexpr std::int32_t staticCursor = 3;
constexpr std::int32_t optimisticLock = 3;

bool AtEnd(const DispatchObject& recordset) { return recordset.Number(L"EOF") != 0; }

DispatchObject FieldAt(const DispatchObject& fields, std::size_t index) {
    return fields.Child(L"Item", ArgumentList(static_cast<std::int32_t>(index)));
}

TableRow CurrentRow(const DispatchObject& fields) {
    const auto count = static_cast<std::size_t>(fields.Number(L"Count"));
    TableRow row;
    for (std::size_t i = 0; i < count; ++i) {
        row.push_back(FromAutomation(FieldAt(fields, i).Property(L"Value").Get()));
    }
    return row;
}

void DeleteAll(const DispatchObject& recordset) {
    for (; !AtEnd(recordset); recordset.Call(L"MoveNext")) {
        recordset.Call(L"Delete");
    }
}

/// Jet columns reject empty texts unless they were created to allow them.
OwnedVariant FieldValue(const Variant& value) {
    const bool isEmptyText = value.Is<std::string>() && value.As<std::string>().empty();
    return ToAutomation(isEmptyText ? Variant(Null{}) : value);
}

void AddRow(const DispatchObject& recordset, const TableRow& row) {
    recordset.Call(L"AddNew");
    const DispatchObject fields = recordset.Child(L"Fields");
    for (std::size_t i = 0; i < row.size(); ++i) {
        FieldAt(fields, i).Put(L"Value", FieldValue(row[i]));
    }
    recordset.Call(L"Update");
}

} // namespace

JetRows::JetRows(const std::string& connectionString)
    : connection_(DispatchObject::Create(L"ADODB.Connection")) {
    RefuseOtherEngine(connectionString, unspecifiedError);
    connection_.Call(L"Open", ArgumentList(connectionString, "", "", optionsUnspecified));
}

DispatchObject JetRows::OpenTable(const std::string& table) const {
    auto recordset = DispatchObject::Create(L"ADODB.Recordset");
    recordset.Call(L"Open",
                   ArgumentList(table, connection_, staticCursor, optimisticLock, optionsUnspecified));
    return recordset;
}

std::vector<TableRow> JetRows::ReadRows(const std::string& table) {
    const DispatchObject recordset = OpenTable(table);
    const DispatchObject fields = recordset.Child(L"Fields");
    std::vector<TableRow> rows;
    for (; !AtEnd(recordset); recordset.Call(L"MoveNext")) {
        rows.push_back(CurrentRow(fields));
    }
    recordset.Call(L"Close");
    return rows;
}

void JetRows::ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) {
    connection_.Call(L"BeginTrans");
    try {
        const DispatchObject recordset = OpenTable(table);
        DeleteAll(recordset);
        for (const TableRow& row : rows) {
            AddRow(recordset, row);
        }
        recordset.Call(L"Close");
        connection_.Call(L"CommitTrans");
    } catch (...) {
        try {
            connection_.Call(L"RollbackTrans");
        } catch (
            const AutomationError&) { // NOLINT(bugprone-empty-catch): the first failure is the one to tell
        }
        throw;
    }
}

} // namespace qel::windows
