#pragma once

#include <stdexcept>
#include <string>

namespace qel::engine {

/// What went wrong.
enum class ErrorKind {
    FileNotFound, ///< no such file, or a folder, or no permission to read
    NotACubeFile, ///< readable, but without a cube file's signature
    UnsupportedVersion,
    DamagedFile, ///< truncated, or a checksum or an invariant fails
    UnknownCube,
    UnknownName, ///< dimension, hierarchy or level of a path
    UnknownMember,
    SyntaxError,
    InvalidExpression, ///< well-formed, but a type or an argument is wrong
    TooLarge,          ///< an answer or a nesting beyond the engine's limits
    InvalidDefinition, ///< a cube definition's key or value
    InvalidData,       ///< a line of a fact or dimension table
    CannotWrite,       ///< the cube file cannot be created or written in full
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
