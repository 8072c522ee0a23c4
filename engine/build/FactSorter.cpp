#include "engine/build/FactSorter.h"

#include <algorithm>
#include <future>
#include <numeric>
#include <span>

namespace qel::engine {

namespace {

using Rows = std::vector<std::uint32_t>;

/// The place of every code's first row, and behind them the row count.
template <class Count>
std::vector<Count> FirstRows(const std::vector<std::uint32_t>& codes, std::uint32_t codeCount) {
    std::vector<Count> first(std::size_t{codeCount} + 1);
    for (const std::uint32_t code : codes)
        ++first[std::size_t{code} + 1];
    std::partial_sum(first.begin(), first.end(), first.begin());
    return first;
}

/// The rows in order: one counting sort for every key, the least significant first.
Rows SortRows(const std::vector<std::uint16_t>& sortOrder, const std::vector<KeyColumn>& keyColumns,
              const FactColumns& facts) {
    Rows rows(facts.rowCount), sorted(facts.rowCount);
    std::iota(rows.begin(), rows.end(), 0U);
    for (auto column = sortOrder.rbegin(); column != sortOrder.rend(); ++column) {
        const auto& codes = facts.keys[*column];
        auto place = FirstRows<std::uint32_t>(codes, keyColumns[*column].codes);
        for (const std::uint32_t row : rows)
            sorted[place[codes[row]]++] = row;
        rows.swap(sorted);
    }
    return rows;
}

/// Appends a column in the rows' order, narrowed.
template <class Stored, class Wide>
void AppendAs(const std::vector<Wide>& column, const Rows& rows, CubeFileWriter& writer) {
    constexpr std::size_t blockRows = 65536;
    std::vector<Stored> block;
    for (std::size_t first = 0; first < rows.size(); first += blockRows) {
        block.resize(std::min(blockRows, rows.size() - first));
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = static_cast<Stored>(column[rows[first + i]]);
        writer.Append(std::as_bytes(std::span(block)));
    }
}

void AppendKeys(const std::vector<std::uint32_t>& codes, std::uint8_t width, const Rows& rows,
                CubeFileWriter& writer) {
    if (width == 1)
        AppendAs<std::uint8_t>(codes, rows, writer);
    else if (width == 2)
        AppendAs<std::uint16_t>(codes, rows, writer);
    else
        AppendAs<std::uint32_t>(codes, rows, writer);
}

void AppendValues(const std::vector<std::int64_t>& values, std::uint8_t width, const Rows& rows,
                  CubeFileWriter& writer) {
    if (width == 1)
        AppendAs<std::int8_t>(values, rows, writer);
    else if (width == 2)
        AppendAs<std::int16_t>(values, rows, writer);
    else if (width == 4)
        AppendAs<std::int32_t>(values, rows, writer);
    else
        AppendAs<std::int64_t>(values, rows, writer);
}

} // namespace

std::vector<std::vector<std::uint16_t>> ChooseSortOrders(const std::vector<KeyColumn>& keyColumns,
                                                         const std::vector<bool>& isCalendar) {
    constexpr std::uint32_t largeFrom = 32; // codes
    constexpr std::size_t mostLeads = 5;
    std::vector<std::uint16_t> texts, dates;
    for (std::size_t i = 0; i < keyColumns.size(); ++i)
        (isCalendar[i] ? dates : texts).push_back(static_cast<std::uint16_t>(i));
    std::stable_sort(texts.begin(), texts.end(),
                     [&](auto left, auto right) { return keyColumns[left].codes > keyColumns[right].codes; });

    std::vector<std::vector<std::uint16_t>> orders;
    for (const std::uint16_t lead : texts) {
        const bool isLarge = keyColumns[lead].codes >= largeFrom;
        if (!orders.empty() && (!isLarge || orders.size() == mostLeads))
            break;
        std::vector<std::uint16_t> order = {lead};
        const auto second =
            std::find_if(texts.begin(), texts.end(), [lead](auto other) { return other != lead; });
        if (second != texts.end())
            order.push_back(*second);
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
    // The next order is sorted while this one is written.
    std::future<Rows> next = std::async(std::launch::async, sort, std::size_t{0});
    for (std::size_t i = 0; i < model.projections.size(); ++i) {
        const Rows rows = next.get();
        if (i + 1 < model.projections.size())
            next = std::async(std::launch::async, sort, i + 1);
        for (std::size_t column = 0; column < model.keyColumns.size(); ++column) {
            writer.BeginKeys(cube, i, column);
            AppendKeys(facts.keys[column], model.keyColumns[column].width, rows, writer);
            writer.End();
        }
        for (std::size_t measure = 0; measure < model.measures.size(); ++measure) {
            if (model.measures[measure].width == 0)
                continue;
            writer.BeginValues(cube, i, measure);
            AppendValues(facts.values[measure], model.measures[measure].width, rows, writer);
            writer.End();
        }
        progress(static_cast<double>(i + 1) / static_cast<double>(model.projections.size()));
    }
}

} // namespace qel::engine
