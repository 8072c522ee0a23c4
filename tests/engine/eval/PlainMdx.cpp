#include "tests/engine/eval/PlainMdx.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>

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

/// The members of a group's tuple that nothing in the place has replaced.
std::vector<std::pair<std::size_t, int>> Open(const Place& place, const Group& group, const Tuple& tuple) {
    std::vector<std::pair<std::size_t, int>> open;
    for (std::size_t i = 0; i < tuple.size(); ++i) {
        const auto found = place.groups.find(group.hierarchies[i]);
        if (found != place.groups.end() && found->second.get() == &group) {
            open.emplace_back(group.hierarchies[i], tuple[i]);
        }
    }
    return open;
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

int World::ParentOf(std::size_t hierarchy, int member) const {
    return hierarchy == Measures() || member >= calculated
               ? noParent
               : cube_.hierarchies[hierarchy].members[static_cast<std::size_t>(member)].parent;
}

Value World::CellAt(const Place& place) const {
    const Formula* top = nullptr;
    for (const int member : place.members) {
        if (member >= calculated) {
            const Formula* const formula = &formulas_[static_cast<std::size_t>(member - calculated)];
            const bool isAbove = top == nullptr || formula->solveOrder > top->solveOrder ||
                                 (formula->solveOrder == top->solveOrder && formula > top);
            top = isAbove ? formula : top;
        }
    }
    if (top != nullptr) {
        return top->number.at(*this, place);
    }
    // Tuples with calculated members are no facts: each adds its own cell.
    Value sum = SumOfFacts(place);
    std::set<std::vector<std::pair<std::size_t, int>>> added;
    for (const auto& [hierarchy, group] : place.groups) {
        for (const Tuple& tuple : group->tuples) {
            std::vector<std::pair<std::size_t, int>> open = Open(place, *group, tuple);
            Place own = place;
            bool isCalculated = false;
            for (const auto& [at, member] : open) {
                own = With(own, {at}, {member});
                isCalculated = isCalculated || member >= calculated;
            }
            if (isCalculated && added.insert(open).second) {
                sum = Plus(sum, CellAt(own));
            }
        }
    }
    return sum;
}

Value World::SumOfFacts(const Place& place) const {
    std::int64_t sum = 0;
    std::int64_t count = 0;
    const int measure = place.back();
    for (const Fact& fact : cube_.facts) {
        if (Counts(fact, place)) {
            sum += measure == 0 ? fact.cents : fact.thousandths;
            ++count;
        }
    }
    if (count == 0) {
        return {};
    }
    return measure == 2 ? Exact(count, 0) : Exact(sum, measure == 0 ? 2 : 3);
}

bool World::Takes(std::size_t hierarchy, int member, const Fact& fact) const {
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    return tree.column == noColumn ||
           tree.members[static_cast<std::size_t>(member)].Takes(fact.values[tree.column]);
}

/// A fact counts when every single member takes it, and of every group some stored tuple.
bool World::Counts(const Fact& fact, const Place& place) const {
    for (std::size_t i = 0; i < Measures(); ++i) {
        if (place[i] != several) {
            if (!Takes(i, place[i], fact)) {
                return false;
            }
            continue;
        }
        const Group& group = *place.groups.at(i);
        const bool some = std::any_of(group.tuples.begin(), group.tuples.end(), [&](const Tuple& tuple) {
            const auto open = Open(place, group, tuple);
            return std::all_of(open.begin(), open.end(), [&](const auto& member) {
                return member.second < calculated && Takes(member.first, member.second, fact);
            });
        });
        if (!some) {
            return false;
        }
    }
    return true;
}

int Place::Current(std::size_t hierarchy) const {
    if (members[hierarchy] == several) {
        throw NoCurrentMember();
    }
    return members[hierarchy];
}

Place With(Place place, const std::vector<std::size_t>& hierarchies, const Tuple& tuple) {
    for (std::size_t i = 0; i < hierarchies.size(); ++i) {
        place.members[hierarchies[i]] = tuple[i];
        place.groups.erase(hierarchies[i]);
    }
    return place;
}

Place WithAll(Place place, const std::vector<std::size_t>& hierarchies, const std::vector<Tuple>& tuples) {
    const auto group = std::make_shared<const Group>(Group{hierarchies, tuples});
    for (std::size_t i = 0; i < hierarchies.size(); ++i) {
        const bool isOne =
            !tuples.empty() && std::all_of(tuples.begin(), tuples.end(),
                                           [&](const Tuple& tuple) { return tuple[i] == tuples.front()[i]; });
        place = With(place, {hierarchies[i]}, {isOne ? tuples.front()[i] : several});
        if (!isOne) {
            place.groups[hierarchies[i]] = group;
        }
    }
    return place;
}

} // namespace qel::engine::plain
