#include "bench/FormulaMix.h"

#include <algorithm>
#include <chrono>

namespace qel::bench {
namespace {

using ledger::SelectionShape;

struct MixPart {
    std::uint64_t weight; ///< in a hundred
    std::vector<SelectionShape> parts;
};

const std::vector<MixPart>& Mix() {
    static const std::vector<MixPart> mix{
        {14, {SelectionShape::Account}},
        {12, {SelectionShape::Account, SelectionShape::Level2}},
        {10, {SelectionShape::Account, SelectionShape::CostCentre}},
        {6, {SelectionShape::Account, SelectionShape::Firm, SelectionShape::MoneySet}},
        {12, {SelectionShape::SuperSum3, SelectionShape::Level3}},
        {10, {SelectionShape::SuperSum2, SelectionShape::Level2, SelectionShape::OpeningBalance}},
        {6, {SelectionShape::SuperSum1, SelectionShape::Level1, SelectionShape::Plbs}},
        {8, {SelectionShape::CostCentre, SelectionShape::SuperSum2}},
        {5, {SelectionShape::CostCentre}},
        {6, {SelectionShape::Activity, SelectionShape::SuperSum2}},
        {3, {SelectionShape::Activity}},
        {4, {SelectionShape::SuperSum1, SelectionShape::Rh}},
        {2, {SelectionShape::Level1}},
        {2, {SelectionShape::Nothing}},
    };
    return mix;
}

const std::vector<SelectionShape>& DrawParts(ledger::Random& random) {
    std::uint64_t point = random.Below(100);
    for (const MixPart& part : Mix()) {
        if (point < part.weight) {
            return part.parts;
        }
        point -= part.weight;
    }
    return Mix().back().parts;
}

/// The first month of the span that ends with the given month, as a count of months since year 0.
int FirstMonth(ledger::Random& random, const CalendarDay& day) {
    const int month = day.year * 12 + day.month - 1;
    const std::uint64_t point = random.Below(100);
    if (point < 40) {
        return month;
    }
    if (point < 60) {
        return month - month % 3;
    }
    if (point < 85) {
        return day.year * 12;
    }
    return month - static_cast<int>(random.Below(60));
}

CalendarDay LastDayOf(int year, int month) {
    const std::chrono::year_month_day day{std::chrono::year{year} / month / std::chrono::last};
    return {year, month, static_cast<int>(static_cast<unsigned>(day.day()))};
}

void DrawSpan(ledger::Random& random, const CalendarDay& day, ledger::Selection& selection) {
    const int first = FirstMonth(random, day);
    selection.from = CalendarDay{first / 12, first % 12 + 1, 1};
    selection.to = LastDayOf(day.year, day.month);
    if (random.Below(11) == 0) {
        selection.from->day = static_cast<int>(random.Between(2, 28));
        selection.to.day = std::max(selection.from->day, static_cast<int>(random.Between(1, 28)));
    }
}

} // namespace

std::vector<ledger::Selection> DrawFormulas(ledger::RandomSelections& selections, std::uint64_t seed,
                                            std::size_t count, ledger::LedgerCube cube) {
    ledger::Random random(seed);
    std::vector<ledger::Selection> formulas;
    formulas.reserve(count);
    while (formulas.size() < count) {
        ledger::Selection selection = selections.DrawParts(DrawParts(random), cube);
        DrawSpan(random, selections.LastLineDay(), selection);
        formulas.push_back(std::move(selection));
    }
    return formulas;
}

std::vector<ledger::Selection> DrawSheet(ledger::RandomSelections& selections, std::uint64_t seed,
                                         std::size_t rows, ledger::LedgerCube cube) {
    std::vector<ledger::Selection> cells;
    for (const ledger::Selection& row : DrawFormulas(selections, seed, rows, cube)) {
        for (int month = 1; month <= 12; ++month) {
            cells.push_back(row);
            cells.back().from = CalendarDay{row.to.year, month, 1};
            cells.back().to = LastDayOf(row.to.year, month);
        }
    }
    return cells;
}

} // namespace qel::bench
