#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/ServerSession.h"

#include <memory>

namespace qel {

/// The session's cube. It and everything reached through it keep the session open.
[[nodiscard]] std::unique_ptr<CubeDef> MakeXmlaCube(const std::shared_ptr<ServerSession>& session);

} // namespace qel
