#pragma once

#include "platform/data/xmla/settings/KnownServers.h"

#include <memory>

namespace qel {

/// The limits of the section [Limits] of the known servers' file, and the rights of those servers. A missing
/// file sets no limits. They are read at once; one that is not a positive whole number raises
/// AutomationError. Rights are read on use.
ServerOptions ReadServerOptions(const std::shared_ptr<const KnownServers>& known);

} // namespace qel
