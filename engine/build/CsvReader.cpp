#include "engine/build/CsvReader.h"

#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>

namespace qel::engine {

namespace {

/// A longer record is assumed to have an unclosed quote.
constexpr std::size_t longestRecord = 1 << 20;
constexpr std::string_view notClosed = "a quote is not closed";
constexpr std::string_view noBreakBlank = "\xC2\xA0";

std::string_view Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    for (;;) {
        if (text.empty()) {
            return text;
        }
        if (isBlank(text.front())) {
            text.remove_prefix(1);
        } else if (isBlank(text.back())) {
            text.remove_suffix(1);
        } else if (text.substr(0, 2) == noBreakBlank) {
            text.remove_prefix(2);
        } else if (text.size() >= 2 && text.substr(text.size() - 2) == noBreakBlank) {
            text.remove_suffix(2);
        } else {
            return text;
        }
    }
}

/// The delimiter that occurs most often outside quotes; a comma when there is none.
char DetectDelimiter(std::string_view line) {
    char best = ',';
    std::size_t most = 0;
    for (const char candidate : {',', ';', '\t', '|'}) {
        bool isQuoted = false;
        std::size_t count = 0;
        for (const char c : line) {
            isQuoted = isQuoted != (c == '"');
            count += !isQuoted && c == candidate ? 1 : 0;
        }
        if (count > most) {
            most = count;
            best = candidate;
        }
    }
    return best;
}

} // namespace

void CsvReader::ParserDeleter::operator()(csv_parser* parser) const {
    csv_free(parser);
    std::default_delete<csv_parser>()(parser);
}

CsvReader::CsvReader(std::istream& input, std::string fileName, char delimiter)
    : lines_(input), fileName_(std::move(fileName)), delimiter_(delimiter) {
    ReadHeader();
}

CsvReader::~CsvReader() = default;

void CsvReader::ReadHeader() {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    const std::string_view start = lines_.LineAt(0);
    if (start.substr(0, 2) == "\xFF\xFE" || start.substr(0, 2) == "\xFE\xFF") {
        Fail("line 1: the file is UTF-16, expected UTF-8");
    }
    if (start.substr(0, utf8Mark.size()) == utf8Mark) {
        lines_.Drop(utf8Mark.size());
    }
    if (!SkipBlankLines()) {
        Fail("the file is empty, expected a line with the names of the columns");
    }
    TakeDelimiterLine();
    if (delimiter_ == 0) {
        delimiter_ = DetectDelimiter(lines_.LineAt(0));
    }
    ResetParser();
    ReadRecord();
    fault_ = FormFault();
    if (!fault_.empty()) {
        Fail(fmt::format("line {}: {}", line_, fault_));
    }
    headerText_ = Raw();
    for (std::size_t i = 0; i < fields_.size(); ++i) {
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

bool CsvReader::Next() {
    if (!ReadRecord()) {
        return false;
    }
    fault_ = FormFault();
    if (fault_.empty() && fields_.size() != header_.size()) {
        fault_ = fmt::format("expected {} fields, found {}", header_.size(), fields_.size());
    }
    return true;
}

std::string_view CsvReader::Field(std::size_t column) const {
    return Trimmed(std::string_view(text_).substr(fields_[column].first, fields_[column].second));
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
    text_.clear();
    fields_.clear();
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
        recordLines_ = 1;
    }
    return true;
}

std::string CsvReader::FormFault() const {
    if (!fault_.empty()) {
        return fault_;
    }
    if (!IsValidUtf8(Raw())) {
        return "the text is not in the file's encoding; set \"encoding\", such as \"windows-1255\"";
    }
    if (Raw().find('\0') != std::string_view::npos) {
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
    throw EngineError(ErrorKind::InvalidData, fmt::format("{}: {}", fileName_, fault));
}

void CsvReader::OnField(void* text, std::size_t length, void* self) {
    auto& reader = *static_cast<CsvReader*>(self);
    reader.fields_.emplace_back(reader.text_.size(), length);
    if (length != 0) {
        reader.text_.append(static_cast<const char*>(text), length);
    }
}

void CsvReader::OnRecord(int, void* self) { static_cast<CsvReader*>(self)->recordIsComplete_ = true; }

} // namespace qel::engine
