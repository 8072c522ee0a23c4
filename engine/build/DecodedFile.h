#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>
#include <streambuf>
#include <string>

namespace qel::engine {

/// A text file in any encoding, read as UTF-8. What is no character of the encoding becomes a byte that is
/// not UTF-8.
class DecodedFile {
public:
    /// `encoding` is a name that the system knows; an empty one means UTF-16 for a file with its byte order
    /// mark, otherwise UTF-8. Raises EngineError: FileNotFound; InvalidData for a workbook, or an encoding
    /// that this machine cannot read.
    DecodedFile(const std::filesystem::path& path, const std::string& encoding);

    /// Whether reading can go on at the start of any line of a file in this encoding.
    static bool CanSeek(const std::filesystem::path& path, const std::string& encoding);

    std::istream& Stream() { return *stream_; }
    /// Lets the stream go on at a byte of the file. CanSeek must hold.
    void SeekTo(std::uint64_t offset);
    /// In bytes, as it stands on disk; 0 when it is unknown.
    std::uint64_t Size() const { return size_; }

private:
    std::ifstream file_;
    std::uint64_t size_;
    std::string encoding_; ///< of the bytes
    std::unique_ptr<std::streambuf> decoder_;
    std::unique_ptr<std::istream> decoded_;
    std::istream* stream_;
};

} // namespace qel::engine
