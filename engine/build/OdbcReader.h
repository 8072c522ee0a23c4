#pragma once

#include "engine/build/OdbcConnection.h"
#include "engine/build/RecordReader.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// Reads the rows that a query gives, some hundred at a time. Numbers and dates arrive as the database
/// writes them as text: exact, with a decimal point, the year first. NULL is an empty field.
class OdbcReader final : public RecordReader {
public:
    /// Raises EngineError: InvalidDefinition for an environment variable that is not set; InvalidData when
    /// the database or its driver reports an error, then also in Next.
    OdbcReader(const std::string& tableName, const OdbcSource& source, WaitTick tick);

    std::string_view RecordName() const override { return "row"; }
    bool Next() override;
    std::uint64_t Number() const override { return number_; }
    double Share() const override;
    std::string Raw() const override;
    std::string HeaderText() const override;
    char Delimiter() const override { return ','; }
    bool IsComplete() const override { return true; }
    bool IsFloating(std::size_t column) const override { return columns_[column].isFloating; }

private:
    /// A column's texts of all rows of a block.
    struct Column {
        std::vector<SQLTCHAR> texts;
        std::vector<SQLLEN> lengths; ///< in bytes, or SQL_NULL_DATA
        bool isFloating = false;
    };

    void DescribeColumns();
    void BindColumns();
    bool HasFloatingNumbers(SQLUSMALLINT column) const;
    bool FetchBlock();
    void TakeRow(std::size_t row);
    /// Puts a text of the block into value_; false when it is unusable, and fault_ says why.
    bool TakeText(std::size_t column, std::size_t row);

    OdbcConnection connection_;
    std::vector<Column> columns_;
    std::vector<SQLUSMALLINT> states_; ///< of the rows of the block
    SQLULEN rowsInBlock_ = 0;
    std::size_t nextInBlock_ = 0;
    std::uint64_t number_ = 0;
    SQLLEN rowCount_ = -1; ///< of the answer; -1: the driver does not know
    std::string value_;
};

} // namespace qel::engine
