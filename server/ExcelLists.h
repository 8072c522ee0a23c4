#pragma once

#include "server/RegistryTree.h"

namespace qel::server {

/// The current user's part of the registry where Excel keeps its lists.
RegistryTree OfficeOfUser();

/// Adds the worksheet functions to the automation add-ins of each Excel that the user has started once, and
/// the ribbon to the COM add-ins of all versions. Raises as RegistryTree.
void AddToExcel(const RegistryTree& office);

/// Removes both, also where Excel or the user has added them. The entries of others move up, because Excel
/// numbers them without gaps. Raises as RegistryTree.
void RemoveFromExcel(const RegistryTree& office);

} // namespace qel::server
