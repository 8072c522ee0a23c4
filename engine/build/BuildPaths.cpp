#include "engine/build/BuildPaths.h"

#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <string>
#include <system_error>

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
        RefuseSame(written, purpose, table.file, fmt::format("the file of the table \"{}\"", table.name));
    }
}

} // namespace

void CheckWrittenPaths(const BuildOptions& options, const Definition& definition) {
    RefuseInputs(options.output, "the cube file", options.definition, definition);
    if (!options.skippedLines) {
        return;
    }
    const std::string purpose = "the file for skipped lines";
    RefuseInputs(*options.skippedLines, purpose, options.definition, definition);
    RefuseSame(*options.skippedLines, purpose, options.output, "the cube file");
}

} // namespace qel::engine
