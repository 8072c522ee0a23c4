#pragma once

#include "engine/build/LineBuffer.h"

#include <csv.h>

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::engine {

/// Reads a CSV file record by record. After a malformed record reading continues with the next one; after an
/// unclosed quote, with the line after the one where the record began.
class CsvReader {
public:
    /// Reads the header line, and a line "sep=;" before it, which names the delimiter. `delimiter` 0 chooses
    /// that one, otherwise the one that occurs most often in the header. Raises EngineError (InvalidData) for
    /// an empty file or a malformed header.
    CsvReader(std::istream& input, std::string fileName, char delimiter);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    const std::string& FileName() const { return fileName_; }
    const std::vector<std::string>& Header() const { return header_; }
    char Delimiter() const { return delimiter_; }
    /// The header line as it stands in the file.
    const std::string& HeaderText() const { return headerText_; }

    /// Reads the next non-blank record; false at the end of the file.
    bool Next();
    /// Why the record is malformed, or an empty text. The fields of a malformed record must not be used.
    const std::string& Fault() const { return fault_; }
    /// The line number, from 1, of the record's first line.
    std::uint64_t Line() const { return line_; }
    /// The record as it stands in the file, including its line end.
    std::string_view Raw() const { return lines_.First(recordSize_); }
    /// The field, trimmed. When Fault() is empty there are as many fields as in the header.
    std::string_view Field(std::size_t column) const;
    /// Whether the last line that was read has a line end.
    bool LineHasEnd() const { return lineHasEnd_; }
    /// The offset of the current record in the file.
    std::uint64_t Position() const { return lines_.Position(); }

private:
    struct ParserDeleter {
        void operator()(csv_parser* parser) const;
    };

    void ReadHeader();
    /// False at the end of the file.
    bool ReadRecord();
    bool SkipBlankLines();
    /// Takes a line such as "sep=;".
    void TakeDelimiterLine();
    void ResetParser();
    /// Why the record's bytes are malformed, or an empty text.
    std::string FormFault() const;
    [[noreturn]] void Fail(const std::string& fault) const;
    static void OnField(void* text, std::size_t length, void* self);
    static void OnRecord(int terminator, void* self);

    LineBuffer lines_;
    std::string fileName_;
    char delimiter_;
    std::unique_ptr<csv_parser, ParserDeleter> parser_;
    std::uint64_t line_ = 1;
    std::size_t recordSize_ = 0, recordLines_ = 0; ///< of the record at the start of the buffer
    bool recordIsComplete_ = false;
    bool lineHasEnd_ = true;
    std::string text_;                                        ///< the record's fields, unquoted
    std::vector<std::pair<std::size_t, std::size_t>> fields_; ///< offset and length
    std::vector<std::string> header_;
    std::string headerText_, fault_;
};

} // namespace qel::engine
