#include "engine/export/FlatStar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

namespace {

/// The levels that a view shows, by hierarchy and level.
std::vector<std::string> LevelColumns(const StarSchema& star, const FlatView& view) {
    std::vector<std::string> columns;
    for (std::size_t hierarchy = 0; hierarchy < star.hierarchies.size(); ++hierarchy) {
        for (std::size_t i = 0; i < view.tables[hierarchy]; ++i) {
            for (const std::size_t level : star.hierarchies[hierarchy][i].levels) {
                columns.push_back(FlatColumn(hierarchy, level));
            }
        }
    }
    return columns;
}

/// The joins of a hierarchy's tables. A table with one row per code is joined from outside: the database
/// leaves such a join out where a statement uses none of its columns.
void AddHierarchy(const StarSchema& star, std::size_t index, std::size_t tableCount, std::string& columns,
                  std::string& joins) {
    const auto key = star.cube->Hierarchies()[index].KeyColumn();
    std::string owner = "f." + SqlName(key ? star.keyColumns[*key] : star.constantColumn);
    const auto& tables = star.hierarchies[index];
    const char* kind = HasOneRowPerCode(tables) ? "LEFT JOIN" : "JOIN";
    for (std::size_t i = 0; i < tableCount; ++i) {
        if (tables[i].levels.empty()) {
            continue;
        }
        const std::string alias = fmt::format("h{}_{}", index, i);
        joins += fmt::format("\n  {} {} {} ON {}.{} = {}", kind, SqlName(tables[i].name), alias, alias,
                             SqlName(ownerColumn), owner);
        for (const std::size_t level : tables[i].levels) {
            columns += fmt::format(",\n  {}.{} AS {}", alias, SqlName(IdColumn(level)),
                                   SqlName(FlatColumn(index, level)));
        }
        owner = alias + "." + SqlName(rowColumn);
    }
}

std::vector<SqlColumn> ColumnsOfView(const StarSchema& star, const FlatView& view) {
    std::vector<SqlColumn> columns;
    if (view.summedBy) {
        columns.push_back({star.keyColumns[*view.summedBy], integerType});
        for (std::size_t i = 0; i < star.measureColumns.size(); ++i) {
            const Measure& measure = star.cube->Measures()[i];
            columns.push_back(
                {star.measureColumns[i], measure.function == AggregateFunction::Count
                                             ? "BIGINT"
                                             : fmt::format("DECIMAL(38,{})", measure.decimals)});
        }
    } else {
        columns = FactColumns(star);
    }
    columns.push_back({factCountColumn, "BIGINT"});
    for (const auto& name : LevelColumns(star, view)) {
        columns.push_back({name, integerType});
    }
    return columns;
}

/// The facts summed by the view's key column, as a table of a FROM.
std::string SummedFacts(const StarSchema& star, const FlatView& view, std::string& columns) {
    const std::string key = SqlName(star.keyColumns[*view.summedBy]);
    std::string sums;
    std::vector<std::string> shown{"f." + key};
    for (const auto& measure : star.measureColumns) {
        sums += fmt::format(", sum({0}) AS {0}", SqlName(measure));
        shown.push_back("f." + SqlName(measure));
    }
    shown.push_back("f." + SqlName(factCountColumn));
    columns = fmt::format("{}", fmt::join(shown, ", "));
    const std::string constant =
        star.constantColumn.empty() ? "" : fmt::format(", 0 AS {}", SqlName(star.constantColumn));
    return fmt::format("(SELECT {0}{1}{2}, count(*) AS {3} FROM {4} GROUP BY {0})", key, constant, sums,
                       SqlName(factCountColumn), SqlName(star.factTable));
}

std::string ShardView(const StarSchema& star, const FlatView& view) {
    std::string columns = fmt::format("f.*, 1 AS {}", SqlName(factCountColumn));
    const std::string facts = view.summedBy ? SummedFacts(star, view, columns) : SqlName(star.factTable);
    std::string joins;
    for (std::size_t index = 0; index < view.tables.size(); ++index) {
        AddHierarchy(star, index, view.tables[index], columns, joins);
    }
    return fmt::format("CREATE {}VIEW {} AS SELECT {}\n  FROM {} f{};\n",
                       view.summedBy ? "MATERIALIZED " : "", SqlName(view.name), columns, facts, joins);
}

std::string AllShards(const FlatView& view) { return view.name + "__all"; }

std::string PartOfShard(const FlatView& view, std::size_t shard) {
    return fmt::format("{}__shard{}", view.name, shard + 1);
}

std::string AtShard(const FlatView& view, std::size_t shard) {
    return fmt::format("SERVER shard{} OPTIONS (table_name {}, fetch_size '10000', async_capable 'true');\n",
                       shard + 1, SqlText(view.name));
}

std::string CreateOpen(std::string_view kind, const std::string& name,
                       const std::vector<SqlColumn>& columns) {
    std::string table = CreateTable(name, columns);
    table.resize(table.rfind(';'));
    return table.replace(0, std::string_view("CREATE TABLE").size(), kind);
}

/// Sums by month are those of the shards: a month's facts are all on one.
std::string PartitionedView(const FlatStar& flat, const FlatView& view) {
    std::string text =
        fmt::format("{} PARTITION BY LIST ({});\n",
                    CreateOpen("CREATE TABLE", AllShards(view), ColumnsOfView(*flat.star, view)),
                    SqlName(FlatColumn(flat.calendar, flat.months)));
    for (std::size_t shard = 0; shard < flat.shards; ++shard) {
        if (const auto months = MonthsOfShard(flat, shard); !months.empty()) {
            text += fmt::format("CREATE FOREIGN TABLE {} PARTITION OF {} FOR VALUES IN ({})\n  {}",
                                SqlName(PartOfShard(view, shard)), SqlName(AllShards(view)),
                                fmt::join(months, ","), AtShard(view, shard));
        }
    }
    // The OLAP server looks for tables and views, not for partitioned tables.
    return text +
           fmt::format("CREATE VIEW {} AS SELECT * FROM {};\n", SqlName(view.name), SqlName(AllShards(view)));
}

/// The sums of all shards, one after the other.
std::string UnitedView(const FlatStar& flat, const FlatView& view) {
    std::string text;
    std::vector<std::string> parts;
    for (std::size_t shard = 0; shard < flat.shards; ++shard) {
        text += fmt::format(
            "{}\n  {}",
            CreateOpen("CREATE FOREIGN TABLE", PartOfShard(view, shard), ColumnsOfView(*flat.star, view)),
            AtShard(view, shard));
        parts.push_back("SELECT * FROM " + SqlName(PartOfShard(view, shard)));
    }
    return text +
           fmt::format("CREATE VIEW {} AS\n  {};\n", SqlName(view.name), fmt::join(parts, "\n  UNION ALL "));
}

} // namespace

std::string FlatColumn(std::size_t hierarchy, std::size_t level) {
    return fmt::format("h{}__level{}", hierarchy, level);
}

std::string ComposeShardViews(const FlatStar& flat) {
    std::string text;
    for (const FlatView& view : flat.views) {
        text += ShardView(*flat.star, view);
    }
    return text;
}

std::string ComposeForeignTables(const FlatStar& flat) {
    std::string text;
    for (const FlatView& view : flat.views) {
        text += view.summedBy ? UnitedView(flat, view) : PartitionedView(flat, view);
    }
    std::vector<std::string> columns;
    for (const SqlColumn& column : FactColumns(*flat.star)) {
        columns.push_back(SqlName(column.name));
    }
    const auto facts = std::find_if(flat.views.begin(), flat.views.end(),
                                    [](const FlatView& view) { return !view.summedBy; });
    return text + fmt::format("CREATE VIEW {} AS SELECT {} FROM {};\n", SqlName(flat.star->factTable),
                              fmt::join(columns, ", "), SqlName(AllShards(*facts)));
}

} // namespace qel::engine
