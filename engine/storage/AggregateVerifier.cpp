#include "engine/storage/AggregateVerifier.h"

#include "engine/storage/CodeColumn.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <numeric>
#include <unordered_map>
#include <vector>

namespace qel::engine {

namespace {

std::int64_t SignedAt(const std::byte* values, std::uint8_t width, std::size_t index) {
    switch (width) {
    case 1:
        return ReadAt<std::int8_t>(values, index);
    case 2:
        return ReadAt<std::int16_t>(values, index);
    case 4:
        return ReadAt<std::int32_t>(values, index);
    default:
        return ReadAt<std::int64_t>(values, index);
    }
}

bool AreWellFormed(const CodeGroups& groups) {
    const auto areUnordered = [](KeyRange left, KeyRange right) {
        return left.first >= left.last || left.last >= right.first;
    };
    for (std::uint32_t number = 0; number < groups.Count(); ++number) {
        const KeyRange before{number - 1, 0}, group{number, 0};
        const CodeRanges ranges = groups.Ranges(group);
        if (ranges.size() < 2 ||
            std::adjacent_find(ranges.begin(), ranges.end(), areUnordered) != ranges.end()) {
            return false;
        }
        const CodeRanges left = number == 0 ? CodeRanges() : groups.Ranges(before);
        if (!std::lexicographical_compare(left.begin(), left.end(), ranges.begin(), ranges.end(), IsBefore)) {
            return false;
        }
    }
    return true;
}

/// Row numbers relative to the first row of a run.
using RowOffsets = std::vector<std::size_t>;

/// Facts summed by packed key and time bucket. Sums wrap around on overflow.
class FactTotals {
public:
    explicit FactTotals(std::size_t measures) : sums_(measures) {}

    /// The index of a packed key and bucket, added with zeros when new.
    std::size_t IndexOf(std::uint32_t key, std::uint32_t bucket) {
        const auto [found, isNew] = indexes_.try_emplace(std::uint64_t{key} << 32U | bucket, rows_.size());
        if (isNew) {
            rows_.push_back(0);
            for (std::vector<std::uint64_t>& sums : sums_) {
                sums.push_back(0);
            }
        }
        return found->second;
    }
    void AddRows(std::size_t place, std::uint64_t rows) { rows_[place] += rows; }
    void AddValue(std::size_t place, std::size_t measure, std::uint64_t value) {
        sums_[measure][place] += value;
    }

    std::uint64_t RowCount() const { return std::accumulate(rows_.begin(), rows_.end(), std::uint64_t{0}); }
    bool Equals(const FactTotals& other, bool withRows) const {
        return indexes_.size() == other.indexes_.size() &&
               std::all_of(indexes_.begin(), indexes_.end(), [&](const auto& entry) {
                   const auto found = other.indexes_.find(entry.first);
                   return found != other.indexes_.end() &&
                          (!withRows || rows_[entry.second] == other.rows_[found->second]) &&
                          std::equal(sums_.begin(), sums_.end(), other.sums_.begin(),
                                     [&](const auto& own, const auto& others) {
                                         return own[entry.second] == others[found->second];
                                     });
               });
    }

private:
    std::unordered_map<std::uint64_t, std::size_t> indexes_;
    std::vector<std::uint64_t> rows_;
    std::vector<std::vector<std::uint64_t>> sums_; ///< by measure
};

/// A fingerprint of facts that does not depend on their order.
struct FactContents {
    std::uint64_t rows = 0, hashes = 0; ///< sum of the hashes of all rows

    bool operator==(const FactContents&) const = default;
};

class AggregateCheck {
public:
    explicit AggregateCheck(const FactTable& facts) : facts_(facts), aggregates_(*facts.Aggregates()) {}

    std::string FaultOf(const Aggregate& stored) const {
        if (aggregates_.Find(stored.key) != &stored) {
            return "its key does not find it";
        }
        const Aggregate aggregate = stored; // a copy: the mapped bytes may change after the checks
        if (!IsOfColumns(aggregate.key)) {
            return "its key has codes that do not exist";
        }
        if (aggregate.unused != 0 || (aggregate.coarserKeyCount != 0 &&
                                      (aggregate.keyCount == 0 || aggregates_.PackedKeyColumns().empty()))) {
            return "it has a coarser aggregate where there can be none";
        }
        return aggregate.keyCount == 0 ? FaultOfRows(aggregate) : FaultOfPrefixSums(aggregate);
    }

private:
    static constexpr const char* disorder = "its facts are not in order";
    static constexpr const char* difference = "it differs from the facts";
    static constexpr std::uint32_t wholeKey = 0xFFFFFFFFU;

