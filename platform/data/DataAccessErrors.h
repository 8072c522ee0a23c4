#pragma once

#include <cstdint>

// Numbers of the errors that data-access objects raise, whichever provider is behind them.

namespace qel {

/// ADO's own numbers for wrong uses of its objects.
inline constexpr std::int32_t errorNoCurrentRow = 3021;
inline constexpr std::int32_t errorItemNotFound = 3265;
inline constexpr std::int32_t errorObjectClosed = 3704;
inline constexpr std::int32_t errorObjectOpen = 3705;
inline constexpr std::int32_t errorInvalidConnection = 3709;
/// A connection text that cannot be read (DB_E_BADINITSTRING).
inline constexpr std::int32_t errorBadConnectionText = static_cast<std::int32_t>(0x80040E73);
/// A statement without text (DB_E_NOCOMMAND).
inline constexpr std::int32_t errorNoStatement = static_cast<std::int32_t>(0x80040E0C);
/// A data source or provider that this build has no reader for.
inline constexpr std::int32_t errorNotSupported = static_cast<std::int32_t>(0x80040E6F);
/// No cube or catalog of the name that the connection text has.
inline constexpr std::int32_t errorUnknownCube = static_cast<std::int32_t>(0x80040E64);
/// The user has not allowed to send anything to the server.
inline constexpr std::int32_t errorServerNotAllowed = static_cast<std::int32_t>(0x80040E85);

} // namespace qel
