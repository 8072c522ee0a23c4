#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// Lines that have something in common, and the first of them.
struct SourceLines {
    std::uint64_t count = 0, first = 0;
    std::string what; ///< of the first: its fault, or its value

    void Add(std::uint64_t line, std::string_view text) {
        if (count++ == 0) {
            first = line;
            what = text;
        }
    }
};

/// One column of a CSV file, as its values look.
struct SourceColumn {
    std::string name;
    bool isRepeated = false;   ///< another column has the name
    bool isDate = false;       ///< its values are dates of the file's format, but for one in a hundred
    bool isAmount = false;     ///< … numbers of the file's format
    SourceLines badValues;     ///< that are no dates among dates, no numbers among numbers
    SourceLines emptyValues;   ///< in lines that are not malformed
    bool isEmpty = false;      ///< no line has a value
    bool isWhole = false;      ///< … of digits alone, as codes are
    bool isUnique = false;     ///< no value occurs twice, none is empty
    std::uint8_t decimals = 0; ///< the most that an amount has
    std::size_t distinct = 0;  ///< values, the empty one aside
    std::string first, least, greatest; ///< a value; of dates, the first and the last as 2024-03-31
};

/// What a CSV file looks like: how it is written, and how its columns relate. The format is found from every
/// line, relations from the first lines only (`relatedLines`).
class SourceProfile {
public:
    static constexpr std::uint64_t relatedLines = 200'000;

    std::filesystem::path file;
    std::string encoding;  ///< as "encoding" in a definition
    std::string delimiter; ///< and so on
    std::string decimal, thousands, dates;
    bool fitsOtherDates = false; ///< day and month can be told apart in none of the dates
    std::uint64_t lines = 0;
    std::uint64_t skipLines = 0; ///< above the header
    SourceLines malformed;
    SourceLines totals; ///< lines that look like totals, which columns leave out
    std::vector<SourceColumn> columns;

    /// True when each value of `column` occurs with one value of `other` only, and `other` is never empty.
    bool Determines(std::size_t column, std::size_t other) const;
    /// The share of the values of `column` that `otherColumn` has too, 0 to 1.
    double ShareIn(std::size_t column, const SourceProfile& other, std::size_t otherColumn) const;

private:
    friend class SourceProfiler;
    struct Values;
    std::shared_ptr<const Values> values_;
};

/// Reads a CSV file. `progress` is told the share done and may be empty. Raises EngineError: FileNotFound,
/// InvalidData.
SourceProfile ProfileSource(const std::filesystem::path& file,
                            const std::function<void(double share)>& progress);

} // namespace qel::engine
