#include "engine/export/StarRows.h"

#include "qel/engine/EngineError.h"
#include "text/DecimalText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace qel::engine {

namespace {

std::size_t LongestText(const Hierarchy& hierarchy) {
    std::size_t longest = 1;
    for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
        longest = std::max({longest, hierarchy.MemberKey(member).size(), hierarchy.MemberName(member).size(),
                            hierarchy.MemberCaption(member).size()});
    }
    return longest;
}

std::string MemberTable(const Hierarchy& hierarchy, const StarTable& table) {
    const std::string textType = fmt::format("VARCHAR({})", LongestText(hierarchy));
    std::vector<SqlColumn> columns{{rowColumn, integerType}, {ownerColumn, integerType}};
    for (const std::size_t level : table.levels) {
        columns.push_back({IdColumn(level), integerType});
        columns.push_back({KeyColumnName(level), textType});
        columns.push_back({NameColumn(level), textType});
        columns.push_back({CaptionColumn(level), textType});
    }
    return CreateTable(table.name, columns);
}

std::string Index(std::string_view kind, std::string_view table, std::string_view column) {
    return fmt::format("CREATE {} {} ON {} ({});\n", kind, SqlName(fmt::format("{}_by_{}", table, column)),
                       SqlName(table), SqlName(column));
}

void WriteMembers(const Hierarchy& hierarchy, const StarTable& table, const TextSink& sink) {
    RowWriter writer(table.name, sink);
    for (const StarRow& row : table.rows) {
        std::vector<std::string> values{std::to_string(row.row), std::to_string(row.owner)};
        for (const MemberId member : row.members) {
            values.push_back(std::to_string(member));
            values.push_back(SqlText(hierarchy.MemberKey(member)));
            values.push_back(SqlText(hierarchy.MemberName(member)));
            values.push_back(SqlText(hierarchy.MemberCaption(member)));
        }
        writer.Add(values);
    }
    writer.Finish();
}

template <class Stored>
Stored At(const std::byte* column, std::uint64_t row) {
    Stored value = 0;
    std::memcpy(&value, column + row * sizeof(Stored), sizeof(Stored));
    return value;
}

std::int64_t AmountAt(const std::byte* column, std::uint8_t width, std::uint64_t row) {
    switch (width) {
    case 1:
        return At<std::int8_t>(column, row);
    case 2:
        return At<std::int16_t>(column, row);
    case 4:
        return At<std::int32_t>(column, row);
    default:
        return At<std::int64_t>(column, row);
    }
}

/// A block of consecutive facts.
class FactBlock {
public:
    FactBlock(const FactTable& facts, RowRange rows) : facts_(facts), rows_(rows) {
        const Projection& order = facts.Projections().front();
        for (std::size_t column = 0; column < facts.KeyColumns().size(); ++column) {
            codes_.push_back(ReadCodes(facts, order, column, rows));
        }
        for (std::size_t i = 0; i < facts.Measures().size(); ++i) {
            values_.push_back(facts.Measures()[i].width == 0 ? nullptr : order.Values(i, rows));
        }
    }

    void Write(const FactSpread& spread, std::vector<RowWriter>& writers, bool hasConstant) const {
        for (std::uint64_t row = 0; row < rows_.Count(); ++row) {
            const std::size_t part = spread.PartOf(codes_[spread.keyColumn][row]);
            std::vector<std::string> values;
            for (const auto& codes : codes_) {
                values.push_back(std::to_string(codes[row]));
            }
            for (std::size_t i = 0; i < values_.size(); ++i) {
                values.push_back(AmountText(i, row));
            }
            if (hasConstant) {
                values.emplace_back("0");
            }
            writers[part].Add(values);
        }
    }

private:
    std::string AmountText(std::size_t index, std::uint64_t row) const {
        const MeasureColumn& measure = facts_.Measures()[index];
        if (!values_[index]) { // a count, or a sum with all amounts 0
            return measure.function == AggregateFunction::Count ? "1" : "0";
        }
        std::int64_t amount = 0;
        if (__builtin_mul_overflow(AmountAt(values_[index], measure.width, row), measure.unit, &amount)) {
            throw EngineError(
                ErrorKind::DamagedFile,
                fmt::format("The measure '{}' has an amount of more than 64 bits.", measure.name));
        }
        return DecimalText(amount, measure.decimals);
    }

    const FactTable& facts_;
    RowRange rows_;
    std::vector<std::vector<std::uint32_t>> codes_; ///< by key column
    std::vector<const std::byte*> values_;
};

std::string ComposeMemberIndexes(const StarSchema& star) {
    std::string text;
    for (const auto& tables : star.hierarchies) {
        const char* kind = HasOneRowPerCode(tables) ? "UNIQUE INDEX" : "INDEX";
        for (const auto& table : tables) {
            text += Index(kind, table.name, ownerColumn);
        }
    }
    return text;
}

} // namespace

std::vector<SqlColumn> FactColumns(const StarSchema& star) {
    std::vector<SqlColumn> columns;
    for (const auto& name : star.keyColumns) {
        columns.push_back({name, integerType});
    }
    for (std::size_t i = 0; i < star.measureColumns.size(); ++i) {
        const Measure& measure = star.cube->Measures()[i];
        columns.push_back({star.measureColumns[i], measure.function == AggregateFunction::Count
                                                       ? integerType
                                                       : fmt::format("DECIMAL(19,{})", measure.decimals)});
    }
    if (!star.constantColumn.empty()) {
        columns.push_back({star.constantColumn, integerType});
    }
    return columns;
}

std::string ComposeMemberTables(const StarSchema& star) {
    std::string text;
    for (const auto& hierarchy : star.cube->Hierarchies()) {
        for (const auto& table : star.hierarchies[hierarchy.Index()]) {
            text += MemberTable(hierarchy, table);
        }
    }
    return text;
}

std::string ComposeTables(const StarSchema& star) {
    return CreateTable(star.factTable, FactColumns(star)) + ComposeMemberTables(star);
}

void WriteMemberRows(const StarSchema& star, const TextSink& sink) {
    for (const auto& hierarchy : star.cube->Hierarchies()) {
        for (const auto& table : star.hierarchies[hierarchy.Index()]) {
            WriteMembers(hierarchy, table, sink);
        }
    }
    sink(ComposeMemberIndexes(star));
}

void WriteFactRows(const StarSchema& star, const FactSpread& spread, std::span<const TextSink> sinks,
                   const std::function<void(double)>& progress) {
    constexpr std::uint64_t blockRows = 8192;
    std::vector<RowWriter> writers;
    for (const TextSink& sink : sinks) {
        writers.emplace_back(star.factTable, sink);
    }
    const FactTable& facts = star.cube->Facts();
    for (std::uint64_t first = 0; first < facts.RowCount(); first += blockRows) {
        const RowRange rows{first, std::min(first + blockRows, facts.RowCount())};
        FactBlock(facts, rows).Write(spread, writers, !star.constantColumn.empty());
        progress(static_cast<double>(rows.last) / static_cast<double>(facts.RowCount()));
    }
    star.cube->CheckUnchanged();
    for (std::size_t part = 0; part < sinks.size(); ++part) {
        writers[part].Finish();
        for (const auto& name : star.keyColumns) {
            sinks[part](Index("INDEX", star.factTable, name));
        }
    }
}

} // namespace qel::engine
