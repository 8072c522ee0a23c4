#include "engine/build/FactSorter.h"

#include "engine/build/AggregateBuilder.h"
#include "engine/storage/AggregateWriter.h"

#include <algorithm>
#include <future>
#include <numeric>
#include <set>
#include <span>
#include <utility>

namespace qel::engine {

namespace {

using Rows = std::vector<std::uint32_t>;

/// The first row of every code, followed by the row count.
template <class Count>
std::vector<Count> FirstRows(const std::vector<std::uint32_t>& codes, std::uint32_t codeCount) {
    std::vector<Count> first(std::size_t{codeCount} + 1);
    for (const std::uint32_t code : codes) {
        ++first[std::size_t{code} + 1];
    }
    std::partial_sum(first.begin(), first.end(), first.begin());
    return first;
}

/// The row numbers in sort order, by a radix sort: one stable counting sort per key, the least significant
/// first.
Rows SortRows(const std::vector<std::uint16_t>& sortOrder, const std::vector<KeyColumn>& keyColumns,
              const FactColumns& facts) {
    Rows rows(facts.rowCount), sorted(facts.rowCount);
    std::iota(rows.begin(), rows.end(), 0U);
    for (auto column = sortOrder.rbegin(); column != sortOrder.rend(); ++column) {
        const auto& codes = facts.keys[*column];
        auto starts = FirstRows<std::uint32_t>(codes, keyColumns[*column].codes);
        for (const std::uint32_t row : rows) {
            sorted[starts[codes[row]]++] = row;
        }
        rows.swap(sorted);
    }
    return rows;
}

/// Appends value(row) for each row, narrowed to `Stored`.
template <class Stored, class Value>
void AppendAs(const Rows& rows, const Value& value, CubeFileWriter& writer) {
    constexpr std::size_t blockRows = 65536;
    std::vector<Stored> block;
    for (std::size_t first = 0; first < rows.size(); first += blockRows) {
        block.resize(std::min(blockRows, rows.size() - first));
        for (std::size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<Stored>(value(rows[first + i]));
        }
        writer.Append(std::as_bytes(std::span(block)));
    }
}

/// Appends the packed column that combines its key columns.
void AppendPackedColumn(const CubeModel& model, const FactColumns& facts, std::size_t packedColumn,
                        const Rows& rows, CubeFileWriter& writer) {
    std::vector<std::pair<const std::uint32_t*, std::uint8_t>> parts; // codes and shift
    std::uint8_t width = 1;
    for (std::size_t i = 0; i < model.keyColumns.size(); ++i) {
        if (model.keyColumns[i].packedColumn != packedColumn) {
            continue;
        }
        parts.emplace_back(facts.keys[i].data(), model.keyColumns[i].shift);
        width = model.keyColumns[i].width;
    }
    const auto value = [&parts](std::uint32_t row) {
        std::uint32_t bits = 0;
        for (const auto& [codes, shift] : parts) {
            bits |= codes[row] << shift;
        }
        return bits;
    };
    if (width == 1) {
        AppendAs<std::uint8_t>(rows, value, writer);
    } else if (width == 2) {
        AppendAs<std::uint16_t>(rows, value, writer);
    } else {
        AppendAs<std::uint32_t>(rows, value, writer);
    }
}

void AppendValues(const std::vector<std::int64_t>& values, const MeasureColumn& measure, const Rows& rows,
                  CubeFileWriter& writer) {
    const auto value = [&](std::uint32_t row) { return values[row] / measure.unit; };
    if (measure.width == 1) {
        AppendAs<std::int8_t>(rows, value, writer);
    } else if (measure.width == 2) {
        AppendAs<std::int16_t>(rows, value, writer);
    } else if (measure.width == 4) {
        AppendAs<std::int32_t>(rows, value, writer);
    } else {
        AppendAs<std::int64_t>(rows, value, writer);
    }
}

std::size_t PackedColumnCount(const CubeModel& model) {
    std::size_t count = 0;
    for (const KeyColumn& column : model.keyColumns) {
        count = std::max(count, std::size_t{column.packedColumn} + 1);
    }
    return count;
}

void WriteProjection(const CubeModel& model, const FactColumns& facts, std::uint32_t cube,
                     std::size_t projection, const Rows& rows, CubeFileWriter& writer) {
    for (std::size_t packedColumn = 0; packedColumn < PackedColumnCount(model); ++packedColumn) {
        if (HoldsLeadAlone(model.keyColumns, packedColumn, model.projections[projection].sortOrder.front())) {
            continue;
        }
        writer.BeginPackedColumn(cube, projection, packedColumn);
        AppendPackedColumn(model, facts, packedColumn, rows, writer);
        writer.End();
    }
    for (std::size_t measure = 0; measure < model.measures.size(); ++measure) {
        if (model.measures[measure].width == 0) {
            continue;
        }
        writer.BeginValues(cube, projection, measure);
        AppendValues(facts.values[measure], model.measures[measure], rows, writer);
        writer.End();
    }
}

/// Writes which line of the ledger each row is, in as few bytes as every number fits.
void WriteDetailFacts(const CubeModel& model, std::uint32_t cube, std::size_t projection, const Rows& rows,
                      CubeFileWriter& writer) {
    const std::uint8_t width = BytesFor(model.rowCount);
    writer.Begin({static_cast<std::uint32_t>(format::SectionKind::DetailFacts), cube,
                  static_cast<std::uint32_t>(projection), 0});
    for (const std::uint32_t& row : rows) {
        writer.Append(std::as_bytes(std::span(&row, 1)).first(width));
    }
    writer.End();
}

void WriteDetailTexts(const CubeModel& model, const FactColumns& facts, std::uint32_t cube,
                      CubeFileWriter& writer) {
    using format::SectionKind;
    Rows inOrder(facts.rowCount);
    std::iota(inOrder.begin(), inOrder.end(), 0U);
    for (std::uint32_t i = 0; i < model.details.columns.size(); ++i) {
        const DetailModel& column = model.details.columns[i];
        const TextDictionary& texts = facts.details[i].texts;
        const auto number = [&](std::uint32_t row) { return facts.details[i].numbers[row]; };
        const auto section = [&](SectionKind kind, const auto& append) {
            writer.Begin({static_cast<std::uint32_t>(kind), cube, 0, i});
            append();
            writer.End();
        };
        if (column.codeWidth != 0) {
            section(SectionKind::DetailCodes, [&] {
                column.codeWidth == 1   ? AppendAs<std::uint8_t>(inOrder, number, writer)
                : column.codeWidth == 2 ? AppendAs<std::uint16_t>(inOrder, number, writer)
                                        : AppendAs<std::uint32_t>(inOrder, number, writer);
            });
        }
        section(SectionKind::DetailOffsets, [&] {
            std::uint64_t offset = 0;
            for (std::uint32_t text = 0; text <= column.texts; ++text) {
                writer.Append(std::as_bytes(std::span(&offset, 1)).first(column.offsetWidth));
                offset += text < column.texts ? texts.Text(text).size() : 0;
            }
        });
        section(SectionKind::DetailTexts, [&] {
            for (std::uint32_t text = 0; text < column.texts; ++text) {
                writer.Append(std::as_bytes(std::span(texts.Text(text))));
            }
        });
    }
}

/// Writes the facts of row aggregates: only the packed columns of the packed key and of time.
void WriteAggregateRows(const CubeModel& model, const FactColumns& facts, std::uint32_t cube,
                        const BuiltAggregates& aggregates, CubeFileWriter& writer) {
    const auto section = [&](format::SectionKind kind, std::size_t second, const auto& append) {
        writer.Begin({static_cast<std::uint32_t>(kind), cube, 0, static_cast<std::uint32_t>(second)});
        for (const Rows& rows : aggregates.rows) {
            append(rows);
        }
        writer.End();
    };
    std::set<std::size_t> packedColumns;
    for (const AggregateTable::PackedKeyColumn& part : aggregates.model.packedKeyColumns) {
        packedColumns.insert(model.keyColumns[part.column].packedColumn);
    }
    if (aggregates.model.timeColumn) {
        packedColumns.insert(model.keyColumns[*aggregates.model.timeColumn].packedColumn);
    }
    for (const std::size_t packedColumn : packedColumns) {
        section(format::SectionKind::AggregatePackedColumns, packedColumn,
                [&](const Rows& rows) { AppendPackedColumn(model, facts, packedColumn, rows, writer); });
    }
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        if (model.measures[i].width != 0) {
            section(format::SectionKind::AggregateValues, i, [&](const Rows& rows) {
                AppendValues(facts.values[i], model.measures[i], rows, writer);
            });
        }
    }
}

} // namespace

