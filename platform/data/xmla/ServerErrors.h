#pragma once

#include "platform/value/AutomationError.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel {

// Numbers of the errors of server cubes, after those of the embedded engine.

/// Connection refused or lost, host not found, failed TLS handshake.
inline constexpr std::int32_t errorServerUnreachable = static_cast<std::int32_t>(0x80040E80);
inline constexpr std::int32_t errorServerTimeout = static_cast<std::int32_t>(0x80040E81);
/// The server rejects the credentials, or denies access.
inline constexpr std::int32_t errorServerAccess = static_cast<std::int32_t>(0x80040E82);
/// An HTTP error status, a redirection to another server, or an answer that is not XMLA, is incomplete or
/// exceeds the limits.
inline constexpr std::int32_t errorServerAnswer = static_cast<std::int32_t>(0x80040E83);
/// A SOAP fault: the server refused the request with a message.
inline constexpr std::int32_t errorServerFault = static_cast<std::int32_t>(0x80040E84);

/// The source of the errors of server cubes.
inline constexpr const char* serverProvider = "OrmFuncQel4 server cubes";

/// An error of a server's cube.
[[nodiscard]] AutomationError ServerError(std::int32_t number, std::string description);

/// An answer beyond the limit on its size.
[[nodiscard]] AutomationError AnswerTooLarge();

/// A message of a server as it may be shown: of reasonable length, on one line, without control characters
/// and without those that change the direction of the text around it.
[[nodiscard]] std::string ShownMessage(std::string_view text);

/// True when the error concerns the connection, not the request: the connection is opened again.
[[nodiscard]] bool IsLostServer(const AutomationError& error);

} // namespace qel
