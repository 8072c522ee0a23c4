#include "workbook/ZipFile.h"

#include "workbook/WorkbookError.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <zlib.h>

namespace qel {

namespace {

/// Of all parts together: a few million cells.
constexpr std::uint64_t mostUnpacked = std::uint64_t{1} << 28U;
constexpr std::size_t endSize = 22, entrySize = 46, headerSize = 30;
constexpr std::uint32_t stored = 0, deflated = 8;

/// Little-endian numbers of a record, whose length was checked.
std::uint32_t NumberAt(std::string_view record, std::size_t place, std::size_t bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes; i > 0; --i) {
        number = number << 8U | static_cast<unsigned char>(record[place + i - 1]);
    }
    return number;
}

[[noreturn]] void Damaged() { throw WorkbookError("the archive is damaged"); }

struct Inflater {
    Inflater() {
        if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Inflater() { inflateEnd(&stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    z_stream stream{};
};

/// Exactly `size` bytes, or the archive is damaged.
std::string Inflated(std::string& packed, std::uint64_t size) {
    Inflater inflater;
    z_stream& stream = inflater.stream;
    std::string bytes(static_cast<std::size_t>(size) + 1, '\0'); // a byte more tells a part that is longer
    stream.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    if (inflate(&stream, Z_FINISH) != Z_STREAM_END || stream.total_out != size) {
        Damaged();
    }
    bytes.pop_back();
    return bytes;
}

} // namespace

ZipFile::ZipFile(const std::filesystem::path& path) : file_(path, std::ios::binary) {
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::not_found) {
        throw WorkbookError("there is no such file");
    }
    if (!file_ || type != std::filesystem::file_type::regular) {
        throw WorkbookError("it cannot be read");
    }
    file_.seekg(0, std::ios::end);
    fileSize_ = static_cast<std::uint64_t>(file_.tellg());
    constexpr std::size_t signature = 4;
    const std::string start = Bytes(0, std::min<std::uint64_t>(fileSize_, signature));
    if (start == "\xD0\xCF\x11\xE0") {
        throw WorkbookError(
            "it is of the old form .xls or needs a password; save it as .xlsx or .ods without one");
    }
    if (!start.starts_with("PK")) {
        throw WorkbookError("it is no .xlsx, .xlsm or .ods file");
    }
    ReadDirectory();
}

std::string ZipFile::Bytes(std::uint64_t place, std::uint64_t count) {
    if (place > fileSize_ || count > fileSize_ - place) {
        Damaged();
    }
    std::string bytes(static_cast<std::size_t>(count), '\0');
    file_.seekg(static_cast<std::streamoff>(place));
    if (!file_.read(bytes.data(), static_cast<std::streamsize>(count))) {
        Damaged();
    }
    return bytes;
}

void ZipFile::ReadDirectory() {
    constexpr std::uint64_t longestComment = 65535;
    const std::uint64_t tailSize = std::min<std::uint64_t>(fileSize_, endSize + longestComment);
    const std::string tail = Bytes(fileSize_ - tailSize, tailSize);
    const std::size_t end = tail.rfind("PK\5\6");
    if (end == std::string::npos || tail.size() - end < endSize) {
        Damaged();
    }
    const std::string_view record = std::string_view(tail).substr(end);
    const std::uint32_t count = NumberAt(record, 10, 2), size = NumberAt(record, 12, 4),
                        place = NumberAt(record, 16, 4);
    if (place == 0xFFFFFFFFU || count == 0xFFFFU) {
        throw WorkbookError("it is an archive of the form ZIP64, which is not read");
    }
    ReadEntries(Bytes(place, size), count);
}

void ZipFile::ReadEntries(const std::string& directory, std::size_t count) {
    std::string_view rest = directory;
    for (std::size_t i = 0; i < count; ++i) {
        if (rest.size() < entrySize || !rest.starts_with("PK\1\2")) {
            Damaged();
        }
        const std::size_t nameSize = NumberAt(rest, 28, 2);
        const std::size_t wholeSize = entrySize + nameSize + NumberAt(rest, 30, 2) + NumberAt(rest, 32, 2);
        if (wholeSize > rest.size()) {
            Damaged();
        }
        Part part;
        part.flags = NumberAt(rest, 8, 2);
        part.method = NumberAt(rest, 10, 2);
        part.checksum = NumberAt(rest, 16, 4);
        part.packedSize = NumberAt(rest, 20, 4);
        part.size = NumberAt(rest, 24, 4);
        part.place = NumberAt(rest, 42, 4);
        parts_.emplace(rest.substr(entrySize, nameSize), part);
        rest.remove_prefix(wholeSize);
    }
}

std::string ZipFile::Read(const std::string& name) {
    const auto found = parts_.find(name);
    if (found == parts_.end()) {
        throw WorkbookError(fmt::format("it has no part {}", name));
    }
    const Part& part = found->second;
    constexpr std::uint32_t encrypted = 1;
    if ((part.flags & encrypted) != 0) {
        throw WorkbookError("it needs a password; save it without one");
    }
    unpacked_ += part.size;
    if (unpacked_ > mostUnpacked) {
        throw WorkbookError(fmt::format("it has more than {} MiB unpacked", mostUnpacked >> 20U));
    }
    const std::string header = Bytes(part.place, headerSize);
    if (!header.starts_with("PK\3\4") || (part.method != stored && part.method != deflated)) {
        Damaged();
    }
    const std::uint64_t data = part.place + headerSize + NumberAt(header, 26, 2) + NumberAt(header, 28, 2);
    constexpr std::uint64_t mostGain = 1040; // of what deflate packs best
    std::string bytes = Bytes(data, part.packedSize);
    if (part.size / mostGain > part.packedSize) {
        Damaged();
    }
    if (part.method == deflated) {
        bytes = Inflated(bytes, part.size);
    }
    if (bytes.size() != part.size || crc32(0, reinterpret_cast<const Bytef*>(bytes.data()),
                                           static_cast<uInt>(bytes.size())) != part.checksum) {
        Damaged();
    }
    return bytes;
}

} // namespace qel
