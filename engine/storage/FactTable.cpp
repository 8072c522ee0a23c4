#include "engine/storage/FactTable.h"

#include "engine/storage/CodeColumn.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

unsigned KeyColumn::Bits() const { return codes < 2 ? 0U : static_cast<unsigned>(std::bit_width(codes - 1)); }

std::uint32_t KeyColumn::Mask() const {
    return static_cast<std::uint32_t>(((std::uint64_t{1} << Bits()) - 1) << shift);
}

std::uint32_t Projection::LeadingKeyOf(std::uint64_t row) const {
    const auto next = std::upper_bound(leadRows_.begin(), leadRows_.end(), row);
    return static_cast<std::uint32_t>(next - leadRows_.begin() - 1);
}

const std::byte* Projection::PackedColumn(std::size_t packedColumn, RowRange rows) const {
    const std::uint64_t width = packedWidths_[packedColumn];
    return packedColumns_[packedColumn].Bytes(rows.first * width, rows.Count() * width);
}

const std::byte* Projection::Values(std::size_t measure, RowRange rows) const {
    const std::uint64_t width = valueWidths_[measure];
    return values_[measure].Bytes(rows.first * width, rows.Count() * width);
}

bool HoldsLeadAlone(std::span<const KeyColumn> columns, std::size_t packedColumn, std::size_t lead) {
    const auto isOther = [&](const KeyColumn& column) {
        return column.packedColumn == packedColumn && &column != &columns[lead];
    };
    return columns[lead].packedColumn == packedColumn &&
           std::none_of(columns.begin(), columns.end(), isOther);
}

std::vector<std::uint32_t> ReadCodes(const FactTable& facts, const Projection& projection,
                                     std::size_t keyColumn, RowRange rows) {
    std::vector<std::uint32_t> codes(rows.Count());
    const KeyColumn& column = facts.KeyColumns()[keyColumn];
    if (projection.HasPackedColumn(column.packedColumn)) {
        const CodeColumn stored(projection.PackedColumn(column.packedColumn, rows), column);
        for (std::size_t i = 0; i < codes.size(); ++i) {
            codes[i] = stored[i];
        }
        return codes;
    }
    for (std::size_t i = 0; i < codes.size();) {
        const std::uint32_t code = projection.LeadingKeyOf(rows.first + i);
        const std::uint64_t end = std::min(projection.RowsOfLeadingKey({code, code + 1}).last, rows.last);
        for (; i < end - rows.first; ++i) {
            codes[i] = code;
        }
    }
    return codes;
}

} // namespace qel::engine
