#pragma once

#include "store/StoreEnvironment.h"

#include <string>

namespace qel {

/// The wizards' saved selections: 18 columns, one an argument of a value formula.
TableDefinition DataTblTable();
/// The name wizard's last choice: 7 columns.
TableDefinition QelNameTable();

/// The connection text of the local database.
std::string LocalDbConnectionText(StoreEnvironment& store);

/// Makes the local database with its two tables. Any failure is reported, and that the file exists already is
/// one; it is left as it is. Raises nothing.
void CreateLocalDb(StoreEnvironment& store);

/// Opens the local database, which must exist. Raises AutomationError, naming the file and the fault.
std::unique_ptr<DatabaseConnection> OpenLocalDb(StoreEnvironment& store);

} // namespace qel
