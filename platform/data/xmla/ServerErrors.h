#pragma once

#include "platform/value/AutomationError.h"

#include <cstdint>
#include <string>

namespace qel {

// Numbers of the errors of server cubes, after those of the embedded engine.

/// No connection, a host that is not found, a failed TLS handshake, a connection that was lost.
inline constexpr std::int32_t errorServerUnreachable = static_cast<std::int32_t>(0x80040E80);
inline constexpr std::int32_t errorServerTimeout = static_cast<std::int32_t>(0x80040E81);
/// The server wants other credentials, or denies the access that they give.
inline constexpr std::int32_t errorServerAccess = static_cast<std::int32_t>(0x80040E82);
/// An HTTP status, a redirection elsewhere, or an answer that is not XMLA, not whole or beyond the limits.
inline constexpr std::int32_t errorServerAnswer = static_cast<std::int32_t>(0x80040E83);
/// The server refused the request in its own words.
inline constexpr std::int32_t errorServerFault = static_cast<std::int32_t>(0x80040E84);

/// The source of the errors of server cubes.
inline constexpr const char* serverProvider = "OrmFuncQel4 server cubes";

/// An error of a server's cube.
[[nodiscard]] AutomationError ServerError(std::int32_t number, std::string description);

/// True when the error concerns the connection, not the request: the connection is opened again.
[[nodiscard]] bool IsLostServer(const AutomationError& error);

} // namespace qel
