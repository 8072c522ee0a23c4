#include "platform/database/jet/JetCatalog.h"

#include "platform/database/DatabaseFile.h"
#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

namespace qel::windows {

namespace {

/// Jet's own number for a database that exists already.
constexpr auto databaseExists = static_cast<std::int32_t>(0x80040E17);

} // namespace

void RefuseOtherEngine(const std::string& connectionString, std::int32_t number) {
    const auto path = DatabaseFileOf(connectionString);
    if (IdentifyDatabaseFile(path) == DatabaseFileKind::Sqlite) {
        throw AutomationError(
            number,
            fmt::format(
                "The local database '{}' was made by SQLite, and this machine keeps it with Microsoft "
                "Jet; it is left unchanged. Set MDBPath to another folder, or move the file away.",
                PathToUtf8(path)));
    }
}

void JetCatalog::Create(const std::string& connectionString) {
    RefuseOtherEngine(connectionString, databaseExists);
    catalog_.Call(L"Create", ArgumentList(connectionString));
}

void JetCatalog::AppendTable(const TableDefinition& table) {
    const auto object = DispatchObject::Create(L"ADOX.Table");
    object.Put(L"Name", ToArgument(table.name));
    const DispatchObject columns = object.Child(L"Columns");
    for (const TableColumn& column : table.columns) {
        columns.Call(L"Append",
                     ArgumentList(column.name, static_cast<std::int32_t>(column.type), column.definedSize));
        columns.Child(L"Item", ArgumentList(column.name)).Put(L"Attributes", ToArgument(column.attributes));
    }
    catalog_.Child(L"Tables").Call(L"Append", ArgumentList(object));
}

} // namespace qel::windows