std::vector<std::vector<std::uint16_t>> ChooseSortOrders(const std::vector<KeyColumn>& keyColumns,
                                                         const std::vector<bool>& isCalendar) {
    constexpr std::uint32_t largeFrom = 32; // codes
    constexpr std::size_t mostLeads = 5;
    std::vector<std::uint16_t> texts, dates;
    for (std::size_t i = 0; i < keyColumns.size(); ++i) {
        (isCalendar[i] ? dates : texts).push_back(static_cast<std::uint16_t>(i));
    }
    std::stable_sort(texts.begin(), texts.end(),
                     [&](auto left, auto right) { return keyColumns[left].codes > keyColumns[right].codes; });

    std::vector<std::vector<std::uint16_t>> orders;
    for (const std::uint16_t lead : texts) {
        const bool isLarge = keyColumns[lead].codes >= largeFrom;
        if (!orders.empty() && (!isLarge || orders.size() == mostLeads)) {
            break;
        }
        std::vector<std::uint16_t> order = {lead};
        const auto second =
            std::find_if(texts.begin(), texts.end(), [lead](auto other) { return other != lead; });
        if (second != texts.end()) {
            order.push_back(*second);
        }
        order.insert(order.end(), dates.begin(), dates.end());
        orders.push_back(order);
    }
    for (const std::uint16_t date : dates) {
        orders.push_back({date});
        orders.back().insert(orders.back().end(), texts.begin(),
                             texts.begin() + std::min<std::ptrdiff_t>(2, std::ssize(texts)));
    }
    return orders;
}

