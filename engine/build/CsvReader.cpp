#include "engine/build/CsvReader.h"

#include "engine/build/CsvFields.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>

namespace qel::engine {

namespace {

/// A longer record is assumed to have an unclosed quote.
constexpr std::size_t longestRecord = 1 << 20;
constexpr std::string_view notClosed = "a quote is not closed";

/// The delimiter that occurs most often outside quotes; a comma when there is none. A quoted name may go on
/// in the next lines.
char DetectDelimiter(LineBuffer& lines) {
    constexpr int mostLines = 10;
    char best = ',';
    std::size_t most = 1, size = 0;
    for (int line = 0; line < mostLines && most == 1; ++line) {
        size += lines.LineAt(size).size();
        const std::string_view header = lines.First(size);
        for (const char candidate : {',', ';', '\t', '|'}) {
            const std::size_t count = CsvFieldsOf(header, candidate).size();
            if (count > most) {
                most = count;
                best = candidate;
            }
        }
        if (std::count(header.begin(), header.end(), '"') % 2 == 0) {
            break;
        }
    }
    return best;
}

} // namespace

void CsvReader::ParserDeleter::operator()(csv_parser* parser) const {
    csv_free(parser);
    std::default_delete<csv_parser>()(parser);
}

CsvReader::CsvReader(std::istream& input, const std::string& fileName, char delimiter, std::uint64_t size,
                     std::uint64_t skipLines)
    : RecordReader(fileName), lines_(input, fileName), delimiter_(delimiter), size_(size) {
    ReadHeader(skipLines);
}

CsvReader::~CsvReader() = default;

void CsvReader::ReadHeader(std::uint64_t skipLines) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    const std::string_view start = lines_.LineAt(0);
    if (start.substr(0, 2) == "\xFF\xFE" || start.substr(0, 2) == "\xFE\xFF") {
        Fail("line 1: the file is UTF-16, expected UTF-8");
    }
    if (start.substr(0, utf8Mark.size()) == utf8Mark) {
        lines_.Drop(utf8Mark.size());
    }
    for (; line_ <= skipLines; ++line_) {
        const std::size_t size = lines_.LineAt(0).size();
        if (size == 0) {
            Fail(fmt::format("\"skipLines\" is {}, but the file has {} lines", skipLines, line_ - 1));
        }
        lines_.Drop(size);
    }
    if (!SkipBlankLines()) {
        Fail("the file is empty, expected a line with the names of the columns");
    }
    TakeDelimiterLine();
    if (delimiter_ == 0) {
        delimiter_ = DetectDelimiter(lines_);
    }
    ResetParser();
    ReadRecord();
    fault_ = FormFault();
    if (!fault_.empty()) {
        Fail(fmt::format("line {}: {}", line_, fault_));
    }
    if (RawText().size() > longestRecord) {
        Fail(fmt::format("line {}: the names of the columns take more than 1 MiB; this is no CSV file",
                         line_));
    }
    headerText_ = RawText();
    for (std::size_t i = 0; i < FieldCount(); ++i) {
        header_.emplace_back(Field(i));
    }
}

void CsvReader::TakeDelimiterLine() {
    const std::string_view line = lines_.LineAt(0);
    constexpr std::string_view opening = "sep=";
    const std::size_t end = line.find_first_of("\r\n");
    if (end != opening.size() + 1 || !EqualIgnoringCase(line.substr(0, opening.size()), opening)) {
        return;
    }
    if (delimiter_ == 0) {
        delimiter_ = line[opening.size()];
    }
    lines_.Drop(line.size());
    ++line_;
    if (!SkipBlankLines()) {
        Fail("the file has no line with the names of the columns");
    }
}

void CsvReader::ContinueAt(std::uint64_t offset, std::uint64_t line) {
    lines_.Restart(offset);
    line_ = line;
    recordSize_ = 0;
    recordLines_ = 0;
    lineHasEnd_ = true;
    ResetParser();
}

