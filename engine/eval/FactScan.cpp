#include "engine/eval/FactScan.h"

#include "engine/eval/ScanPlan.h"
#include "engine/eval/VisitBlocks.h"

namespace qel::engine {

namespace {

/// Calls visit(projection, rows, mask), like VisitBlocks, for the rows of the best scan plan.
template <class Visit>
void VisitPlan(const FactTable& facts, std::span<const Restriction> restrictions, const Visit& visit) {
    if (facts.RowCount() == 0 || AnyIsEmpty(restrictions)) {
        return;
    }
    const ScanPlan plan = PlanScan(facts, restrictions);
    const std::vector<BlockFilter> filters = MakeFilters(facts, plan.residuals);
    for (const RowRange run : plan.rows) {
        const bool goesOn =
            VisitBlocks(*plan.projection, run, filters, [&](RowRange rows, const BlockMask* mask) {
                return visit(*plan.projection, rows, mask);
            });
        if (!goesOn) {
            return;
        }
    }
}

/// Marks codes of a projection's leading key. The first qualifying fact of each code is enough.
void MarkLeads(const FactTable& facts, const Projection& projection,
               std::span<const Restriction> restrictions, std::vector<std::uint8_t>& marks) {
    const std::size_t lead = projection.SortOrder().front();
    std::vector<Restriction> residuals;
    const KeyRange all{0, facts.KeyColumns()[lead].codes};
    CodeRanges codes(&all, 1);
    for (const Restriction& restriction : restrictions) {
        if (restriction.keyColumn == lead) {
            codes = restriction.codes;
        } else {
            residuals.push_back(restriction);
        }
    }
    const std::vector<BlockFilter> filters = MakeFilters(facts, residuals);
    for (const KeyRange range : codes) {
        for (std::uint32_t code = range.first; code < range.last; ++code) {
            const bool foundNone =
                VisitBlocks(projection, projection.RowsOfLeadingKey({code, code + 1}), filters,
                            [](RowRange rows, const BlockMask* mask) {
                                return mask != nullptr && CountRows(*mask, rows.Count()) == 0;
                            });
            marks[code] |= foundNone ? std::uint8_t{0} : std::uint8_t{1};
        }
    }
}

/// The projection led by the key column, unless another one leaves so few rows that scanning them is cheaper.
const Projection* ProjectionForMarks(const FactTable& facts, std::span<const Restriction> restrictions,
                                     std::size_t keyColumn) {
    for (const Projection& projection : facts.Projections()) {
        if (projection.SortOrder().front() == keyColumn) {
            constexpr std::uint64_t rowsPerCode = 64; // read to mark one code
            const std::uint64_t few = rowsPerCode * facts.KeyColumns()[keyColumn].codes;
            return PlanScan(facts, restrictions).RowCount() < few ? nullptr : &projection;
        }
    }
    return nullptr;
}

} // namespace

bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions) {
    bool found = false;
    VisitPlan(facts, restrictions, [&](const Projection&, RowRange rows, const BlockMask* mask) {
        found = mask == nullptr || CountRows(*mask, rows.Count()) > 0;
        return !found;
    });
    return found;
}

void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks) {
    if (facts.RowCount() == 0 || AnyIsEmpty(restrictions)) {
        return;
    }
    if (const Projection* led = ProjectionForMarks(facts, restrictions, keyColumn)) {
        MarkLeads(facts, *led, restrictions, marks);
        return;
    }
    VisitPlan(facts, restrictions, [&](const Projection& projection, RowRange rows, const BlockMask* mask) {
        const std::vector<std::uint32_t> codes = ReadCodes(facts, projection, keyColumn, rows);
        for (std::size_t i = 0; i < codes.size(); ++i) {
            // Codes come from the file and may lie beyond the marks.
            if (codes[i] < marks.size()) {
                marks[codes[i]] |= mask == nullptr ? std::uint8_t{1} : (*mask)[i];
            }
        }
        return true;
    });
}

} // namespace qel::engine
