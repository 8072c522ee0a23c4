#pragma once

#include "calc/AsyncResults.h"
#include "platform/data/xmla/settings/KnownServers.h"
#include "platform/dialog/calc/OfficeWindows.h"

namespace qel::calc {

/// Asks the person about servers that formulas name: once, always, or never. What is answered for good goes
/// to the user's servers.ini. Without an answer nothing is sent until the office is started again.
ServerPermission AskingThePerson(const office::Context& context, const std::shared_ptr<KnownServers>& servers,
                                 const std::shared_ptr<const std::atomic<bool>>& isHebrew);

/// The same question for one server, unless it is decided. Raises AutomationError for faulty settings, and
/// when the office cannot show the question.
void AskAboutServer(office::OfficeWindows& windows, KnownServers& servers, const ServerAddress& address,
                    bool isHebrew);

} // namespace qel::calc
