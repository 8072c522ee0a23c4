#include "engine/storage/RollupVerifier.h"

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
    const auto touch = [](KeyRange left, KeyRange right) {
        return left.first >= left.last || left.last >= right.first;
    };
    for (std::uint32_t number = 0; number < groups.Count(); ++number) {
        const KeyRange before{number - 1, 0}, group{number, 0};
        const CodeRanges ranges = groups.Ranges(group);
        if (ranges.size() < 2 || std::adjacent_find(ranges.begin(), ranges.end(), touch) != ranges.end()) {
            return false;
        }
        const CodeRanges left = number == 0 ? CodeRanges() : groups.Ranges(before);
        if (!std::lexicographical_compare(left.begin(), left.end(), ranges.begin(), ranges.end(), IsBefore)) {
            return false;
        }
    }
    return true;
}

/// Rows of a run, counted from its first.
using RowPlaces = std::vector<std::size_t>;

/// Facts added up by their word and their granule of time; sums wrap around.
class FactTotals {
public:
    explicit FactTotals(std::size_t measures) : sums_(measures) {}

    /// The place of a word and a granule, which is new with nothing in it.
    std::size_t PlaceOf(std::uint32_t word, std::uint32_t granule) {
        const auto [found, isNew] = places_.try_emplace(std::uint64_t{word} << 32U | granule, rows_.size());
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
        return places_.size() == other.places_.size() &&
               std::all_of(places_.begin(), places_.end(), [&](const auto& entry) {
                   const auto found = other.places_.find(entry.first);
                   return found != other.places_.end() &&
                          (!withRows || rows_[entry.second] == other.rows_[found->second]) &&
                          std::equal(sums_.begin(), sums_.end(), other.sums_.begin(),
                                     [&](const auto& own, const auto& others) {
                                         return own[entry.second] == others[found->second];
                                     });
               });
    }

private:
    std::unordered_map<std::uint64_t, std::size_t> places_;
    std::vector<std::uint64_t> rows_;
    std::vector<std::vector<std::uint64_t>> sums_; ///< by measure
};

/// Facts one by one, in any order.
struct FactContents {
    std::uint64_t rows = 0, hashes = 0; ///< the hashes of all rows, added up

    bool operator==(const FactContents&) const = default;
};

class RollupCheck {
public:
    explicit RollupCheck(const FactTable& facts) : facts_(facts), rollups_(*facts.Rollups()) {}

    std::string FaultOf(const Rollup& stored) const {
        if (rollups_.Find(stored.key) != &stored) {
            return "its key does not find it";
        }
        const Rollup rollup = stored; // what is checked of it is relied on
        if (!IsOfColumns(rollup.key)) {
            return "its key has codes that do not exist";
        }
        if (rollup.unused != 0 ||
            (rollup.merged != 0 && (rollup.strips == 0 || rollups_.WordColumns().empty()))) {
            return "it has merged strips where there can be none";
        }
        return rollup.strips == 0 ? FaultOfRows(rollup) : FaultOfStrips(rollup);
    }

private:
    static constexpr const char* disorder = "its facts are not in order";
    static constexpr const char* difference = "it differs from the facts";
    static constexpr std::uint32_t allOfWord = 0xFFFFFFFFU;

    std::string FaultOfRows(const Rollup& rollup) const {
        FactContents own, expected;
        if (!AddRows(rollup, own)) {
            return disorder;
        }
        VisitFacts(rollup.key, [&](const Projection& projection, RowRange run, const RowPlaces& rows) {
            AddContents(projection, run, rows, expected);
        });
        return own == expected ? "" : difference;
    }

    std::string FaultOfStrips(const Rollup& rollup) const {
        std::string fault = FaultOfStrips(rollup, rollup.start, rollup.strips, allOfWord);
        if (!fault.empty() || rollup.merged == 0) {
            return fault;
        }
        return FaultOfStrips(rollup, rollup.start + rollup.strips, rollup.merged,
                             ~rollups_.WordColumns().back().Mask());
    }
    /// `kept` is left of the facts' words.
    std::string FaultOfStrips(const Rollup& rollup, std::uint64_t start, std::uint32_t count,
                              std::uint32_t kept) const {
        FactTotals own(facts_.Measures().size()), expected(facts_.Measures().size());
        if (!AddStrips(rollups_.StripsOf(start, count), count, own)) {
            return disorder;
        }
        VisitFacts(rollup.key, [&](const Projection& projection, RowRange run, const RowPlaces& rows) {
            AddTotals(projection, run, rows, kept, expected);
        });
        return own.Equals(expected, rollups_.HasCounts()) && rollup.rows == expected.RowCount() ? ""
                                                                                                : difference;
    }