    std::string FaultOfRows(const Aggregate& aggregate) const {
        FactContents own, expected;
        if (!AddRows(aggregate, own)) {
            return disorder;
        }
        VisitFacts(aggregate.key, [&](const Projection& projection, RowRange run, const RowOffsets& rows) {
            AddContents(projection, run, rows, expected);
        });
        return own == expected ? "" : difference;
    }

    std::string FaultOfPrefixSums(const Aggregate& aggregate) const {
        std::string fault = FaultOfPrefixSums(aggregate, aggregate.start, aggregate.keyCount, wholeKey);
        if (!fault.empty() || aggregate.coarserKeyCount == 0) {
            return fault;
        }
        return FaultOfPrefixSums(aggregate, aggregate.start + aggregate.keyCount, aggregate.coarserKeyCount,
                                 ~aggregates_.PackedKeyColumns().back().Mask());
    }
    /// `kept` masks the bits of the packed key that are compared.
    std::string FaultOfPrefixSums(const Aggregate& aggregate, std::uint64_t start, std::uint32_t count,
                                  std::uint32_t kept) const {
        FactTotals own(facts_.Measures().size()), expected(facts_.Measures().size());
        if (!AddPrefixSums(aggregates_.PrefixIndexOf(start, count), count, own)) {
            return disorder;
        }
        VisitFacts(aggregate.key, [&](const Projection& projection, RowRange run, const RowOffsets& rows) {
            AddTotals(projection, run, rows, kept, expected);
        });
        return own.Equals(expected, aggregates_.HasCounts()) && aggregate.rows == expected.RowCount()
                   ? ""
                   : difference;
    }

    bool IsOfColumns(const AggregateKey& key) const {
        const auto exists = [&](std::uint16_t column, const KeyRange& codes) {
            if (column == AggregateKey::noColumn) {
                return true;
            }
            const CodeRanges ranges = aggregates_.Groups().Ranges(codes);
            std::uint32_t end = 0; // of the previous range
            for (const KeyRange range : ranges) {
                if (range.first < end || range.first >= range.last) {
                    return false;
                }
                end = range.last;
            }
            return !ranges.empty() && column < facts_.KeyColumns().size() &&
                   end <= facts_.KeyColumns()[column].codes;
        };
        return exists(key.firstColumn, key.first) && exists(key.secondColumn, key.second);
    }

    std::vector<std::uint32_t> CodesAt(const Projection& projection, std::size_t column, RowRange run,
                                       const RowOffsets& rows) const {
        const std::vector<std::uint32_t> all = ReadCodes(facts_, projection, column, run);
        std::vector<std::uint32_t> codes;
        codes.reserve(rows.size());
        for (const std::size_t row : rows) {
            codes.push_back(all[row]);
        }
        return codes;
    }
    std::vector<std::uint32_t> PackedKeysAt(const Projection& projection, RowRange run,
                                            const RowOffsets& rows) const {
        std::vector<std::uint32_t> keys(rows.size());
        for (const AggregateTable::PackedKeyColumn& part : aggregates_.PackedKeyColumns()) {
            const std::vector<std::uint32_t> codes = CodesAt(projection, part.column, run, rows);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                keys[i] |= codes[i] << part.shift;
            }
        }
        return keys;
    }
    std::vector<std::uint32_t> TimesAt(const Projection& projection, RowRange run,
                                       const RowOffsets& rows) const {
        return aggregates_.TimeColumn() ? CodesAt(projection, *aggregates_.TimeColumn(), run, rows)
                                        : std::vector<std::uint32_t>(rows.size());
    }
    /// Calls visit(measure, i, value) for the stored value of rows[i].
    template <class Visit>
    void VisitValues(const Projection& projection, RowRange run, const RowOffsets& rows,
                     const Visit& visit) const {
        for (std::size_t measure = 0; measure < facts_.Measures().size(); ++measure) {
            const std::uint8_t width = facts_.Measures()[measure].width;
            const std::byte* const values = width == 0 ? nullptr : projection.Values(measure, run);
            for (std::size_t i = 0; values != nullptr && i < rows.size(); ++i) {
                visit(measure, i, static_cast<std::uint64_t>(SignedAt(values, width, rows[i])));
            }
        }
    }

