#pragma once

#include "engine/build/LineBuffer.h"
#include "engine/build/RecordReader.h"

#include <csv.h>

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace qel::engine {

/// Reads a CSV file record by record. After a malformed record reading continues with the next one; after an
/// unclosed quote, with the line after the one where the record began.
class CsvReader final : public RecordReader {
public:
    /// Reads the header line, and a line "sep=;" before it, which names the delimiter. `delimiter` 0 chooses
    /// that one, otherwise the one that occurs most often in the header. Raises EngineError (InvalidData) for
    /// an empty file or a malformed header. `size` is the file's, in bytes; `skipLines` lines stand above the
    /// header.
    CsvReader(std::istream& input, const std::string& fileName, char delimiter, std::uint64_t size = 0,
              std::uint64_t skipLines = 0);
    ~CsvReader() override;
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    /// Continues with line number `line`, where the input now stands: `offset` bytes after the file's start.
    void ContinueAt(std::uint64_t offset, std::uint64_t line);
    std::string_view RecordName() const override { return "line"; }
    /// Blank lines are no records.
    bool Next() override;
    std::uint64_t Number() const override { return line_; }
    double Share() const override;
    /// The record as it stands in the file, including its line end; valid until the next call.
    std::string_view RawText() const { return lines_.First(recordSize_); }
    std::string Raw() const override { return std::string(RawText()); }
    std::string HeaderText() const override { return headerText_; }
    char Delimiter() const override { return delimiter_; }
    bool IsComplete() const override { return lineHasEnd_; }

private:
    struct ParserDeleter {
        void operator()(csv_parser* parser) const;
    };

    void ReadHeader(std::uint64_t skipLines);
    /// False at the end of the file.
    bool ReadRecord();
    bool SkipBlankLines();
    /// Reads the line at the start of the record once more; false when its quotes have no meaning.
    bool TakeQuotesWithinFields();
    /// Takes a line such as "sep=;".
    void TakeDelimiterLine();
    void ResetParser();
    /// Why the record's bytes are malformed, or an empty text.
    std::string FormFault() const;
    [[noreturn]] void Fail(const std::string& fault) const;
    static void OnField(void* text, std::size_t length, void* self);
    static void OnRecord(int terminator, void* self);

    LineBuffer lines_;
    char delimiter_;
    std::uint64_t size_;
    std::unique_ptr<csv_parser, ParserDeleter> parser_;
    std::uint64_t line_ = 1;
    std::size_t recordSize_ = 0, recordLines_ = 0; ///< of the record at the start of the buffer
    bool recordIsComplete_ = false;
    bool lineHasEnd_ = true;
    std::string headerText_;
};

} // namespace qel::engine
