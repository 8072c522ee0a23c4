#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/ServerSession.h"

#include <memory>

namespace qel {

/// The session's cube; it, and everything reached through it, keeps the session open.
std::unique_ptr<CubeDef> MakeXmlaCube(const std::shared_ptr<ServerSession>& session);

} // namespace qel
