#include "engine/build/HeaderLine.h"

#include "engine/build/CsvFields.h"
#include "engine/build/DecodedFile.h"
#include "engine/build/LineBuffer.h"
#include "text/CaseFold.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <map>

namespace qel::engine {

namespace {

constexpr std::size_t linesToSee = 50, bytesToSee = 1 << 20;

std::vector<std::string> FirstLines(std::istream& text, const std::string& name) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    LineBuffer buffer(text, name);
    std::vector<std::string> lines;
    while (lines.size() < linesToSee && buffer.Position() < bytesToSee) {
        std::string_view line = buffer.LineAt(0);
        const std::size_t size = line.size();
        if (size == 0) {
            break;
        }
        if (lines.empty() && line.starts_with(utf8Mark)) {
            line.remove_prefix(utf8Mark.size());
        }
        lines.emplace_back(line);
        buffer.Drop(size);
    }
    return lines;
}

/// How the lines of a table are divided.
struct TableShape {
    char delimiter = ',';
    std::size_t fields = 0;
};

/// The division that most lines share.
TableShape CommonShape(const std::vector<std::string>& lines) {
    TableShape best;
    std::size_t most = 0;
    for (const char delimiter : {',', ';', '\t', '|'}) {
        std::map<std::size_t, std::size_t> linesByCount;
        for (const std::string& line : lines) {
            ++linesByCount[CsvFieldsOf(line, delimiter).size()];
        }
        for (const auto& [fields, count] : linesByCount) {
            if (fields > 1 && count * (fields - 1) > most) {
                best = {delimiter, fields};
                most = count * (fields - 1);
            }
        }
    }
    return best;
}

bool IsNumber(std::string_view field) {
    return field.find_first_of("0123456789") != std::string_view::npos &&
           field.find_first_not_of("0123456789.,/-+: ()\"") == std::string_view::npos;
}

/// Whether the fields can be the names of columns: most are there, and none is a number or a date.
bool IsHeader(const std::vector<std::string_view>& fields) {
    const auto isThere = [](std::string_view field) { return !Trimmed(field).empty() && field != "\"\""; };
    const auto there = std::count_if(fields.begin(), fields.end(), isThere);
    return static_cast<std::size_t>(there) * 2 > fields.size() &&
           std::none_of(fields.begin(), fields.end(), IsNumber);
}

bool IsReadOver(std::string_view line) {
    return Trimmed(line).find_first_not_of("\r\n\t ") == std::string::npos ||
           EqualIgnoringCase(line.substr(0, std::string_view("sep=").size()), "sep=");
}

} // namespace

std::uint64_t LinesAboveHeader(std::istream& text, const std::string& name) {
    const auto lines = FirstLines(text, name);
    const TableShape shape = CommonShape(lines);
    for (std::size_t i = 0; i < lines.size() && shape.fields > 1; ++i) {
        const auto fields = CsvFieldsOf(lines[i], shape.delimiter);
        if (fields.size() == shape.fields && IsHeader(fields)) {
            const auto end = lines.begin() + static_cast<std::ptrdiff_t>(i);
            return std::all_of(lines.begin(), end, IsReadOver) ? 0 : i;
        }
    }
    return 0;
}

std::uint64_t LinesAboveHeader(const TableDefinition& table) {
    DecodedFile file(table.file, table.format.encoding);
    return LinesAboveHeader(file.Stream(), PathToUtf8(table.file));
}

} // namespace qel::engine
