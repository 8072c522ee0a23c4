#pragma once

#include "platform/data/DataAccess.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::test {

struct ScriptedMember {
    std::string name, uniqueName;
    std::size_t parent = 0; ///< index on the level above
};

struct ScriptedLevel {
    std::string name;
    std::vector<ScriptedMember> members;
};

/// A dimension of one hierarchy of the same name.
struct ScriptedDimension {
    std::string name;
    std::vector<ScriptedLevel> levels;
};

/// A data provider that answers from a script and records each call as a line of `log`: "new connection",
/// "open TEXT", "close", "release", "catalog TEXT", "statement TEXT", "close cellset", "recordset TEXT",
/// "close recordset".
class RecordingProvider : public DataAccess {
public:
    std::vector<ScriptedDimension> dimensions; ///< of the one cube of every catalog
    Variant cell = 1.0;
    std::vector<CellsetMember> rowMembers;        ///< the members of a cellset's rows axis, one per position
    std::vector<std::vector<Variant>> recordRows; ///< of every recordset
    std::size_t recordFields = 0;
    std::string lastField = "field"; ///< the others are called "field"
    std::string refusedWord;         ///< recordsets are refused for statements with it
    // The number of the error that an operation raises; 0 for none.
    std::int32_t failingOpen = 0, failingCatalog = 0, failingStatement = 0;
    std::vector<std::string> log;

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

    ScriptedDimension& DimensionScript(const std::string& name);
    /// The statements that were sent, in order.
    std::vector<std::string> Statements() const;
    /// The log, emptied.
    std::vector<std::string> TakeLog();
};

/// [Date] with All, Year, Quarter, Month for every month from the first to the last; months are unique as
/// "[Date].[2020].[3]".
ScriptedDimension MonthlyDates(int firstYear, int firstMonth, int lastYear, int lastMonth);

/// The text that a cube's connection is opened with.
std::string ConnectionTextFor(const std::string& cubeFile, const std::string& cubeName = "Finance");

/// A provider with a current layout: [ActX] of three levels, [OBS] of two, and the months of 2019 and 2020.
RecordingProvider LedgerProvider();

} // namespace qel::test