    bool IsOfColumns(const RollupKey& key) const {
        const auto exists = [&](std::uint16_t column, const KeyRange& codes) {
            if (column == RollupKey::noColumn) {
                return true;
            }
            const CodeRanges ranges = rollups_.Groups().Ranges(codes);
            std::uint32_t end = 0; // ranges ascend
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
                                       const RowPlaces& rows) const {
        const std::vector<std::uint32_t> all = ReadCodes(facts_, projection, column, run);
        std::vector<std::uint32_t> codes;
        codes.reserve(rows.size());
        for (const std::size_t row : rows) {
            codes.push_back(all[row]);
        }
        return codes;
    }
    std::vector<std::uint32_t> WordsAt(const Projection& projection, RowRange run,
                                       const RowPlaces& rows) const {
        std::vector<std::uint32_t> words(rows.size());
        for (const RollupTable::WordColumn& word : rollups_.WordColumns()) {
            const std::vector<std::uint32_t> codes = CodesAt(projection, word.column, run, rows);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                words[i] |= codes[i] << word.shift;
            }
        }
        return words;
    }
    std::vector<std::uint32_t> TimesAt(const Projection& projection, RowRange run,
                                       const RowPlaces& rows) const {
        return rollups_.TimeColumn() ? CodesAt(projection, *rollups_.TimeColumn(), run, rows)
                                     : std::vector<std::uint32_t>(rows.size());
    }
    /// Calls visit(measure, row, value) for the stored values; `row` counts the rows.
    template <class Visit>
    void VisitValues(const Projection& projection, RowRange run, const RowPlaces& rows,
                     const Visit& visit) const {
        for (std::size_t measure = 0; measure < facts_.Measures().size(); ++measure) {
            const std::uint8_t width = facts_.Measures()[measure].width;
            const std::byte* const values = width == 0 ? nullptr : projection.Values(measure, run);
            for (std::size_t i = 0; values != nullptr && i < rows.size(); ++i) {
                visit(measure, i, static_cast<std::uint64_t>(SignedAt(values, width, rows[i])));
            }
        }
    }

    void AddContents(const Projection& projection, RowRange run, const RowPlaces& rows,
                     FactContents& contents) const {
        const auto words = WordsAt(projection, run, rows), times = TimesAt(projection, run, rows);
        std::vector<std::uint64_t> hashes(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            hashes[i] = Mixed(std::uint64_t{words[i]} << 32U | times[i]);
        }
        VisitValues(projection, run, rows, [&](std::size_t, std::size_t row, std::uint64_t value) {
            hashes[row] = Mixed(hashes[row] ^ value);
        });
        contents.rows += rows.size();
        contents.hashes = std::accumulate(hashes.begin(), hashes.end(), contents.hashes);
    }
    void AddTotals(const Projection& projection, RowRange run, const RowPlaces& rows, std::uint32_t kept,
                   FactTotals& totals) const {
        const auto words = WordsAt(projection, run, rows), times = TimesAt(projection, run, rows);
        std::vector<std::size_t> places(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            places[i] = totals.PlaceOf(words[i] & kept, GranuleOf(times[i]));
            totals.AddRows(places[i], 1);
        }
        VisitValues(projection, run, rows, [&](std::size_t measure, std::size_t row, std::uint64_t value) {
            totals.AddValue(places[row], measure, value);
        });
    }
    static std::uint64_t Mixed(std::uint64_t value) { return XXH3_64bits(&value, sizeof value); }
    std::uint32_t GranuleOf(std::uint32_t time) const {
        const auto granules = rollups_.Granules();
        const auto next = std::upper_bound(granules.begin(), granules.end(), time);
        return static_cast<std::uint32_t>(next - granules.begin()) - 1;
    }

    /// Calls visit(projection, run, rows) until all facts under the key were among the rows.
    template <class Visit>
    void VisitFacts(const RollupKey& key, const Visit& visit) const {
        static constexpr KeyRange left{}; // out of the key
        const auto rangesOf = [&](std::uint16_t column, const KeyRange& codes) {
            return column == RollupKey::noColumn ? CodeRanges(&left, 1) : rollups_.Groups().Ranges(codes);
        };
        for (const KeyRange first : rangesOf(key.firstColumn, key.first)) {
            for (const KeyRange second : rangesOf(key.secondColumn, key.second)) {
                VisitFactsUnder({key.firstColumn, key.secondColumn, first, second}, visit);
            }
        }
    }
    /// Of two ranges, from the sort order that one of their columns leads.
    template <class Visit>
    void VisitFactsUnder(const RollupKey& key, const Visit& visit) const {
        const Projection* projection = &facts_.Projections().front();
        RowRange run{0, facts_.RowCount()};
        for (const Projection& other : facts_.Projections()) {
            const std::uint16_t lead = other.SortOrder().front();
            if (lead != key.firstColumn && lead != key.secondColumn) {
                continue;
            }
            const RowRange rows = other.RowsOfLead(lead == key.firstColumn ? key.first : key.second);
            if (rows.Count() < run.Count()) {
                run = rows;
                projection = &other;
            }
        }
        VisitChunks(run, [&](RowRange chunk) {
            RowPlaces rows = AllOf(chunk);
            Restrict(*projection, chunk, key.firstColumn, key.first, rows);
            Restrict(*projection, chunk, key.secondColumn, key.second, rows);
            visit(*projection, chunk, rows);
        });
    }
    void Restrict(const Projection& projection, RowRange run, std::uint16_t column, KeyRange codes,
                  RowPlaces& rows) const {
        if (column == RollupKey::noColumn) {
            return;
        }
        const std::vector<std::uint32_t> all = ReadCodes(facts_, projection, column, run);
        std::erase_if(rows,
                      [&](std::size_t row) { return all[row] < codes.first || all[row] >= codes.last; });
    }