bool CsvReader::Next() {
    if (!ReadRecord()) {
        return false;
    }
    fault_ = FormFault();
    if (fault_.empty() && FieldCount() != header_.size()) {
        fault_ = fmt::format("expected {} fields, found {}", header_.size(), FieldCount());
    }
    return true;
}

double CsvReader::Share() const {
    // Decoded text may be longer than what the file holds.
    return size_ == 0 ? 0
                      : std::min(static_cast<double>(lines_.Position()) / static_cast<double>(size_), 1.0);
}

bool CsvReader::SkipBlankLines() {
    for (;;) {
        const std::string_view line = lines_.LineAt(0);
        const auto isBlank = [this](char c) {
            return c == '\r' || c == '\n' || c == ' ' || (c == '\t' && delimiter_ != '\t');
        };
        if (line.empty()) {
            return false;
        }
        if (!std::all_of(line.begin(), line.end(), isBlank)) {
            return true;
        }
        lines_.Drop(line.size());
        ++line_;
    }
}

bool CsvReader::ReadRecord() {
    lines_.Drop(recordSize_);
    line_ += recordLines_;
    recordSize_ = 0;
    recordLines_ = 0;
    recordIsComplete_ = false;
    fields_.Clear();
    fault_.clear();
    if (!SkipBlankLines()) {
        return false;
    }
    const std::size_t firstLine = lines_.LineAt(0).size();
    while (!recordIsComplete_ && fault_.empty()) {
        const std::string_view line = lines_.LineAt(recordSize_);
        recordSize_ += line.size();
        ++recordLines_;
        lineHasEnd_ = line.empty() ? lineHasEnd_ : line.back() == '\n' || line.back() == '\r';
        if (line.empty()) {
            if (csv_fini(parser_.get(), OnField, OnRecord, this) != 0) {
                fault_ = notClosed;
            }
            break;
        }
        if (csv_parse(parser_.get(), line.data(), line.size(), OnField, OnRecord, this) != line.size()) {
            fault_ = "a quote stands within a field, and is not doubled";
        } else if (recordSize_ > longestRecord) {
            fault_ = "no end within 1 MiB; a quote is not closed";
        }
    }
    if (!fault_.empty()) {
        ResetParser();
        recordSize_ = firstLine;
        if (recordLines_ == 1 && TakeQuotesWithinFields()) {
            fault_.clear();
        }
        recordLines_ = 1;
    }
    return true;
}

bool CsvReader::TakeQuotesWithinFields() {
    const auto fields = CsvFieldsOf(lines_.LineAt(0), delimiter_);
    fields_.Clear();
    for (const std::string_view field : fields) {
        const bool isQuoted = field.starts_with('"');
        fields_.Add(isQuoted ? ReplaceAll(field.substr(1, field.size() - 2), "\"\"", "\"") : field);
    }
    return !fields.empty();
}

std::string CsvReader::FormFault() const {
    if (!fault_.empty()) {
        return fault_;
    }
    if (!IsValidUtf8(RawText())) {
        return "the text is not in the file's encoding; set \"encoding\", such as \"windows-1255\"";
    }
    if (RawText().find('\0') != std::string_view::npos) {
        return "a character with code 0";
    }
    return {};
}

void CsvReader::ResetParser() {
    auto parser = std::make_unique<csv_parser>();
    if (csv_init(parser.get(), CSV_STRICT | CSV_STRICT_FINI) != 0) {
        throw std::bad_alloc();
    }
    csv_set_delim(parser.get(), static_cast<unsigned char>(delimiter_));
    parser_.reset(parser.release());
}

void CsvReader::Fail(const std::string& fault) const {
    throw EngineError(ErrorKind::InvalidData, fmt::format("{}: {}", Name(), fault));
}

void CsvReader::OnField(void* text, std::size_t length, void* self) {
    static_cast<CsvReader*>(self)->fields_.Add(
        length == 0 ? std::string_view() : std::string_view(static_cast<const char*>(text), length));
}

void CsvReader::OnRecord(int, void* self) { static_cast<CsvReader*>(self)->recordIsComplete_ = true; }

} // namespace qel::engine
