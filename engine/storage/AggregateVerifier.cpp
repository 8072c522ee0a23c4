#include "engine/storage/AggregateVerifier.h"

#include "engine/storage/CodeColumn.h"
#include "engine/storage/Format.h"
#include "engine/storage/StoredTotals.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <string_view>
#include <utility>
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

/// A fingerprint of facts that does not depend on their order.
struct FactContents {
    std::uint64_t rows = 0, hashes = 0; ///< sum of the hashes of all rows

    bool operator==(const FactContents&) const = default;
};

class AggregateCheck {
public:
    explicit AggregateCheck(const FactTable& facts)
        : facts_(facts), aggregates_(*facts.Aggregates()),
          rowsLeft_(facts.RowCount() * format::mostAggregatedFacts),
          stepsLeft_((facts.RowCount() + 1) * format::mostSearchSteps) {}

    std::string FaultOf(const Aggregate& stored) {
        const Aggregate aggregate = stored; // a copy: the mapped bytes may change after the checks
        if (!IsOfColumns(aggregate.key)) {
            return "its key has codes that do not exist";
        }
        if (aggregate.unused != 0 || (aggregate.coarserKeyCount != 0 &&
                                      (aggregate.keyCount == 0 || aggregates_.PackedKeyColumns().empty()))) {
            return "it has a coarser aggregate where there can be none";
        }
        const std::string fault =
            aggregate.keyCount == 0 ? FaultOfRows(aggregate) : FaultOfPrefixSums(aggregate);
        const bool isTooMuch = stepsLeft_ == 0 || (fault.empty() && aggregate.rows > rowsLeft_);
        rowsLeft_ -= std::min(rowsLeft_, aggregate.rows);
        return isTooMuch ? tooMany : fault;
    }

private:
    static constexpr const char* disorder = "its facts are not in order";
    static constexpr const char* difference = "it differs from the facts";
    static constexpr const char* tooMany = "there are too many aggregates for the facts";

    std::string FaultOfRows(const Aggregate& aggregate) {
        FactContents own, expected;
        if (!AddRows(aggregate, own)) {
            return disorder;
        }
        VisitFacts(aggregate.key, [&](const Projection& projection, RowRange run, const RowOffsets& rows) {
            AddContents(projection, run, rows, expected);
            return expected.rows <= own.rows;
        });
        return own == expected ? "" : difference;
    }

    std::string FaultOfPrefixSums(const Aggregate& aggregate) {
        const bool hasRows = aggregates_.HasCounts();
        StoredTotals own(facts_.Measures().size()), coarser(facts_.Measures().size());
        std::string fault = AddPrefixSums(aggregate, aggregate.start, aggregate.keyCount, own);
        if (fault.empty() && aggregate.coarserKeyCount != 0) {
            fault = AddPrefixSums(aggregate, aggregate.start + aggregate.keyCount, aggregate.coarserKeyCount,
                                  coarser);
            const bool isEqual = coarser.TakeAll(own, ~aggregates_.PackedKeyColumns().back().Mask()) &&
                                 coarser.IsUsedUp(hasRows);
            fault = fault.empty() && !isEqual ? difference : fault;
        }
        if (!fault.empty()) {
            return fault;
        }
        std::uint64_t taken = 0;
        const bool areStored = VisitFacts(
            aggregate.key, [&](const Projection& projection, RowRange run, const RowOffsets& rows) {
                taken += rows.size();
                return taken <= aggregate.rows && TakeFacts(projection, run, rows, own);
            });
        return areStored && taken == aggregate.rows && own.IsUsedUp(hasRows) ? "" : difference;
    }

