#include "tests/engine/eval/PlainMdx.h"

#include <fmt/format.h>

#include <cstdlib>
#include <limits>

namespace qel::engine::plain {

namespace {

__extension__ using Wide = __int128;

constexpr const char* measureNames[] = {"Amount", "Quantity", "Lines"};

bool Fits(Wide number) {
    return number >= std::numeric_limits<std::int64_t>::min() &&
           number <= std::numeric_limits<std::int64_t>::max();
}

Wide Raised(const Value& value, int decimals) {
    Wide number = value.scaled;
    for (int i = value.decimals; i < decimals; ++i) {
        number *= 10;
    }
    return number;
}

bool IsExactOrEmpty(const Value& value) { return value.isEmpty || value.isExact; }

} // namespace

Value Exact(std::int64_t scaled, int decimals) {
    const std::string digits = fmt::format("{}e-{}", scaled, decimals);
    return {false, true, scaled, decimals, std::strtod(digits.c_str(), nullptr)};
}

Value Inexact(double number) { return {false, false, 0, 0, number}; }

Value Plus(const Value& a, const Value& b) {
    if (a.isEmpty || b.isEmpty) {
        return a.isEmpty ? b : a;
    }
    const int decimals = std::max(a.decimals, b.decimals);
    const Wide left = Raised(a, decimals);
    const Wide right = Raised(b, decimals);
    return a.isExact && b.isExact && Fits(left) && Fits(right) && Fits(left + right)
               ? Exact(static_cast<std::int64_t>(left + right), decimals)
               : Inexact(a.number + b.number);
}

Value Minus(const Value& a) {
    if (a.isEmpty) {
        return a;
    }
    return a.isExact ? Exact(-a.scaled, a.decimals) : Inexact(-a.number);
}

Value Times(const Value& a, const Value& b) {
    if (a.isEmpty || b.isEmpty) {
        return {};
    }
    const Wide product = Wide{a.scaled} * b.scaled;
    return a.isExact && b.isExact && Fits(product)
               ? Exact(static_cast<std::int64_t>(product), a.decimals + b.decimals)
               : Inexact(a.number * b.number);
}

int Compare(const Value& a, const Value& b) {
    const int decimals = std::max(a.decimals, b.decimals);
    const Wide left = Raised(a, decimals);
    const Wide right = Raised(b, decimals);
    if (IsExactOrEmpty(a) && IsExactOrEmpty(b) && Fits(left) && Fits(right)) {
        return left < right ? -1 : static_cast<int>(left > right);
    }
    return a.number < b.number ? -1 : static_cast<int>(a.number > b.number);
}

std::string World::PathOf(std::size_t hierarchy, int member) const {
    if (member >= calculated) {
        return formulas_[static_cast<std::size_t>(member - calculated)].path;
    }
    return hierarchy == Measures()
               ? fmt::format("[Measures].[{}]", measureNames[member])
               : cube_.hierarchies[hierarchy].members[static_cast<std::size_t>(member)].path;
}

std::string World::NameOf(std::size_t hierarchy, int member) const {
    return member >= calculated ? formulas_[static_cast<std::size_t>(member - calculated)].name
                                : cube_.hierarchies[hierarchy].members[static_cast<std::size_t>(member)].name;
}

Value World::CellAt(const Place& place) const {
    const Formula* top = nullptr;
    for (const int member : place) {
        if (member >= calculated) {
            const Formula* const formula = &formulas_[static_cast<std::size_t>(member - calculated)];
            const bool isAbove = top == nullptr || formula->solveOrder > top->solveOrder ||
                                 (formula->solveOrder == top->solveOrder && formula > top);
            top = isAbove ? formula : top;
        }
    }
    return top != nullptr ? top->number.at(*this, place) : SumOfFacts(place);
}

Value World::SumOfFacts(const Place& place) const {
    std::int64_t sum = 0;
    std::int64_t count = 0;
    const int measure = place.back();
    for (const Fact& fact : cube_.facts) {
        bool counts = true;
        for (std::size_t i = 0; i < Measures() && counts; ++i) {
            const Hierarchy& hierarchy = cube_.hierarchies[i];
            const Member& member = hierarchy.members[static_cast<std::size_t>(place[i])];
            counts = hierarchy.column == noColumn || member.Takes(fact.values[hierarchy.column]);
        }
        if (counts) {
            sum += measure == 0 ? fact.cents : fact.thousandths;
            ++count;
        }
    }
    if (count == 0) {
        return {};
    }
    return measure == 2 ? Exact(count, 0) : Exact(sum, measure == 0 ? 2 : 3);
}

Place With(Place place, const std::vector<std::size_t>& hierarchies, const Tuple& tuple) {
    for (std::size_t i = 0; i < hierarchies.size(); ++i) {
        place[hierarchies[i]] = tuple[i];
    }
    return place;
}

} // namespace qel::engine::plain
