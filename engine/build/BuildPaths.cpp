#include "engine/build/BuildPaths.h"

#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <string>
#include <system_error>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace qel::engine {

namespace {

using std::filesystem::path;

bool IsSameFile(const path& left, const path& right) {
    std::error_code error;
    if (std::filesystem::equivalent(left, right, error) && !error) {
        return true;
    }
    // Files that do not exist yet can only be compared by name.
    std::error_code leftError, rightError;
    const path leftWhole = std::filesystem::weakly_canonical(std::filesystem::absolute(left), leftError);
    const path rightWhole = std::filesystem::weakly_canonical(std::filesystem::absolute(right), rightError);
    return !leftError && !rightError && leftWhole == rightWhole;
}

void RefuseSame(const path& written, const std::string& purpose, const path& other,
                const std::string& otherPurpose) {
    if (IsSameFile(written, other)) {
        throw EngineError(ErrorKind::CannotWrite, fmt::format("{}: cannot be written as {}: it is {}",
                                                              PathToUtf8(written), purpose, otherPurpose));
    }
}

void RefuseInputs(const path& written, const std::string& purpose, const path& definitionFile,
                  const Definition& definition) {
    RefuseSame(written, purpose, definitionFile, "the cube definition");
    for (const TableDefinition& table : definition.tables) {
        if (table.odbc) {
            continue;
        }
        RefuseSame(written, purpose, table.file, fmt::format("the file of the table \"{}\"", table.name));
    }
}

bool MayWrite(const path& file) {
#ifdef _WIN32
    constexpr int forWriting = 2;
    return ::_waccess(file.c_str(), forWriting) == 0;
#else
    return ::access(file.c_str(), W_OK) == 0;
#endif
}

/// The administrator may write any file, so that the mode is asked, too.
void RefuseProtected(const path& written) {
    std::error_code error;
    const auto status = std::filesystem::status(written, error);
    constexpr auto writable = std::filesystem::perms::owner_write | std::filesystem::perms::group_write |
                              std::filesystem::perms::others_write;
    if (!std::filesystem::exists(status)) {
        return;
    }
    if ((status.permissions() & writable) == std::filesystem::perms::none || !MayWrite(written)) {
        throw EngineError(ErrorKind::CannotWrite,
                          fmt::format("{}: is write-protected, so it is not replaced", PathToUtf8(written)));
    }
}

} // namespace

void CheckWrittenPaths(const BuildOptions& options, const Definition& definition) {
    if (!options.force) {
        RefuseProtected(options.output);
    }
    RefuseInputs(options.output, "the cube file", options.definition, definition);
    if (!options.skippedLines) {
        return;
    }
    const std::string purpose = "the file for skipped lines";
    RefuseInputs(*options.skippedLines, purpose, options.definition, definition);
    RefuseSame(*options.skippedLines, purpose, options.output, "the cube file");
}

} // namespace qel::engine
