#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>

namespace qel {

/// The parts of a ZIP archive, read from anybody's file: every length is checked, and a part is held to a
/// largest size. Names are only compared, never used as paths.
class ZipFile {
public:
    /// Raises WorkbookError for a file that cannot be read or is no archive.
    explicit ZipFile(const std::filesystem::path& path);

    bool Has(const std::string& name) const { return parts_.contains(name); }
    /// Unpacked. Raises WorkbookError for a part that is missing, damaged, encrypted or too large.
    std::string Read(const std::string& name);

private:
    struct Part {
        std::uint32_t flags = 0, method = 0, checksum = 0;
        std::uint64_t packedSize = 0, size = 0, place = 0;
    };

    std::string Bytes(std::uint64_t place, std::uint64_t count);
    void ReadDirectory();
    void ReadEntries(const std::string& directory, std::size_t count);

    std::ifstream file_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t unpacked_ = 0; ///< of all parts that were read
    std::map<std::string, Part> parts_;
};

} // namespace qel
