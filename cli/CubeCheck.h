#pragma once

#include "cli/CommandContext.h"
#include "platform/data/DataAccess.h"

#include <chrono>
#include <string>

namespace qel {

/// Milliseconds since it was made.
class Stopwatch {
public:
    std::string Text() const;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Tells whether formulas can read a cube of a file or a server: its layout, its dates and one value. What is
/// missing fails the command.
class CubeCheck {
public:
    /// `source` is the cube file or the server's address.
    CubeCheck(std::string source, CommandContext& context) : source_(std::move(source)), context_(context) {}

    /// The value is one of `measure`. Raises what the provider raises.
    void Print(const std::string& cubeName, const std::string& measure);
    void Line(std::string_view label, std::string_view text);
    void Fault(std::string_view text);

private:
    bool PrintDates(const CubeDef& cube);
    void PrintFormula(const std::string& cubeName, const std::string& measure, const CubeDef& cube);

    std::string source_;
    CommandContext& context_;
};

} // namespace qel
