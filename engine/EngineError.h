#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace qel::engine {

/// What went wrong, one number a kind; docs/errors.md lists them. The numbers are HRESULTs of the
/// custom-interface facility (0x80040E00 and up), so a client of the component sees them as negative 32-bit
/// integers.
enum class ErrorKind : std::int32_t {
    FileNotFound =
        static_cast<std::int32_t>(0x80040E60), ///< no such file, or a folder, or no permission to read
    NotACubeFile = static_cast<std::int32_t>(0x80040E61), ///< readable, but without a cube file's signature
    UnsupportedVersion = static_cast<std::int32_t>(0x80040E62),
    DamagedFile = static_cast<std::int32_t>(0x80040E63), ///< truncated, or a checksum or an invariant fails
    UnknownCube = static_cast<std::int32_t>(0x80040E64),
    UnknownName = static_cast<std::int32_t>(0x80040E65), ///< dimension, hierarchy or level of a path
    UnknownMember = static_cast<std::int32_t>(0x80040E66),
    SyntaxError = static_cast<std::int32_t>(0x80040E67),
    InvalidExpression =
        static_cast<std::int32_t>(0x80040E68),        ///< well-formed, but a type or an argument is wrong
    TooLarge = static_cast<std::int32_t>(0x80040E69), ///< an answer or a nesting beyond the engine's limits
    InvalidDefinition = static_cast<std::int32_t>(0x80040E6A), ///< a cube definition's key or value
    InvalidData = static_cast<std::int32_t>(0x80040E6B),       ///< a line of a fact or dimension table
    CannotWrite =
        static_cast<std::int32_t>(0x80040E6C), ///< the cube file cannot be created or written in full
};

/// The engine's one exception. The message is complete: it names the file, the place in the statement or the
/// key.
class EngineError : public std::runtime_error {
public:
    EngineError(ErrorKind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}

    ErrorKind Kind() const { return kind_; }

private:
    ErrorKind kind_;
};

} // namespace qel::engine
