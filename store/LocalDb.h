#pragma once

#include "store/StoreEnvironment.h"

#include <string>

namespace qel {

/// The function wizard's saved selections: 18 columns, one per argument of a value formula.
TableDefinition DataTblTable();
/// The name wizard's last choice: 7 columns.
TableDefinition QelNameTable();

/// The connection text of the local database. Raises AutomationError where its folder is not known.
std::string LocalDbConnectionText(StoreEnvironment& store);

/// Creates the local database with its two tables. Every failure is reported, including an existing file,
/// which is left unchanged. Raises nothing.
void CreateLocalDb(StoreEnvironment& store);

/// Opens the local database, which must exist. Raises AutomationError, naming the file and the fault.
std::unique_ptr<DatabaseConnection> OpenLocalDb(StoreEnvironment& store);

} // namespace qel
