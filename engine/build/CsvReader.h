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

/// Reads a CSV file record by record. A record whose form is wrong is told apart, and reading can go on
/// behind it: after a quote that is not closed, with the line after the one that the record began on.
class CsvReader {
public:
    /// Reads the header line. `delimiter` 0 takes the one that the header has most of. Raises EngineError
    /// (InvalidData) for an empty file, a header that is not well-formed, or a name that stands twice in it.
    CsvReader(std::istream& input, std::string fileName, char delimiter);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    const std::string& FileName() const { return fileName_; }
    const std::vector<std::string>& Header() const { return header_; }
    /// The header line as it stands.
    const std::string& HeaderText() const { return headerText_; }

    /// Reads the next record that is not blank; false at the end of the file.
    bool Next();
    /// What is wrong with the record's form, or an empty text. A wrong record has no fields to speak of.
    const std::string& Fault() const { return fault_; }
    /// The line that the record begins on, counted from 1.
    std::uint64_t Line() const { return line_; }
    /// The record as it stands in the file, its line end included.
    std::string_view Raw() const { return lines_.First(recordSize_); }
    /// The field without blanks at its ends. There are as many as the header has when Fault() is empty.
    std::string_view Field(std::size_t column) const;
    /// How many bytes of the file lie before the current record.
    std::uint64_t Position() const { return lines_.Position(); }

private:
    struct ParserDeleter {
        void operator()(csv_parser* parser) const;
    };

    void ReadHeader();
    /// False at the end of the file.
    bool ReadRecord();
    bool SkipBlankLines();
    void ResetParser();
    /// What is wrong with the record's bytes, or an empty text.
    std::string FormFault() const;
    [[noreturn]] void Fail(const std::string& fault) const;
    static void OnField(void* text, std::size_t length, void* self);
    static void OnRecord(int terminator, void* self);

    LineBuffer lines_;
    std::string fileName_;
    char delimiter_;
    std::unique_ptr<csv_parser, ParserDeleter> parser_;
    std::uint64_t line_ = 1;
    std::size_t recordSize_ = 0, recordLines_ = 0; ///< of the record that starts the buffer
    bool recordIsComplete_ = false;
    std::string text_;                                        ///< the record's fields, unquoted
    std::vector<std::pair<std::size_t, std::size_t>> fields_; ///< place and length
    std::vector<std::string> header_;
    std::string headerText_, fault_;
};

} // namespace qel::engine
