#include "platform/value/AutomationDate.h"
#include "workbook/WorkbookError.h"
#include "workbook/WorkbookFile.h"
#include "workbook/cells/SheetCalls.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <zlib.h>

// Reads any bytes as a workbook and all its formulas. Bytes that do not begin like an archive are the
// archive's parts, each below a line "@NAME": few inputs would keep checksums and lengths right.

namespace {

std::string LittleEndian(std::size_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i, number >>= 8U) {
        text += static_cast<char>(number & 0xFFU);
    }
    return text;
}

std::string ArchiveOf(std::string_view parts) {
    std::string archive, directory;
    std::size_t count = 0;
    while (parts.starts_with('@')) {
        const std::size_t line = std::min(parts.find('\n'), parts.size() - 1);
        const std::size_t end = std::min(parts.find("\n@", line), parts.size() - 1);
        const std::string name(parts.substr(1, line - 1)), content(parts.substr(line + 1, end - line));
        parts.remove_prefix(end + 1);
        const std::size_t checksum =
            crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size()));
        const std::string sizes = LittleEndian(0, 8) + LittleEndian(checksum, 4) +
                                  LittleEndian(content.size(), 4) + LittleEndian(content.size(), 4) +
                                  LittleEndian(name.size(), 2) + LittleEndian(0, 2);
        for (const auto& field : {std::string("PK\1\2"), LittleEndian(20, 2), LittleEndian(20, 2), sizes,
                                  LittleEndian(0, 10), LittleEndian(archive.size(), 4), name}) {
            directory += field;
        }
        for (const auto& field : {std::string("PK\3\4"), LittleEndian(20, 2), sizes, name, content}) {
            archive += field;
        }
        ++count;
    }
    return archive + directory + "PK\5\6" + LittleEndian(0, 4) + LittleEndian(count, 2) +
           LittleEndian(count, 2) + LittleEndian(directory.size(), 4) + LittleEndian(archive.size(), 4) +
           LittleEndian(0, 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // In memory: a slow disk is no finding.
    static const int memory = ::memfd_create("workbook", 0);
    static const std::filesystem::path file = "/proc/self/fd/" + std::to_string(memory);
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::ofstream(file, std::ios::binary)
        << (bytes.starts_with("PK") ? std::string(bytes) : ArchiveOf(bytes));
    try {
        const qel::WorkbookContent workbook = qel::ReadWorkbook(file);
        for (const qel::SheetCall& call : qel::FindSheetCalls(workbook, {})) {
            if (call.call.has_value() != call.fault.empty() || call.sheet >= workbook.sheets.size()) {
                std::abort();
            }
        }
    } catch (const qel::WorkbookError&) {
        return 0; // an expected error
    }
    return 0;
}
