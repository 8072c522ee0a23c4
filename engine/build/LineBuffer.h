#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <utility>

namespace qel::engine {

/// A sliding window over a text file for a reader that takes physical lines (ended by LF, CR LF or CR) in
/// sequence and may go back to the start of its record.
class LineBuffer {
public:
    /// `name` is the file's, for messages.
    LineBuffer(std::istream& input, std::string name) : input_(input), name_(std::move(name)) {}

    /// The line that starts `offset` bytes after the window's start, including its line end; empty at the end
    /// of the file. Valid until the next call. Raises EngineError (InvalidData) for a line of over 16 MiB, so
    /// that a file without lines does not fill the memory.
    std::string_view LineAt(std::size_t offset);
    /// The first bytes of the window. LineAt must have reached them.
    std::string_view First(std::size_t size) const { return std::string_view(buffer_).substr(start_, size); }
    /// Advances the window's start.
    void Drop(std::size_t size) { start_ += size; }
    /// Continues where the input now stands, `offset` bytes after the file's start.
    void Restart(std::uint64_t offset);
    /// The window's offset in the file.
    std::uint64_t Position() const { return discarded_ + start_; }

private:
    void ReadMore();

    std::istream& input_;
    std::string name_;
    std::string buffer_;
    std::size_t start_ = 0;
    std::uint64_t discarded_ = 0; ///< bytes of the file before the buffer
    bool isAtEnd_ = false;
};

} // namespace qel::engine
