#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::engine {

/// The fields of one record.
struct RecordFields {
    std::string text;                                        ///< the fields, one after the other
    std::vector<std::pair<std::size_t, std::size_t>> places; ///< offset and length of each in the text

    void Clear();
    void Add(std::string_view field);
};

/// Reads the records of a table one after the other: the lines of a file, or the rows of a query.
class RecordReader {
public:
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;
    virtual ~RecordReader() = default;

    /// What messages call the table: the path of a file, or `table "ledger"`.
    const std::string& Name() const { return name_; }
    const std::vector<std::string>& Header() const { return header_; }
    /// What messages call a record.
    virtual std::string_view RecordName() const = 0;

    /// Reads the next record; false at the end.
    virtual bool Next() = 0;
    /// Why the record is malformed, or an empty text. The fields of a malformed record must not be used.
    const std::string& Fault() const { return fault_; }
    /// The number, from 1, of the record (of its first line in a file).
    virtual std::uint64_t Number() const = 0;
    /// The field, trimmed. When Fault() is empty there are as many fields as in the header.
    std::string_view Field(std::size_t column) const;
    std::size_t FieldCount() const { return fields_.places.size(); }
    const RecordFields& Fields() const { return fields_; }
    /// The share of the records that has been read; 0 while it is unknown.
    virtual double Share() const = 0;

    /// The record and the header as they stand in a CSV file with this delimiter.
    virtual std::string Raw() const = 0;
    virtual std::string HeaderText() const = 0;
    virtual char Delimiter() const = 0;
    /// Whether the last record that was read is whole for certain: a line has its end.
    virtual bool IsComplete() const = 0;
    /// Whether the column's numbers are floating-point ones, of which the reader gets 15 digits.
    virtual bool IsFloating(std::size_t /*column*/) const { return false; }

protected:
    explicit RecordReader(std::string name) : name_(std::move(name)) {}

    std::vector<std::string> header_;
    std::string fault_;
    RecordFields fields_;

private:
    std::string name_;
};

} // namespace qel::engine