    bool IsOfColumns(const AggregateKey& key) {
        const auto exists = [&](std::uint16_t column, const KeyRange& codes) {
            if (column == AggregateKey::noColumn) {
                return true;
            }
            const CodeRanges ranges = aggregates_.Groups().Ranges(codes);
            CountSteps(ranges.size());
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
        if (rows.size() == run.Count()) {
            return ReadCodes(facts_, projection, column, run);
        }
        const KeyColumn& key = facts_.KeyColumns()[column];
        std::vector<std::uint32_t> codes(rows.size());
        if (!projection.HasPackedColumn(key.packedColumn)) { // the row numbers imply it
            std::transform(rows.begin(), rows.end(), codes.begin(),
                           [&](std::size_t row) { return projection.LeadingKeyOf(run.first + row); });
            return codes;
        }
        const CodeColumn stored(projection.PackedColumn(key.packedColumn, run), key);
        std::transform(rows.begin(), rows.end(), codes.begin(), [&](std::size_t row) { return stored[row]; });
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
    /// False when a fact's packed key or bucket is not stored.
    bool TakeFacts(const Projection& projection, RowRange run, const RowOffsets& rows,
                   StoredTotals& totals) const {
        const auto keys = PackedKeysAt(projection, run, rows), times = TimesAt(projection, run, rows);
        std::vector<std::size_t> indexes(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto index = totals.Take(keys[i], BucketOf(times[i]), 1);
            if (!index) {
                return false;
            }
            indexes[i] = *index;
        }
        VisitValues(projection, run, rows, [&](std::size_t measure, std::size_t row, std::uint64_t value) {
            totals.TakeValue(indexes[row], measure, value);
        });
        return true;
    }
    static std::uint64_t Mixed(std::uint64_t value) { return XXH3_64bits(&value, sizeof value); }
    std::uint32_t BucketOf(std::uint32_t time) const {
        const auto buckets = aggregates_.TimeBuckets();
        const auto next = std::upper_bound(buckets.begin(), buckets.end(), time);
        return static_cast<std::uint32_t>(next - buckets.begin()) - 1;
    }

    /// A key column and the codes that it may have there.
    struct Restriction {
        std::uint16_t column = AggregateKey::noColumn;
        CodeRanges codes;
    };
    /// How the facts under a key are found.
    struct Access {
        const Projection* projection = nullptr;
        CodeRanges leading;                ///< empty: all rows are read
        std::array<Restriction, 2> others; ///< besides the leading codes
        bool isSearched = false;           ///< the sort order continues with the other column
    };

    /// Calls visit(projection, run, rows) until every fact under the key was visited, or a call returns
    /// false. Returns whether none did. Reads the sort order led by a column of the key that leaves the
    /// fewest rows, and searches in it for the codes of the other column where they are sorted; never reads
    /// more than all facts, however many ranges the key has.
    template <class Visit>
    bool VisitFacts(const AggregateKey& key, const Visit& visit) {
        const Access access = AccessOf(key);
        const Projection& projection = *access.projection;
        const auto visitRun = [&](RowRange run) {
            return VisitChunks(run, [&](RowRange chunk) {
                const RowOffsets rows = access.isSearched ? Found(projection, chunk, access.others.front())
                                                          : Read(projection, chunk, access.others);
                return stepsLeft_ != 0 && (rows.empty() || visit(projection, chunk, rows));
            });
        };
        if (access.leading.empty()) {
            return visitRun({0, facts_.RowCount()});
        }
        return std::all_of(access.leading.begin(), access.leading.end(),
                           [&](KeyRange codes) { return visitRun(projection.RowsOfLeadingKey(codes)); });
    }
    Access AccessOf(const AggregateKey& key) {
        const Restriction first{key.firstColumn, RangesOf(key.firstColumn, key.first)};
        const Restriction second{key.secondColumn, RangesOf(key.secondColumn, key.second)};
        Access best{&facts_.Projections().front(), {}, {first, second}, false};
        std::uint64_t fewest = facts_.RowCount();
        for (const Projection& projection : facts_.Projections()) {
            const auto order = projection.SortOrder();
            if (order.front() != first.column && order.front() != second.column) {
                continue;
            }
            const bool leadsFirst = order.front() == first.column;
            const Restriction& leading = leadsFirst ? first : second;
            const Restriction& other = leadsFirst ? second : first;
            const bool isSearched = order.size() > 1 && order[1] == other.column;
            CountSteps(leading.codes.size());
            const std::uint64_t rows = RowsLedBy(projection, leading.codes);
            if (std::pair(!isSearched, rows) < std::pair(!best.isSearched, fewest)) {
                fewest = rows;
                best = {&projection, leading.codes, {other, {}}, isSearched};
            }
        }
        return best;
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
    static bool Contains(CodeRanges codes, std::uint32_t code) {
        const auto next = std::upper_bound(
            codes.begin(), codes.end(), code,
            [](std::uint32_t wanted, const KeyRange& range) { return wanted < range.first; });
        return next != codes.begin() && code < std::prev(next)->last;
    }

    /// The rows of a chunk with the codes of the column that follows the leading one in the sort order.
    RowOffsets Found(const Projection& projection, RowRange chunk, const Restriction& wanted) {
        const KeyColumn& column = facts_.KeyColumns()[wanted.column];
        const CodeColumn codes(projection.PackedColumn(column.packedColumn, chunk), column);
        RowOffsets found;
        for (std::uint64_t row = chunk.first; row < chunk.last;) {
            const std::uint32_t lead = projection.LeadingKeyOf(row);
            const std::uint64_t end =
                std::min(projection.RowsOfLeadingKey({lead, lead + 1}).last, chunk.last);
            AddFound(codes, {row - chunk.first, end - chunk.first}, wanted.codes, found);
            row = end;
        }
        return found;
    }
    /// Searches rows that are sorted by the column, for each range or for each row.
    void AddFound(const CodeColumn& column, RowRange rows, CodeRanges wanted, RowOffsets& found) {
        CountSteps(std::min<std::uint64_t>(wanted.size(), rows.Count()));
        if (wanted.size() > rows.Count()) {
            for (std::size_t row = rows.first; row < rows.last; ++row) {
                if (Contains(wanted, column[row])) {
                    found.push_back(row);
                }
            }
            return;
        }
        for (const KeyRange range : wanted) {
            std::size_t row = column.LowerBound(rows.first, rows.last, range.first);
            rows.first = column.LowerBound(row, rows.last, range.last);
            for (; row < rows.first; ++row) {
                found.push_back(row);
            }
        }
    }
    /// The rows of a chunk under the restrictions.
    RowOffsets Read(const Projection& projection, RowRange chunk,
                    const std::array<Restriction, 2>& restrictions) {
        CountSteps(chunk.Count());
        RowOffsets rows = AllOf(chunk);
        for (const Restriction& wanted : restrictions) {
            if (wanted.column == AggregateKey::noColumn) {
                continue;
            }
            const std::vector<std::uint32_t> codes = ReadCodes(facts_, projection, wanted.column, chunk);
            std::erase_if(rows, [&](std::size_t row) { return !Contains(wanted.codes, codes[row]); });
        }
        return rows;
    }
    void CountSteps(std::uint64_t steps) { stepsLeft_ -= std::min(stepsLeft_, steps); }

    /// Splits a run into chunks until a visit returns false; returns whether none did. A run may be long, and
    /// in a tampered file longer than memory.
    template <class Visit>
    static bool VisitChunks(RowRange run, const Visit& visit) {
        constexpr std::uint64_t chunkRows = 1U << 14U;
        for (; run.first < run.last; run.first += chunkRows) {
            if (!visit(RowRange{run.first, std::min(run.last, run.first + chunkRows)})) {
                return false;
            }
        }
        return true;
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
        std::uint32_t last = 0;
        return VisitChunks(run, [&](RowRange chunk) {
            AddContents(projection, chunk, AllOf(chunk), contents);
            if (parts.empty()) {
                return true;
            }
            const auto codes = ReadCodes(facts_, projection, parts.back().column, chunk);
            const bool isSorted = last <= codes.front() && std::is_sorted(codes.begin(), codes.end());
            last = codes.back();
            return isSorted;
        });
    }

    std::string AddPrefixSums(const Aggregate& aggregate, std::uint64_t start, std::uint32_t count,
                              StoredTotals& totals) const {
        const AggregateTable::PrefixIndex index = aggregates_.PrefixIndexOf(start, count);
        const std::uint64_t expected = index.starts[count] - index.starts[0]; // anything in a forged file
        totals.Reserve(std::min({expected, aggregate.rows, facts_.RowCount()}));
        std::uint64_t all = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t entries = index.starts[i + 1] - index.starts[i];
            if ((i > 0 && index.keys[i] <= index.keys[i - 1]) || entries == 0 ||
                entries != static_cast<std::uint32_t>(std::popcount(index.bucketMasks[i])) ||
                !AddKey(index.keys[i], index.bucketMasks[i], index.starts[i], totals)) {
                return disorder;
            }
            all += entries;
            if (all > aggregate.rows) {
                return difference; // each has at least one fact
            }
        }
        return "";
    }

    bool AddKey(std::uint32_t key, std::uint64_t bucketMask, std::uint32_t first,
                StoredTotals& totals) const {
        const auto blockMask = static_cast<std::uint32_t>((std::uint64_t{1} << aggregates_.BlockBits()) - 1);
        const std::uint64_t base = std::uint64_t{key & blockMask} * AggregateTable::blockBuckets;
        const std::uint32_t entries = static_cast<std::uint32_t>(std::popcount(bucketMask));
        for (std::uint32_t entry = 0; entry < entries; ++entry, bucketMask &= bucketMask - 1) {
            const std::uint64_t bucket = base + static_cast<std::uint32_t>(std::countr_zero(bucketMask));
            if (bucket + 1 >= aggregates_.TimeBuckets().size()) {
                return false;
            }
            const std::size_t place = totals.Add(key & ~blockMask, static_cast<std::uint32_t>(bucket));
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
    std::uint64_t rowsLeft_, stepsLeft_; ///< how much work is left before there is too much
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
    AggregateCheck check(cube.Facts());
    const auto faultAt = [&](std::uint64_t index, std::string_view fault) {
        return fmt::format("cube {}, aggregate {}: {}", cube.Name(), index + 1, fault);
    };
    for (std::uint64_t i = 0; i < aggregates.Count(); ++i) {
        if (aggregates.Find(aggregates.At(i).key) != &aggregates.At(i)) {
            return faultAt(i, "its key does not find it");
        }
    }
    for (std::uint64_t i = 0; i < aggregates.Count(); ++i) {
        const std::string fault = check.FaultOf(aggregates.At(i));
        if (!fault.empty()) {
            return faultAt(i, fault);
        }
    }
    return {};
}

} // namespace qel::engine