    void AddContents(const Projection& projection, RowRange run, const RowOffsets& rows,
                     FactContents& contents) const {
        const auto keys = PackedKeysAt(projection, run, rows), times = TimesAt(projection, run, rows);
        std::vector<std::uint64_t> hashes(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            hashes[i] = Mixed(std::uint64_t{keys[i]} << 32U | times[i]);
        }
        VisitValues(projection, run, rows, [&](std::size_t, std::size_t row, std::uint64_t value) {
            hashes[row] = Mixed(hashes[row] ^ value);
        });
        contents.rows += rows.size();
        contents.hashes = std::accumulate(hashes.begin(), hashes.end(), contents.hashes);
    }
    void AddTotals(const Projection& projection, RowRange run, const RowOffsets& rows, std::uint32_t kept,
                   FactTotals& totals) const {
        const auto keys = PackedKeysAt(projection, run, rows), times = TimesAt(projection, run, rows);
        std::vector<std::size_t> indexes(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            indexes[i] = totals.IndexOf(keys[i] & kept, BucketOf(times[i]));
            totals.AddRows(indexes[i], 1);
        }
        VisitValues(projection, run, rows, [&](std::size_t measure, std::size_t row, std::uint64_t value) {
            totals.AddValue(indexes[row], measure, value);
        });
    }
    static std::uint64_t Mixed(std::uint64_t value) { return XXH3_64bits(&value, sizeof value); }
    std::uint32_t BucketOf(std::uint32_t time) const {
        const auto buckets = aggregates_.TimeBuckets();
        const auto next = std::upper_bound(buckets.begin(), buckets.end(), time);
        return static_cast<std::uint32_t>(next - buckets.begin()) - 1;
    }

    /// Calls visit(projection, run, rows) until every fact under the key was visited. Reads the sort order
    /// led by a column of the key that leaves the fewest rows; never more than all facts, however many ranges
    /// the key has.
    template <class Visit>
    void VisitFacts(const AggregateKey& key, const Visit& visit) const {
        const CodeRanges first = RangesOf(key.firstColumn, key.first);
        const CodeRanges second = RangesOf(key.secondColumn, key.second);
        const Projection* projection = &facts_.Projections().front();
        std::uint64_t fewest = facts_.RowCount();
        CodeRanges leading; // none: all facts are read
        for (const Projection& other : facts_.Projections()) {
            const std::uint16_t lead = other.SortOrder().front();
            if (lead != key.firstColumn && lead != key.secondColumn) {
                continue;
            }
            const CodeRanges codes = lead == key.firstColumn ? first : second;
            const std::uint64_t rows = RowsLedBy(other, codes);
            if (rows < fewest) {
                fewest = rows;
                projection = &other;
                leading = codes;
            }
        }
        const auto visitRun = [&](RowRange run) {
            VisitChunks(run, [&](RowRange chunk) {
                RowOffsets rows = AllOf(chunk);
                Restrict(*projection, chunk, key.firstColumn, first, rows);
                Restrict(*projection, chunk, key.secondColumn, second, rows);
                visit(*projection, chunk, rows);
            });
        };
        if (leading.empty()) {
            visitRun({0, facts_.RowCount()});
        }
        for (const KeyRange codes : leading) {
            visitRun(projection->RowsOfLeadingKey(codes));
        }
    }
    /// Empty without a column.
    CodeRanges RangesOf(std::uint16_t column, const KeyRange& codes) const {
        return column == AggregateKey::noColumn ? CodeRanges() : aggregates_.Groups().Ranges(codes);
    }
    static std::uint64_t RowsLedBy(const Projection& projection, CodeRanges codes) {
        std::uint64_t rows = 0;
        for (const KeyRange range : codes) {
            rows += projection.RowsOfLeadingKey(range).Count();
        }
        return rows;
    }
    void Restrict(const Projection& projection, RowRange run, std::uint16_t column, CodeRanges codes,
                  RowOffsets& rows) const {
        if (column == AggregateKey::noColumn) {
            return;
        }
        const std::vector<std::uint32_t> all = ReadCodes(facts_, projection, column, run);
        std::erase_if(rows, [&](std::size_t row) {
            const auto next = std::upper_bound(
                codes.begin(), codes.end(), all[row],
                [](std::uint32_t code, const KeyRange& range) { return code < range.first; });
            return next == codes.begin() || all[row] >= std::prev(next)->last;
        });
    }

