#include "engine/storage/RollupVerifier.h"

#include "engine/storage/CodeColumn.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

/// Rows, and by measure the sum of stored values; wraps around.
struct Totals {
    std::uint64_t rows = 0;
    std::vector<std::uint64_t> sums;

    bool operator==(const Totals&) const = default;
};

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

bool Ascend(const CodeGroups& groups) {
    for (std::uint32_t number = 1; number < groups.Count(); ++number) {
        const KeyRange before{number - 1, 0}, group{number, 0};
        const CodeRanges left = groups.Ranges(before), right = groups.Ranges(group);
        if (!std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(), IsBefore))
            return false;
    }
    return true;
}

class RollupCheck {
public:
    explicit RollupCheck(const FactTable& facts) : facts_(facts), rollups_(*facts.Rollups()) {}

    std::string FaultOf(const Rollup& rollup) const {
        if (rollups_.Find(rollup.key) != &rollup)
            return "its key does not find it";
        if (!IsOfColumns(rollup.key))
            return "its key has codes that do not exist";
        Totals own = NoTotals();
        if (rollup.strips == 0 ? !AddRows(rollup, own) : !AddStrips(rollup, own))
            return "its facts are not in order";
        const Totals expected = TotalsOf(rollup.key);
        if (rollup.strips != 0 && !rollups_.HasCounts())
            own.rows = expected.rows; // strips do not tell
        return own == expected && rollup.rows == expected.rows ? "" : "it differs from the facts";
    }

private:
    Totals NoTotals() const { return {0, std::vector<std::uint64_t>(facts_.Measures().size())}; }

    bool IsOfColumns(const RollupKey& key) const {
        const auto exists = [&](std::uint16_t column, const KeyRange& codes) {
            if (column == RollupKey::noColumn)
                return true;
            const CodeRanges ranges = rollups_.Groups().Ranges(codes);
            std::uint32_t end = 0; // ranges ascend
            for (const KeyRange range : ranges) {
                if (range.first < end || range.first >= range.last)
                    return false;
                end = range.last;
            }
            return !ranges.empty() && column < facts_.KeyColumns().size() &&
                   end <= facts_.KeyColumns()[column].codes;
        };
        return exists(key.firstColumn, key.first) && exists(key.secondColumn, key.second);
    }

    void AddValues(const Projection& projection, RowRange rows, const std::vector<bool>& isIn,
                   Totals& totals) const {
        for (std::size_t i = 0; i < isIn.size(); ++i)
            totals.rows += isIn[i] ? 1U : 0U;
        for (std::size_t measure = 0; measure < totals.sums.size(); ++measure) {
            const std::uint8_t width = facts_.Measures()[measure].width;
            if (width == 0)
                continue;
            const std::byte* const values = projection.Values(measure, rows);
            for (std::size_t i = 0; i < isIn.size(); ++i)
                totals.sums[measure] += isIn[i] ? static_cast<std::uint64_t>(SignedAt(values, width, i)) : 0U;
        }
    }

    /// What the facts say.
    Totals TotalsOf(const RollupKey& key) const {
        Totals totals = NoTotals();
        static constexpr KeyRange left{}; // out of the key
        const auto rangesOf = [&](std::uint16_t column, const KeyRange& codes) {
            return column == RollupKey::noColumn ? CodeRanges(&left, 1) : rollups_.Groups().Ranges(codes);
        };
        for (const KeyRange first : rangesOf(key.firstColumn, key.first)) {
            for (const KeyRange second : rangesOf(key.secondColumn, key.second))
                AddFacts({key.firstColumn, key.secondColumn, first, second}, totals);
        }
        return totals;
    }

    /// The facts under two ranges, from the sort order that one of their columns leads.
    void AddFacts(const RollupKey& key, Totals& totals) const {
        const Projection* projection = &facts_.Projections().front();
        RowRange rows{0, facts_.RowCount()};
        for (const Projection& other : facts_.Projections()) {
            const std::uint16_t lead = other.SortOrder().front();
            if (lead != key.firstColumn && lead != key.secondColumn)
                continue;
            const RowRange run = other.RowsOfLead(lead == key.firstColumn ? key.first : key.second);
            if (run.Count() < rows.Count()) {
                rows = run;
                projection = &other;
            }
        }
        std::vector<bool> isIn(rows.Count(), true);
        const auto restrict = [&](std::uint16_t column, KeyRange codes) {
            if (column == RollupKey::noColumn)
                return;
            const auto all = ReadCodes(facts_, *projection, column, rows);
            for (std::size_t i = 0; i < isIn.size(); ++i)
                isIn[i] = isIn[i] && all[i] >= codes.first && all[i] < codes.last;
        };
        restrict(key.firstColumn, key.first);
        restrict(key.secondColumn, key.second);
        AddValues(*projection, rows, isIn, totals);
    }

    bool AddRows(const Rollup& rollup, Totals& totals) const {
        const RowRange rows{rollup.start, rollup.start + rollup.rows};
        const Projection& projection = rollups_.Rows();
        if (rows.last < rows.first || rows.last > projection.RowCount())
            return false;
        AddValues(projection, rows, std::vector<bool>(rows.Count(), true), totals);
        if (rollups_.WordColumns().empty())
            return true;
        const auto codes = ReadCodes(facts_, projection, rollups_.WordColumns().front().column, rows);
        return std::is_sorted(codes.begin(), codes.end());
    }

    bool AddStrips(const Rollup& rollup, Totals& totals) const {
        const RollupTable::Strips strips = rollups_.StripsOf(rollup.start, rollup.strips);
        for (std::uint32_t i = 0; i < rollup.strips; ++i) {
            const std::uint32_t first = strips.entries[i];
            const std::uint32_t entries = strips.entries[i + 1] - first;
            if ((i > 0 && strips.words[i] <= strips.words[i - 1]) || entries == 0 ||
                entries != static_cast<std::uint32_t>(std::popcount(strips.periods[i])))
                return false;
            const std::uint32_t last = first + entries - 1;
            if (rollups_.HasCounts())
                totals.rows += *rollups_.Counts(last, 1);
            for (std::size_t measure = 0; measure < totals.sums.size(); ++measure) {
                if (facts_.Measures()[measure].aggregate == Aggregate::Sum)
                    totals.sums[measure] += static_cast<std::uint64_t>(
                        SignedAt(rollups_.Sums(measure, last, 1), rollups_.SumWidth(measure), 0));
            }
        }
        return true;
    }

    const FactTable& facts_;
    const RollupTable& rollups_;
};

} // namespace

std::string FindRollupFault(const Cube& cube) {
    if (cube.Facts().Rollups() == nullptr)
        return {};
    const RollupTable& rollups = *cube.Facts().Rollups();
    if (!Ascend(rollups.Groups()))
        return fmt::format("cube {}: the groups of codes are not in order", cube.Name());
    const RollupCheck check(cube.Facts());
    for (std::uint64_t i = 0; i < rollups.Count(); ++i) {
        const std::string fault = check.FaultOf(rollups.At(i));
        if (!fault.empty())
            return fmt::format("cube {}, rollup {}: {}", cube.Name(), i + 1, fault);
    }
    return {};
}

} // namespace qel::engine
