#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/settings/KnownServers.h"

#include <atomic>
#include <memory>

namespace qel::calc {

/// The servers that the person allows or refuses, cells and wizards alike.
const std::shared_ptr<KnownServers>& KnownServersOfUser();

/// Makes the data-access objects of those servers; they end their requests once the flag is true. Raises
/// AutomationError when the user's settings for servers are faulty.
std::unique_ptr<DataAccess> ServersOfUser(const std::shared_ptr<const std::atomic<bool>>& isStopped);

} // namespace qel::calc
