#include "engine/eval/FactScan.h"

#include "engine/eval/BlockFilter.h"
#include "engine/eval/CodeColumn.h"
#include "engine/eval/ScanPlan.h"

#include <algorithm>

namespace qel::engine {

namespace {

bool AnyIsEmpty(std::span<const Restriction> restrictions) {
    return std::any_of(restrictions.begin(), restrictions.end(),
                       [](const Restriction& restriction) { return restriction.codes.empty(); });
}

/// Calls visit(projection, rows, mask) for every block of the rows that the plan leaves over, until it
/// returns false. The mask is null when every row of the block is selected.
template <class Visit>
void VisitBlocks(const FactTable& facts, std::span<const Restriction> restrictions, const Visit& visit) {
    if (facts.RowCount() == 0 || AnyIsEmpty(restrictions)) {
        return;
    }
    const ScanPlan plan = PlanScan(facts, restrictions);
    std::vector<BlockFilter> filters;
    filters.reserve(plan.tests.size());
    for (const Restriction& test : plan.tests) {
        filters.emplace_back(test, facts.KeyColumns()[test.keyColumn]);
    }
    BlockMask mask;
    for (const RowRange run : plan.rows) {
        for (std::uint64_t first = run.first; first < run.last; first += blockRows) {
            const RowRange rows{first, std::min(run.last, first + blockRows)};
            if (!filters.empty()) {
                std::fill_n(mask.begin(), rows.Count(), std::uint8_t{1});
            }
            for (const BlockFilter& filter : filters) {
                filter.Apply(plan.projection->Keys(filter.KeyColumnIndex(), rows), rows.Count(), mask);
            }
            if (!visit(*plan.projection, rows, filters.empty() ? nullptr : mask.data())) {
                return;
            }
        }
    }
}

std::uint64_t CountSelected(const std::uint8_t* mask, std::size_t count) {
    if (mask == nullptr) {
        return count;
    }
    std::uint32_t selected = 0;
    for (std::size_t i = 0; i < count; ++i) {
        selected += mask[i];
    }
    return selected;
}

/// Sums in unsigned arithmetic: a file that was tampered with may overflow, and must not be undefined.
template <class Amount>
std::uint64_t SumSelected(const std::byte* values, const std::uint8_t* mask, std::size_t count) {
    std::uint64_t sum = 0;
    if (mask == nullptr) {
        for (std::size_t i = 0; i < count; ++i) {
            sum += static_cast<std::uint64_t>(std::int64_t{ReadAt<Amount>(values, i)});
        }
        return sum;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t all = 0 - std::uint64_t{mask[i]};
        sum += static_cast<std::uint64_t>(std::int64_t{ReadAt<Amount>(values, i)}) & all;
    }
    return sum;
}

std::uint64_t SumSelected(const std::byte* values, std::uint8_t width, const std::uint8_t* mask,
                          std::size_t count) {
    switch (width) {
    case 1:
        return SumSelected<std::int8_t>(values, mask, count);
    case 2:
        return SumSelected<std::int16_t>(values, mask, count);
    case 4:
        return SumSelected<std::int32_t>(values, mask, count);
    default:
        return SumSelected<std::int64_t>(values, mask, count);
    }
}

} // namespace

FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure) {
    const Measure& summed = facts.Measures()[measure];
    FactSum total;
    std::uint64_t sum = 0;
    VisitBlocks(
        facts, restrictions, [&](const Projection& projection, RowRange rows, const std::uint8_t* mask) {
            const std::uint64_t selected = CountSelected(mask, rows.Count());
            total.rows += selected;
            if (selected > 0 && summed.aggregate == Aggregate::Sum) {
                sum += SumSelected(projection.Values(measure, rows), summed.width, mask, rows.Count());
            }
            return true;
        });
    total.sum = static_cast<std::int64_t>(sum);
    return total;
}

bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions) {
    bool found = false;
    VisitBlocks(facts, restrictions, [&](const Projection&, RowRange rows, const std::uint8_t* mask) {
        found = CountSelected(mask, rows.Count()) > 0;
        return !found;
    });
    return found;
}

void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks) {
    const std::uint8_t width = facts.KeyColumns()[keyColumn].width;
    VisitBlocks(facts, restrictions,
                [&](const Projection& projection, RowRange rows, const std::uint8_t* mask) {
                    const CodeColumn codes(projection.Keys(keyColumn, rows), width);
                    for (std::size_t i = 0; i < rows.Count(); ++i) {
                        // A code comes from the file and is not trusted to lie within the marks.
                        if (const std::uint32_t code = codes[i]; code < marks.size()) {
                            marks[code] |= mask == nullptr ? std::uint8_t{1} : mask[i];
                        }
                    }
                    return true;
                });
}

} // namespace qel::engine
