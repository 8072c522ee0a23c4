#pragma once

#include "engine/build/PrefixSums.h"
#include "engine/build/Records.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/AggregateWriter.h"
#include "engine/storage/CubeModel.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace qel::engine {

/// The computed aggregates of one layer, column by column.
class AggregateStreams {
public:
    /// `layout` has the fields of the records that AddRows takes.
    AggregateStreams(const CubeModel& model, const AggregateModel& aggregates, const RecordLayout& layout,
                     SpillStore& store);

    /// Adds an aggregate of prefix sums, or the facts of one of rows.
    void Add(Aggregate record, const PrefixSums& prefixSums);
    void Add(Aggregate record, const RecordSource& rows);
    /// Ends the adding.
    void Finish();

    /// Adds the sizes and records of this layer, which follows those added before.
    void AddTo(AggregateModel& aggregates) const;
    /// Appends one column to the file. `sumsBefore` is the number of prefix sums of the layers before.
    void Append(format::SectionKind kind, std::size_t second, std::uint32_t sumsBefore, std::uint8_t width,
                CubeFileWriter& writer) const;
    std::uint32_t SumCount() const { return sumCount_; }

private:
    const CubeModel& model_;
    const RecordLayout& layout_;
    std::vector<Aggregate> records_; ///< that start from 0
    std::uint64_t rows_ = 0, keys_ = 0;
    std::uint32_t sumCount_ = 0;
    std::map<std::size_t, ByteStream> rowColumns_; ///< by packed column
    std::vector<ByteStream> rowValues_, sums_;     ///< by measure
    std::vector<bool> areWide_;                    ///< by measure: a sum needs 8 bytes
    ByteStream packedKeys_, bucketMasks_, prefixStarts_, counts_;
};

} // namespace qel::engine
