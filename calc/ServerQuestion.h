#pragma once

#include "calc/AsyncResults.h"
#include "platform/data/xmla/settings/KnownServers.h"
#include "platform/dialog/calc/OfficeWindows.h"

namespace qel::calc {

/// Asks the person about servers that formulas name: once, always, or never. What is answered for good goes
/// to the user's servers.ini. Without an answer nothing is sent until the office is started again.
ServerPermission AskingThePerson(const office::Context& context, const std::shared_ptr<KnownServers>& servers,
                                 const std::shared_ptr<const std::atomic<bool>>& isHebrew);

} // namespace qel::calc
