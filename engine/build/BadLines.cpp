#include "engine/build/BadLines.h"

#include "qel/engine/EngineError.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

namespace qel::engine {

namespace {

void WriteLine(std::ofstream& file, std::string_view line) {
    file << line;
    if (line.empty() || (line.back() != '\n' && line.back() != '\r')) {
        file << '\n';
    }
}

/// A field that may hold anything.
std::string QuotedField(const std::string& text) { return "\"" + ReplaceAll(text, "\"", "\"\"") + "\""; }

} // namespace

void BadLines::CreateFile() {
    file_.open(*path_, std::ios::binary | std::ios::trunc);
    if (!file_) {
        throw EngineError(ErrorKind::CannotWrite, fmt::format("{}: cannot be written: {}", PathToUtf8(*path_),
                                                              std::generic_category().message(errno)));
    }
}

void BadLines::Report(const RecordReader& reader, const std::string& column, const std::string& fault) {
    if (!path_) {
        const std::string place = column.empty() ? "" : ", column " + column;
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}, {} {}{}: {}", reader.Name(), reader.RecordName(), reader.Number(),
                                      place, fault));
    }
    if (written_.empty()) {
        CreateFile();
    }
    if (!written_.emplace(reader.Name(), reader.Number()).second) {
        return;
    }
    if (lastFile_ != reader.Name()) {
        file_ << "skipped_line" << reader.Delimiter() << "skipped_reason" << reader.Delimiter();
        WriteLine(file_, reader.HeaderText());
    }
    lastFile_ = reader.Name();
    file_ << reader.Number() << reader.Delimiter()
          << QuotedField(column.empty() ? fault : fmt::format("column {}: {}", column, fault))
          << reader.Delimiter();
    WriteLine(file_, reader.Raw());
}

void BadLines::Finish() {
    if (written_.empty()) {
        return;
    }
    file_.close();
    if (!file_) {
        throw EngineError(ErrorKind::CannotWrite,
                          fmt::format("{}: not all skipped lines could be written", PathToUtf8(*path_)));
    }
}

} // namespace qel::engine
