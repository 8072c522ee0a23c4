#include "platform/tables/ado/AdoTableReader.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

namespace qel::windows {

namespace {

constexpr std::int32_t providerNotFound = 3706;
constexpr std::int32_t byDefault = -1; // cursor, lock and options

PersistedTable RowsOf(const DispatchObject& recordset) {
    const DispatchObject fields = recordset.Child(L"Fields");
    std::vector<DispatchObject> columns;
    PersistedTable table;
    for (std::int32_t i = 0; i < fields.Number(L"Count"); ++i) {
        columns.push_back(fields.Child(L"Item", ArgumentList(i)));
        table.columns.push_back(columns.back().Text(L"Name"));
    }
    for (; recordset.Number(L"EOF") == 0; recordset.Call(L"MoveNext")) {
        auto& row = table.rows.emplace_back();
        for (const DispatchObject& column : columns) {
            row.push_back(FromAutomation(column.Property(L"Value").Get()));
        }
    }
    return table;
}

} // namespace

bool AdoTableReader::IsInstalled() { return CanLoadClass(L"MSPersist"); }

PersistedTable AdoTableReader::Read(const std::string& path) {
    try {
        if (!IsInstalled()) {
            throw AutomationError(providerNotFound, "the provider MSPersist is not installed");
        }
        const auto recordset = DispatchObject::Create(L"ADODB.Recordset");
        recordset.Call(L"Open", ArgumentList(path, "Provider=MSPersist", byDefault, byDefault, byDefault));
        PersistedTable table = RowsOf(recordset);
        recordset.Call(L"Close");
        return table;
    } catch (const AutomationError& error) {
        throw AutomationError(error.Number(),
                              fmt::format("'{}' cannot be read: {}", path, error.Description()),
                              error.Source());
    }
}

} // namespace qel::windows