    /// Splits a run into chunks: it may be long, and in a tampered file longer than memory.
    template <class Visit>
    static void VisitChunks(RowRange run, const Visit& visit) {
        constexpr std::uint64_t chunkRows = 1U << 14U;
        for (; run.first < run.last; run.first += chunkRows) {
            visit(RowRange{run.first, std::min(run.last, run.first + chunkRows)});
        }
    }
    static RowOffsets AllOf(RowRange run) {
        RowOffsets rows(run.Count());
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        return rows;
    }

    bool AddRows(const Aggregate& aggregate, FactContents& contents) const {
        const RowRange run{aggregate.start, aggregate.start + aggregate.rows};
        const Projection& projection = aggregates_.Rows();
        if (aggregate.rows > facts_.RowCount() || run.last < run.first || run.last > projection.RowCount()) {
            return false;
        }
        const auto parts = aggregates_.PackedKeyColumns();
        bool isSorted = true;
        std::uint32_t last = 0;
        VisitChunks(run, [&](RowRange chunk) {
            AddContents(projection, chunk, AllOf(chunk), contents);
            if (parts.empty()) {
                return;
            }
            const auto codes = ReadCodes(facts_, projection, parts.back().column, chunk);
            isSorted = isSorted && last <= codes.front() && std::is_sorted(codes.begin(), codes.end());
            last = codes.back();
        });
        return isSorted;
    }

    bool AddPrefixSums(const AggregateTable::PrefixIndex& index, std::uint32_t count,
                       FactTotals& totals) const {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t entries = index.starts[i + 1] - index.starts[i];
            if ((i > 0 && index.keys[i] <= index.keys[i - 1]) || entries == 0 ||
                entries != static_cast<std::uint32_t>(std::popcount(index.bucketMasks[i])) ||
                !AddKey(index.keys[i], index.bucketMasks[i], index.starts[i], totals)) {
                return false;
            }
        }
        return true;
    }

    bool AddKey(std::uint32_t key, std::uint64_t bucketMask, std::uint32_t first, FactTotals& totals) const {
        const auto blockMask = static_cast<std::uint32_t>((std::uint64_t{1} << aggregates_.BlockBits()) - 1);
        const std::uint64_t base = std::uint64_t{key & blockMask} * AggregateTable::blockBuckets;
        const std::uint32_t entries = static_cast<std::uint32_t>(std::popcount(bucketMask));
        for (std::uint32_t entry = 0; entry < entries; ++entry, bucketMask &= bucketMask - 1) {
            const std::uint64_t bucket = base + static_cast<std::uint32_t>(std::countr_zero(bucketMask));
            if (bucket + 1 >= aggregates_.TimeBuckets().size()) {
                return false;
            }
            const std::size_t place = totals.IndexOf(key & ~blockMask, static_cast<std::uint32_t>(bucket));
            if (aggregates_.HasCounts()) {
                const std::uint32_t* const counts = aggregates_.Counts(first, entries);
                totals.AddRows(place, counts[entry] - (entry == 0 ? 0 : counts[entry - 1]));
            }
            for (std::size_t measure = 0; measure < facts_.Measures().size(); ++measure) {
                if (facts_.Measures()[measure].function != AggregateFunction::Sum) {
                    continue;
                }
                const std::byte* const sums = aggregates_.Sums(measure, first, entries);
                const auto sumAt = [&](std::uint32_t at) {
                    return static_cast<std::uint64_t>(SignedAt(sums, aggregates_.SumWidth(measure), at));
                };
                totals.AddValue(place, measure, sumAt(entry) - (entry == 0 ? 0 : sumAt(entry - 1)));
            }
        }
        return true;
    }

    const FactTable& facts_;
    const AggregateTable& aggregates_;
};

} // namespace

std::string FindAggregateFault(const Cube& cube) {
    if (cube.Facts().Aggregates() == nullptr) {
        return {};
    }
    const AggregateTable& aggregates = *cube.Facts().Aggregates();
    if (!AreWellFormed(aggregates.Groups())) {
        return fmt::format("cube {}: the groups of codes are not in order", cube.Name());
    }
    const AggregateCheck check(cube.Facts());
    for (std::uint64_t i = 0; i < aggregates.Count(); ++i) {
        const std::string fault = check.FaultOf(aggregates.At(i));
        if (!fault.empty()) {
            return fmt::format("cube {}, aggregate {}: {}", cube.Name(), i + 1, fault);
        }
    }
    return {};
}

} // namespace qel::engine