ProjectionModel DescribeProjection(const std::vector<std::uint16_t>& sortOrder,
                                   const std::vector<KeyColumn>& keyColumns, const FactColumns& facts) {
    const std::uint16_t lead = sortOrder.front();
    return {sortOrder, FirstRows<std::uint64_t>(facts.keys[lead], keyColumns[lead].codes)};
}

void WriteFacts(const CubeModel& model, const FactColumns& facts, std::uint32_t cube, CubeFileWriter& writer,
                const std::function<void(double)>& progress) {
    const auto sort = [&](std::size_t projection) {
        return SortRows(model.projections[projection].sortOrder, model.keyColumns, facts);
    };
    // Sorts the next order while this one is written.
    std::future<Rows> next = std::async(std::launch::async, sort, std::size_t{0});
    for (std::size_t i = 0; i < model.projections.size(); ++i) {
        const Rows rows = next.get();
        if (i + 1 < model.projections.size()) {
            next = std::async(std::launch::async, sort, i + 1);
        }
        WriteProjection(model, facts, cube, i, rows, writer);
        if (model.keepsDetails) {
            WriteDetailFacts(model, cube, i, rows, writer);
        }
        progress(static_cast<double>(i + 1) / static_cast<double>(model.projections.size() + 1));
    }
    WriteDetailTexts(model, facts, cube, writer);
    const BuiltAggregates aggregates = BuildAggregates(model, facts);
    if (!aggregates.model.records.empty()) {
        WriteAggregates(aggregates.model, model, cube, writer);
        WriteAggregateRows(model, facts, cube, aggregates, writer);
    }
    progress(1);
}

} // namespace qel::engine
