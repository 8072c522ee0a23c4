#pragma once

#include "platform/data/CellQuery.h"
#include "platform/value/Variant.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The ports through which the component reads cubes: the shape of ADO and ADOMD, one operation for each that
// the component uses. Every operation raises AutomationError with the provider's own number and description.

namespace qel {

/// ADO's values of Connection.State that matter here.
inline constexpr int stateClosed = 0;
inline constexpr int stateOpen = 1;
/// adConnectUnspecified, adCmdUnspecified, adOpenUnspecified and the like.
inline constexpr int optionsUnspecified = -1;
/// adSchemaCatalogs: the schema rowset of the catalogs that a connection's data source holds.
inline constexpr int schemaCatalogs = 1;

class Recordset;

class Connection {
public:
    virtual ~Connection() = default;
    virtual void Open(const std::string& connectionString, const std::string& user,
                      const std::string& password, int options) = 0;
    virtual void Close() = 0;
    virtual int State() const = 0;
    virtual std::string ConnectionString() const = 0;
    /// The provider that the connection text names; empty when it was never opened.
    virtual std::string Provider() const;
    /// The catalog that the connection text names, or the one that the provider chose.
    virtual std::string DefaultDatabase() const;
    /// Takes the data of a source that was replaced since the connection was opened or last refreshed. Cheap
    /// enough for every formula. True when what was read before is of older data. Raises what Open raises.
    virtual bool Refresh() { return false; }
    /// The cell of a query, prepared without its statement; the value is the statement's. Null when the
    /// provider takes no queries, or not this one: then the statement tells. Raises nothing.
    virtual std::unique_ptr<const PreparedCell> Prepare(const CellQuery& query);
    /// An open recordset that describes the data source; of schemaCatalogs, a row a catalog with the field
    /// "CATALOG_NAME". Raises 3251 for a rowset that the provider does not have.
    virtual std::unique_ptr<Recordset> OpenSchema(int schema);
};

/// ADOMD's Member.
class Member {
public:
    virtual ~Member() = default;
    virtual std::string Name() const = 0;
    virtual std::string Caption() const = 0;
    virtual std::string UniqueName() const = 0;
    /// Null at the top level.
    virtual std::unique_ptr<Member> Parent() const = 0;
};

class Level {
public:
    virtual ~Level() = default;
    virtual std::string Name() const = 0;
    virtual std::string Caption() const = 0;
    virtual std::int32_t MemberCount() const = 0;
    /// Zero-based, in member order. Raises 9 outside the level.
    virtual std::unique_ptr<Member> MemberAt(std::int32_t index) const = 0;
    /// The members of that name (any letter case), in member order; the same as walking all of them.
    virtual std::vector<std::unique_ptr<Member>> MembersNamed(const std::string& name) const;
};

class Hierarchy {
public:
    virtual ~Hierarchy() = default;
    virtual std::string Name() const = 0;
    virtual std::string Caption() const = 0;
    virtual std::string UniqueName() const = 0;
    virtual std::int32_t LevelCount() const = 0;
    virtual std::unique_ptr<Level> LevelAt(std::int32_t index) const = 0;
    /// By name, any letter case.
    virtual std::unique_ptr<Level> LevelNamed(const std::string& name) const = 0;
};

class Dimension {
public:
    virtual ~Dimension() = default;
    virtual std::string Name() const = 0;
    virtual std::string Caption() const = 0;
    virtual std::int32_t HierarchyCount() const = 0;
    virtual std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const = 0;
};

class CubeDef {
public:
    virtual ~CubeDef() = default;
    virtual std::string Name() const = 0;
    virtual std::int32_t DimensionCount() const = 0;
    virtual std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const = 0;
    /// By name, any letter case.
    virtual std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const = 0;
};

/// ADOMD's Catalog: the cubes that one connection reaches.
class Catalog {
public:
    virtual ~Catalog() = default;
    /// Connects by itself, as ADOMD does when it is given a text.
    virtual void SetActiveConnection(const std::string& connectionString) = 0;
    virtual void SetActiveConnection(const std::shared_ptr<Connection>& connection) = 0;
    virtual std::int32_t CubeCount() const = 0;
    virtual std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const = 0;
};

/// A member on an axis of a cellset.
struct CellsetMember {
    std::string name, uniqueName, levelName;
    std::optional<std::string> caption; ///< none for Null
    std::int32_t levelDepth = 0;
    std::string key = {}; ///< empty when the provider does not tell it
};

/// ADOMD's Cellset: Open, read, Close.
class Cellset {
public:
    virtual ~Cellset() = default;
    virtual void Open(const std::string& source, const std::shared_ptr<Connection>& connection) = 0;
    virtual void Close() = 0;
    virtual std::int32_t AxisCount() const = 0;
    virtual std::int32_t PositionCount(std::int32_t axis) const = 0;
    virtual std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const = 0;
    virtual CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const = 0;
    /// The cell at one position of every axis, columns first; Null when it is empty. Raises 9 outside the
    /// axes.
    virtual Variant Value(const std::vector<std::int32_t>& positions) const = 0;
    /// The same number with all decimals of its measure; none when the provider has only the nearest double.
    virtual std::optional<std::string> ExactText(const std::vector<std::int32_t>& positions) const;
};

/// ADO's Recordset over a statement whose rows are flattened: a column for every level of the rows'
/// hierarchies, from the top, and a column for every position of the columns axis after them.
class Recordset {
public:
    virtual ~Recordset() = default;
    /// Told the share done while rows are read, where the provider knows it. An exception that it throws ends
    /// Open and reaches the caller.
    using Progress = std::function<void(double share)>;
    virtual void ReportTo(const Progress& /*progress*/) {}
    virtual void Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                      int cursorType, int lockType, int options) = 0;
    virtual void Close() = 0;
    virtual std::int32_t FieldCount() const = 0;
    /// "[Dimension].[Hierarchy].[Level].[MEMBER_CAPTION]", or the unique name of a column's member.
    virtual std::string FieldName(std::int32_t index) const = 0;
    /// Of the current row; Null for a level below the row's member. Raises 3021 when there is no current row.
    virtual Variant FieldValue(std::int32_t index) const = 0;
    /// The same by the field's name, any letter case. Raises 3265 when there is no such field.
    virtual Variant FieldValueNamed(const std::string& name) const;
    /// True after the last row (ADO's EOF), and at once when there is none.
    virtual bool AtEnd() const = 0;
    /// Raises 3021 when there are no rows.
    virtual void MoveFirst() = 0;
    virtual void MoveNext() = 0;
    /// How many rows a DRILLTHROUGH has without MAXROWS and FIRSTROWSET; none when the provider does not
    /// tell.
    virtual std::optional<std::uint64_t> TotalRows() const { return std::nullopt; }
};

/// One provider: makes its objects. Providers says which one opens a connection text.
class DataAccess {
public:
    virtual ~DataAccess() = default;
    virtual std::shared_ptr<Connection> CreateConnection() = 0;
    virtual std::unique_ptr<Catalog> CreateCatalog() = 0;
    virtual std::unique_ptr<Cellset> CreateCellset() = 0;
    /// Raises 445 for a provider without recordsets.
    virtual std::unique_ptr<Recordset> CreateRecordset();
};

} // namespace qel
