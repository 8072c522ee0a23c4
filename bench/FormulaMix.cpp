#include "bench/FormulaMix.h"

#include "examples/ledger/WideLedger.h"

#include <chrono>
#include <utility>

namespace qel::bench {
namespace {

using ledger::Random;
using ledger::SelectionShape;

constexpr int months = static_cast<int>(ledger::WideLedgerShape{}.months);

/// True in `percent` of 100 cases.
bool Happens(Random& random, std::uint64_t percent) { return random.Below(100) < percent; }

SelectionShape AnyGroup(Random& random) {
    const std::uint64_t point = random.Below(100);
    return point < 25   ? SelectionShape::SuperSum1
           : point < 60 ? SelectionShape::SuperSum2
                        : SelectionShape::SuperSum3;
}

SelectionShape AnyUnit(Random& random) {
    const std::uint64_t point = random.Below(100);
    return point < 20   ? SelectionShape::Level1
           : point < 45 ? SelectionShape::Level2
           : point < 75 ? SelectionShape::Level3
                        : SelectionShape::Level4;
}

/// The large dimensions of a formula, by its percentile.
std::vector<SelectionShape> DrawLargeParts(Random& random, std::uint64_t point) {
    if (point < 45) {
        return {SelectionShape::Account, AnyUnit(random)};
    }
    if (point < 57) {
        return {SelectionShape::Account, SelectionShape::CostCentre};
    }
    if (point < 75) {
        return {AnyGroup(random), AnyUnit(random)};
    }
    if (point < 80) {
        return {AnyGroup(random), SelectionShape::CostCentre};
    }
    if (point < 90) {
        return {AnyUnit(random)};
    }
    if (point < 95) {
        return {Happens(random, 30) ? SelectionShape::Account : AnyGroup(random), SelectionShape::Activity};
    }
    return {Happens(random, 50) ? SelectionShape::SuperSum1 : SelectionShape::Nothing};
}

struct Question {
    std::vector<SelectionShape> parts;
    bool isOfTheWhole = false; ///< the total of a balance sheet or a year
};

Question DrawQuestion(Random& random) {
    const std::uint64_t point = random.Below(100);
    Question question{DrawLargeParts(random, point), point >= 95};
    const auto add = [&](std::uint64_t percent, SelectionShape part) {
        if (Happens(random, percent)) {
            question.parts.push_back(part);
        }
    };
    add(point < 80 ? 8 : 0, SelectionShape::Activity);
    add(question.isOfTheWhole ? 0 : 20, SelectionShape::ObsNumber);
    add(85, SelectionShape::Plbs);
    add(85, SelectionShape::MoneySet);
    add(40, SelectionShape::Firm);
    add(30, SelectionShape::Rh);
    add(50, SelectionShape::OpeningBalance);
    return question;
}

/// Months are counted from the ledger's first.
CalendarDay FirstDayOf(int month) { return {ledger::WideLedger::firstYear + month / 12, month % 12 + 1, 1}; }

CalendarDay LastDayOf(int month) {
    const CalendarDay first = FirstDayOf(month);
    const std::chrono::year_month_day last{std::chrono::year{first.year} / first.month / std::chrono::last};
    return {first.year, first.month, static_cast<int>(static_cast<unsigned>(last.day()))};
}

void SetMonths(ledger::Selection& selection, int first, int last) {
    selection.from = FirstDayOf(first);
    selection.to = LastDayOf(last);
}

void DrawSpan(Random& random, bool isOfTheWhole, ledger::Selection& selection) {
    const auto below = [&](int count) {
        return static_cast<int>(random.Below(static_cast<unsigned>(count)));
    };
    const int any = below(months), year = any - any % 12;
    const std::uint64_t point = isOfTheWhole ? 0 : random.Below(100);
    if (point < 35) {
        SetMonths(selection, year, year + 11);
    } else if (point < 55) {
        SetMonths(selection, year, any);
    } else if (point < 85) {
        SetMonths(selection, any, any);
    } else {
        SetMonths(selection, any, any + below(months - any));
    }
    if (!isOfTheWhole && Happens(random, 10)) {
        int first = any, last = below(months);
        if (last < first) {
            std::swap(first, last);
        }
        selection.from = FirstDayOf(first);
        selection.to = LastDayOf(last);
        selection.from->day = 1 + below(28);
        selection.to.day =
            first == last ? selection.from->day + below(29 - selection.from->day) : 1 + below(28);
    }
}

} // namespace

std::vector<ledger::Selection> DrawFormulas(ledger::RandomSelections& selections, std::uint64_t seed,
                                            std::size_t count, ledger::LedgerCube cube) {
    Random random(seed);
    std::vector<ledger::Selection> formulas;
    formulas.reserve(count);
    while (formulas.size() < count) {
        const Question question = DrawQuestion(random);
        const auto around = Happens(random, 50) ? ledger::Around::Line : ledger::Around::Members;
        ledger::Selection selection = selections.DrawParts(question.parts, around, cube);
        if (Happens(random, 10)) {
            selection.measure = "Quantity";
        }
        DrawSpan(random, question.isOfTheWhole, selection);
        formulas.push_back(std::move(selection));
    }
    return formulas;
}

std::vector<ledger::Selection> DrawSheet(ledger::RandomSelections& selections, std::uint64_t seed,
                                         std::size_t rows, ledger::LedgerCube cube) {
    std::vector<ledger::Selection> cells;
    for (const ledger::Selection& row : DrawFormulas(selections, seed, rows, cube)) {
        const int year = (row.to.year - ledger::WideLedger::firstYear) * 12;
        for (int month = year; month < year + 12; ++month) {
            cells.push_back(row);
            SetMonths(cells.back(), month, month);
        }
    }
    return cells;
}

} // namespace qel::bench
