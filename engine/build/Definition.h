#pragma once

#include "qel/engine/Calculations.h"
#include "qel/engine/CheckCalculations.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What a definition file says (docs/cube-definition.md), checked and with every default filled in.

namespace qel::engine {

enum class DateFormat : std::uint8_t { Iso, DayMonthYear, MonthDayYear, YearMonthDay };

struct CsvFormat {
    char delimiter = 0; ///< 0: detected from the header line
    char decimal = '.';
    char thousands = 0; ///< 0: none
    DateFormat dates = DateFormat::Iso;
    std::string encoding = {};   ///< empty: UTF-16 with a byte order mark, otherwise UTF-8
    std::uint64_t skipLines = 0; ///< above the header
};

/// A database reached through ODBC.
struct OdbcSource {
    std::string place;      ///< "ledger.json: tables.ledger.odbc", for messages
    std::string connection; ///< may name environment variables: "DSN=books;PWD=${BOOKS_PASSWORD}"
    std::string query;
};

struct TableDefinition {
    std::string name;
    std::filesystem::path file;     ///< absolute, or relative to the working directory; none with `odbc`
    std::optional<OdbcSource> odbc; ///< in place of a file
    CsvFormat format;
    /// Names used in the definition and the column names in the file; other columns keep theirs.
    std::vector<std::pair<std::string, std::string>> columns;
    std::vector<std::string> accepted; ///< kinds of warnings

    /// The file's name without its folder, or `table "ledger"`.
    std::string ShortName() const;
};

enum class MemberOrder : std::uint8_t { Key, Name, File };

struct LevelDefinition {
    std::string name;
    std::string key;        ///< column of the dimension's table
    std::string memberName; ///< column; defaults to the key's
    std::string caption;    ///< column; defaults to the name's
    MemberOrder order = MemberOrder::Key;
};

struct HierarchyDefinition {
    std::string place; ///< "ledger.json: cubes[0].dimensions[2].hierarchies[0]", for messages
    std::string name, caption;
    std::optional<std::string> all; ///< name of the top member, when there is one
    std::optional<std::string> defaultKey;
    std::vector<LevelDefinition> levels; ///< without the top level
};

struct CalendarDefinition {
    bool byDays = false;
    bool hasQuarters = true;
    std::optional<std::chrono::sys_days> from, to;
    std::vector<std::string> levels;     ///< names, top to bottom, without the top level
    std::vector<std::string> monthNames; ///< from January on; empty: months have no captions
};

/// The warnings that a dimension or a table can accept as meant.
inline constexpr const char* severalParents = "severalParents"; ///< values that count in several members
inline constexpr const char* equalNames = "equalNames";         ///< names that several members have
inline constexpr const char* dateOrder = "dateOrder";           ///< dates that fit another order, too
inline constexpr const char* lastLine = "lastLine";             ///< of a table: its last line has no end
inline constexpr const char* noRows = "noRows";                 ///< of a table: it has none
inline constexpr const char* hebrewEncoding = "encoding";       ///< of a table: its letters look like Hebrew
inline constexpr const char* dateMembers = "dateMembers";       ///< months and years that name no date

struct DimensionDefinition {
    std::string place;
    std::string name, caption;
    std::optional<std::string> column; ///< of the facts; "a+b" for several
    std::vector<std::string> columns;  ///< that make up `column`; a value is the texts of all of them
    std::vector<std::size_t> tables;   ///< indexes into Definition::tables; all have the same columns
    std::vector<std::string> keys;     ///< columns of the tables with the values of `columns`
    bool isMain = false;
    std::optional<CalendarDefinition> calendar;
    /// Of a dimension with neither column nor table, each with its name on every level.
    std::vector<std::vector<std::string>> members;
    std::vector<HierarchyDefinition> hierarchies;
    std::vector<std::string> accepted; ///< kinds of warnings
};

struct MeasureDefinition {
    std::string name, caption;
    std::optional<std::string> column; ///< none for a count
    std::optional<std::string> minus;  ///< a column to subtract, such as the credit beside the debit
    std::uint8_t decimals = 2;
};

/// A column of the fact tables whose texts are kept.
struct DetailDefinition {
    std::string column, caption;
};

struct CubeDefinition {
    std::string place;
    std::string name, caption;
    std::vector<std::size_t> facts; ///< indexes into Definition::tables
    std::vector<DimensionDefinition> dimensions;
    std::vector<MeasureDefinition> measures;
    std::size_t defaultMeasure = 0;
    Calculations calculations;
    std::vector<DetailDefinition> details;
    bool keepsAllDetails = false;                     ///< every column, in place of `details`
    std::vector<std::vector<std::string>> sortOrders; ///< fact columns; empty: chosen by the build
};

struct Definition {
    std::vector<TableDefinition> tables;
    std::vector<CubeDefinition> cubes;
};

/// Raises EngineError (InvalidDefinition) that names the key of the calculation.
[[noreturn]] void RefuseCalculation(const CubeDefinition& cube, const CalculationFault& fault);

/// Parses a definition. `fileName` is used in messages; relative paths start at `folder`. Raises EngineError
/// (InvalidDefinition) naming the file and the key.
Definition ParseDefinition(std::string_view text, const std::string& fileName,
                           const std::filesystem::path& folder);

/// Reads a definition file. Raises EngineError (FileNotFound) when it cannot be read.
Definition ReadDefinition(const std::filesystem::path& path);

} // namespace qel::engine
