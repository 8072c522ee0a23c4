#pragma once

#include "platform/database/DatabaseConnection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The port through which the local database is created and opened. Creation has the shape of ADOX.

namespace qel {

/// With ADO's numbers.
enum class ColumnType : std::uint8_t { Date = 7, Text = 202 };

/// ADOX's adColNullable.
inline constexpr std::int32_t columnNullable = 2;

struct TableColumn {
    std::string name;
    ColumnType type = ColumnType::Text;
    std::int32_t definedSize = 0; ///< in characters; 0 for the provider's default
    std::int32_t attributes = columnNullable;
};

struct TableDefinition {
    std::string name;
    std::vector<TableColumn> columns;
};

/// ADOX's Catalog. Every operation raises AutomationError with the provider's number and description.
class DatabaseCatalog {
public:
    virtual ~DatabaseCatalog() = default;
    /// Creates an empty database. Raises for a file that exists, whatever it holds, and leaves it unchanged.
    virtual void Create(const std::string& connectionString) = 0;
    virtual void AppendTable(const TableDefinition& table) = 0;
};

class DatabaseEngine {
public:
    virtual ~DatabaseEngine() = default;
    /// A display name, such as "SQLite 3.40.1".
    virtual std::string Name() const = 0;
    /// Raises when the engine cannot be reached.
    [[nodiscard]] virtual std::unique_ptr<DatabaseCatalog> NewCatalog() = 0;
    /// Opens a database that exists. Raises AutomationError, naming the file and the fault, for one that is
    /// missing, damaged or another engine's.
    virtual std::unique_ptr<DatabaseConnection> Open(const std::string& connectionString) = 0;
};

} // namespace qel