    /// Runs may be long, and a tampered file's longer than memory.
    template <class Visit>
    static void VisitChunks(RowRange run, const Visit& visit) {
        constexpr std::uint64_t chunkRows = 1U << 14U;
        for (; run.first < run.last; run.first += chunkRows) {
            visit(RowRange{run.first, std::min(run.last, run.first + chunkRows)});
        }
    }
    static RowPlaces AllOf(RowRange run) {
        RowPlaces rows(run.Count());
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        return rows;
    }

    bool AddRows(const Rollup& rollup, FactContents& contents) const {
        const RowRange run{rollup.start, rollup.start + rollup.rows};
        const Projection& projection = rollups_.Rows();
        if (rollup.rows > facts_.RowCount() || run.last < run.first || run.last > projection.RowCount()) {
            return false;
        }
        const auto words = rollups_.WordColumns();
        bool isSorted = true;
        std::uint32_t last = 0;
        VisitChunks(run, [&](RowRange chunk) {
            AddContents(projection, chunk, AllOf(chunk), contents);
            if (words.empty()) {
                return;
            }
            const auto codes = ReadCodes(facts_, projection, words.back().column, chunk);
            isSorted = isSorted && last <= codes.front() && std::is_sorted(codes.begin(), codes.end());
            last = codes.back();
        });
        return isSorted;
    }

    bool AddStrips(const RollupTable::Strips& strips, std::uint32_t count, FactTotals& totals) const {
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t entries = strips.entries[i + 1] - strips.entries[i];
            if ((i > 0 && strips.words[i] <= strips.words[i - 1]) || entries == 0 ||
                entries != static_cast<std::uint32_t>(std::popcount(strips.periods[i])) ||
                !AddStrip(strips.words[i], strips.periods[i], strips.entries[i], totals)) {
                return false;
            }
        }
        return true;
    }

    bool AddStrip(std::uint32_t word, std::uint64_t periods, std::uint32_t first, FactTotals& totals) const {
        const auto blockMask = static_cast<std::uint32_t>((std::uint64_t{1} << rollups_.BlockBits()) - 1);
        const std::uint64_t base = std::uint64_t{word & blockMask} * RollupTable::blockGranules;
        const std::uint32_t entries = static_cast<std::uint32_t>(std::popcount(periods));
        for (std::uint32_t entry = 0; entry < entries; ++entry, periods &= periods - 1) {
            const std::uint64_t granule = base + static_cast<std::uint32_t>(std::countr_zero(periods));
            if (granule + 1 >= rollups_.Granules().size()) {
                return false;
            }
            const std::size_t place = totals.PlaceOf(word & ~blockMask, static_cast<std::uint32_t>(granule));
            if (rollups_.HasCounts()) {
                const std::uint32_t* const counts = rollups_.Counts(first, entries);
                totals.AddRows(place, counts[entry] - (entry == 0 ? 0 : counts[entry - 1]));
            }
            for (std::size_t measure = 0; measure < facts_.Measures().size(); ++measure) {
                if (facts_.Measures()[measure].aggregate != Aggregate::Sum) {
                    continue;
                }
                const std::byte* const sums = rollups_.Sums(measure, first, entries);
                const auto sumAt = [&](std::uint32_t at) {
                    return static_cast<std::uint64_t>(SignedAt(sums, rollups_.SumWidth(measure), at));
                };
                totals.AddValue(place, measure, sumAt(entry) - (entry == 0 ? 0 : sumAt(entry - 1)));
            }
        }
        return true;
    }

    const FactTable& facts_;
    const RollupTable& rollups_;
};

} // namespace

std::string FindRollupFault(const Cube& cube) {
    if (cube.Facts().Rollups() == nullptr) {
        return {};
    }
    const RollupTable& rollups = *cube.Facts().Rollups();
    if (!AreWellFormed(rollups.Groups())) {
        return fmt::format("cube {}: the groups of codes are not in order", cube.Name());
    }
    const RollupCheck check(cube.Facts());
    for (std::uint64_t i = 0; i < rollups.Count(); ++i) {
        const std::string fault = check.FaultOf(rollups.At(i));
        if (!fault.empty()) {
            return fmt::format("cube {}, rollup {}: {}", cube.Name(), i + 1, fault);
        }
    }
    return {};
}

} // namespace qel::engine
