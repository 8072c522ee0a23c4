#include "engine/build/Records.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

namespace {

using Field = RecordLayout::Field;

void Store(const Field& field, std::uint64_t number, std::byte* record) {
    std::byte* const to = record + field.offset;
    switch (field.width) {
    case 1:
        std::memcpy(to, &number, 1);
        break;
    case 2:
        std::memcpy(to, &number, 2);
        break;
    case 4:
        std::memcpy(to, &number, 4);
        break;
    default:
        std::memcpy(to, &number, 8);
        break;
    }
}

/// Adds the codes to the packed column of each record, whose bits there are 0.
void StoreCodes(const RecordLayout::KeyField& key, const std::vector<std::uint32_t>& numbers,
                const std::vector<std::uint32_t>& codes, std::size_t size, std::vector<std::byte>& records) {
    std::byte* record = records.data();
    for (const std::uint32_t number : numbers) {
        Store(key.field, key.field.Load(record) | codes[number] << key.shift, record);
        record += size;
    }
}

} // namespace

RecordLayout::RecordLayout(const CubeModel& model) {
    const auto add = [this](std::uint8_t width) {
        const Field field{static_cast<std::uint32_t>(size), width};
        size += width;
        return field;
    };
    for (const KeyColumn& column : model.keyColumns) {
        packedColumns.resize(std::max(packedColumns.size(), std::size_t{column.packedColumn} + 1));
        packedColumns[column.packedColumn].width = column.width;
    }
    for (Field& field : packedColumns) {
        field = add(field.width);
    }
    for (const KeyColumn& column : model.keyColumns) {
        keys.push_back({packedColumns[column.packedColumn], column.Mask(), column.shift});
    }
    for (const MeasureColumn& measure : model.measures) {
        values.push_back(add(measure.width));
    }
    if (model.keepsDetails) {
        factNumber = add(sizeof(std::uint32_t));
    }
    size = std::max<std::size_t>(size, 1);
}

RecordLayout RecordLayout::MovedBy(std::uint32_t bytes) const {
    RecordLayout moved = *this;
    moved.size += bytes;
    for (Field& field : moved.packedColumns) {
        field.offset += bytes;
    }
    for (Field& field : moved.values) {
        field.offset += bytes;
    }
    for (KeyField& key : moved.keys) {
        key.field.offset += bytes;
    }
    moved.factNumber.reset();
    return moved;
}

std::uint64_t RecordSource::Bytes() const {
    return std::accumulate(parts_.begin(), parts_.end(), std::uint64_t{memory_.size()},
                           [](std::uint64_t sum, const Part& part) { return sum + part.size; });
}

std::span<std::byte> RecordSource::Reader::Next(std::span<std::byte> buffer) {
    std::size_t filled = 0;
    if (source_.stream_ == nullptr) {
        filled =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), source_.memory_.size() - done_));
        std::copy_n(source_.memory_.begin() + static_cast<std::ptrdiff_t>(done_), filled, buffer.begin());
        done_ += filled;
        return buffer.first(filled);
    }
    while (filled < buffer.size() && part_ < source_.parts_.size()) {
        const Part& part = source_.parts_[part_];
        const auto bytes =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size() - filled, part.size - done_));
        source_.stream_->Read(part.offset + done_, buffer.subspan(filled, bytes));
        filled += bytes;
        done_ += bytes;
        if (done_ == part.size) {
            ++part_;
            done_ = 0;
        }
    }
    return buffer.first(filled);
}

ByteStream MakeRecords(const CubeModel& model, const RecordLayout& layout,
                       const std::vector<KeyColumnBuilder>& keyColumns, FactStore& facts, bool keeps,
                       SpillStore& store) {
    ByteStream records(store);
    std::vector<std::byte> bytes;
    std::uint64_t row = 0;
    const auto add = [&](const FactBlock& block) {
        bytes.assign(block.rows * layout.size, std::byte{});
        for (std::size_t i = 0; i < keyColumns.size(); ++i) {
            StoreCodes(layout.keys[i], block.keys[i], keyColumns[i].Codes(), layout.size, bytes);
        }
        for (std::size_t i = 0; i < model.measures.size(); ++i) {
            for (std::size_t j = 0; j < block.values[i].size(); ++j) {
                Store(layout.values[i],
                      static_cast<std::uint64_t>(block.values[i][j] / model.measures[i].unit),
                      &bytes[j * layout.size]);
            }
        }
        for (std::size_t j = 0; layout.factNumber && j < block.rows; ++j) {
            Store(*layout.factNumber, row + j, &bytes[j * layout.size]);
        }
        row += block.rows;
        records.Append(bytes);
    };
    keeps ? facts.ForEach(add) : facts.Consume(add);
    records.Finish();
    return records;
}

} // namespace qel::engine
