#include "tests/engine/eval/RandomMdx.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine::plain {

namespace {

std::vector<Tuple> Singles(const std::vector<int>& members) {
    std::vector<Tuple> tuples;
    tuples.reserve(members.size());
    for (const int member : members) {
        tuples.push_back({member});
    }
    return tuples;
}

Set Constant(std::string text, std::size_t hierarchy, const std::vector<int>& members) {
    return {std::move(text), {hierarchy}, [tuples = Singles(members)](const World&, const Place&) {
                return tuples;
            }};
}

bool Contains(const std::vector<Tuple>& tuples, const Tuple& tuple) {
    return std::find(tuples.begin(), tuples.end(), tuple) != tuples.end();
}

/// The distinct tuples of `left` that are (or are not) in `right`.
std::vector<Tuple> Kept(const std::vector<Tuple>& left, const std::vector<Tuple>& right, bool isInRight) {
    std::vector<Tuple> kept;
    for (const Tuple& tuple : left) {
        if (Contains(right, tuple) == isInRight && !Contains(kept, tuple)) {
            kept.push_back(tuple);
        }
    }
    return kept;
}

std::vector<Tuple> Joined(std::vector<Tuple> left, const std::vector<Tuple>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Set Combined(const char* form, const Set& left, const Set& right,
             std::vector<Tuple> (*combine)(const std::vector<Tuple>&, const std::vector<Tuple>&)) {
    return {fmt::format(fmt::runtime(form), left.text, right.text), left.hierarchies,
            [left, right, combine](const World& world, const Place& place) {
                return combine(left.at(world, place), right.at(world, place));
            }};
}

Number Binary(const Number& left, const char* sign, const Number& right,
              Value (*apply)(const Value&, const Value&)) {
    return {fmt::format("({} {} {})", left.text, sign, right.text),
            [left, right, apply](const World& world, const Place& place) {
                return apply(left.at(world, place), right.at(world, place));
            }};
}

/// Sorts tuples by a value, stably.
std::vector<Tuple> Sorted(const World& world, const Place& place, const Set& set, const Number& by,
                          bool descends) {
    std::vector<std::pair<Value, Tuple>> valued;
    for (const Tuple& tuple : set.at(world, place)) {
        valued.emplace_back(by.at(world, With(place, set.hierarchies, tuple)), tuple);
    }
    std::stable_sort(valued.begin(), valued.end(), [descends](const auto& a, const auto& b) {
        return descends ? Compare(b.first, a.first) < 0 : Compare(a.first, b.first) < 0;
    });
    std::vector<Tuple> sorted;
    sorted.reserve(valued.size());
    for (const auto& [value, tuple] : valued) {
        sorted.push_back(tuple);
    }
    return sorted;
}

} // namespace

Set RandomMdx::Leaf(std::size_t hierarchy) {
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    std::vector<int> members;
    std::string text;
    for (std::size_t count = 1 + Below(4); count > 0; --count) {
        members.push_back(AnyMember(hierarchy));
        text += (text.empty() ? "" : ", ") + tree.members[static_cast<std::size_t>(members.back())].path;
    }
    return Constant("{" + text + "}", hierarchy, members);
}

Set RandomMdx::Family(std::size_t hierarchy) {
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    const int member = AnyMember(hierarchy);
    const std::string& path = tree.members[static_cast<std::size_t>(member)].path;
    const int level = static_cast<int>(Below(tree.levels.size()));
    switch (Below(5)) {
    case 0:
        return Constant(path + ".Children", hierarchy, tree.Children(member));
    case 4: {
        std::vector<int> all{0};
        for (std::size_t i = 0; i < all.size(); ++i) { // children right behind their parent
            const std::vector<int> children = tree.Children(all[i]);
            all.insert(all.begin() + static_cast<std::ptrdiff_t>(i) + 1, children.begin(), children.end());
        }
        return Constant(tree.uniqueName + ".Members", hierarchy, all);
    }
    case 1: {
        std::vector<int> below;
        for (const int other : tree.OfLevel(level)) {
            if (tree.AncestorAt(other, tree.members[static_cast<std::size_t>(member)].level) == member) {
                below.push_back(other);
            }
        }
        return Constant(fmt::format("Descendants({}, {}.Levels({}))", path, tree.uniqueName, level),
                        hierarchy, below);
    }
    case 2: {
        const std::string& name = tree.levels[static_cast<std::size_t>(level)];
        const bool isHierarchyToo = name == tree.dimension; // the name alone would mean the hierarchy
        return Constant(fmt::format("{}.{}.Members", tree.uniqueName,
                                    isHierarchyToo ? fmt::format("Levels({})", level) : "[" + name + "]"),
                        hierarchy, tree.OfLevel(level));
    }
    default: {
        std::vector<int> ancestors;
        for (int step = member; step != noParent;
             step = tree.members[static_cast<std::size_t>(step)].parent) {
            ancestors.push_back(step);
        }
        return Constant("Ascendants(" + path + ")", hierarchy, ancestors);
    }
    }
}

/// Consecutive members of a level: a range, or periods up to one.
Set RandomMdx::Range(std::size_t hierarchy) {
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    const int member = AnyMember(hierarchy);
    const std::vector<int> level = tree.OfLevel(tree.members[static_cast<std::size_t>(member)].level);
    const auto at = std::find(level.begin(), level.end(), member);
    const auto path = [&](int number) { return tree.members[static_cast<std::size_t>(number)].path; };
    if (OneIn(2)) {
        const auto count = static_cast<std::ptrdiff_t>(1 + Below(6));
        const auto first = at - level.begin() < count ? level.begin() : at + 1 - count;
        return Constant(fmt::format("LastPeriods({}, {})", count, path(member)), hierarchy, {first, at + 1});
    }
    const auto other = level.begin() + static_cast<std::ptrdiff_t>(Below(level.size()));
    return Constant(fmt::format("{{{} : {}}}", path(member), path(*other)), hierarchy,
                    {std::min(at, other), std::max(at, other) + 1});
}

/// Tuples of a set chosen or sorted by the values of their cells.
Set RandomMdx::Chosen(std::size_t hierarchy, int depth) {
    const Set set = SetOver(hierarchy, depth - 1);
    if (OneIn(2)) {
        const Condition condition = ConditionOf(1);
        return {fmt::format("Filter({}, {})", set.text, condition.text), set.hierarchies,
                [set, condition](const World& world, const Place& place) {
                    std::vector<Tuple> kept;
                    for (const Tuple& tuple : set.at(world, place)) {
                        if (condition.at(world, With(place, set.hierarchies, tuple))) {
                            kept.push_back(tuple);
                        }
                    }
                    return kept;
                }};
    }
    const Number by = NumberOf(1);
    const bool descends = OneIn(2);
    if (OneIn(2)) {
        return {
            fmt::format("Order({}, {}, {})", set.text, by.text, descends ? "BDESC" : "BASC"), set.hierarchies,
            [=](const World& world, const Place& place) { return Sorted(world, place, set, by, descends); }};
    }
    const std::size_t count = Below(4);
    return {fmt::format("{}({}, {}, {})", descends ? "TopCount" : "BottomCount", set.text, count, by.text),
            set.hierarchies, [=](const World& world, const Place& place) {
                std::vector<Tuple> sorted = Sorted(world, place, set, by, descends);
                sorted.resize(std::min(count, sorted.size()));
                return sorted;
            }};
}

Set RandomMdx::Name(const std::string& name, Set set) {
    named_ = {name, set.hierarchies,
              [set](const World& world, const Place&) { return set.at(world, world.Start()); }};
    return set;
}

Set RandomMdx::TuplesOver(std::size_t first, std::size_t second) {
    std::vector<Tuple> tuples;
    std::string text;
    const World world(cube_);
    for (std::size_t count = 1 + Below(5); count > 0; --count) {
        tuples.push_back({AnyMember(first), AnyMember(second)});
        text += fmt::format("{}({}, {})", text.empty() ? "" : ", ", world.PathOf(first, tuples.back()[0]),
                            world.PathOf(second, tuples.back()[1]));
    }
    return {"{" + text + "}", {first, second}, [tuples](const World&, const Place&) { return tuples; }};
}

/// A tuple's way down from the top, hierarchy by hierarchy: every step has a member and a place, where its
/// value is taken when it differs from another. Tuples are sorted as their ways are.
Set RandomMdx::Ordered(const Set& set) {
    const Number by = NumberOf(1);
    const bool descends = OneIn(2);
    return {fmt::format("Order({}, {}, {})", set.text, by.text, descends ? "DESC" : "ASC"), set.hierarchies,
            [=](const World& world, const Place& place) {
                using Way = std::vector<std::vector<std::pair<Place, int>>>;
                std::vector<std::pair<Way, Tuple>> ways;
                for (const Tuple& tuple : set.at(world, place)) {
                    Way way;
                    Place before = place;
                    for (std::size_t i = 0; i < tuple.size(); ++i) {
                        const std::size_t hierarchy = set.hierarchies[i];
                        way.emplace_back();
                        for (int step = tuple[i]; step != noParent; step = world.ParentOf(hierarchy, step)) {
                            way.back().emplace(way.back().begin(), With(before, {hierarchy}, {step}), step);
                        }
                        before = With(before, {hierarchy}, {tuple[i]});
                    }
                    ways.emplace_back(std::move(way), tuple);
                }
                const auto isStepBefore = [&](const auto& a, const auto& b) {
                    if (a.second == b.second) {
                        return false;
                    }
                    const int order =
                        Compare(by.at(world, a.first), by.at(world, b.first)) * (descends ? -1 : 1);
                    return order != 0 ? order < 0 : a.second < b.second;
                };
                std::stable_sort(ways.begin(), ways.end(), [&](const auto& a, const auto& b) {
                    for (std::size_t i = 0; i < a.first.size(); ++i) {
                        if (a.second[i] != b.second[i]) {
                            return std::lexicographical_compare(a.first[i].begin(), a.first[i].end(),
                                                                b.first[i].begin(), b.first[i].end(),
                                                                isStepBefore);
                        }
                    }
                    return false;
                });
                std::vector<Tuple> sorted;
                sorted.reserve(ways.size());
                for (const auto& [way, tuple] : ways) {
                    sorted.push_back(tuple);
                }
                return sorted;
            }};
}

Set RandomMdx::SetOver(std::size_t hierarchy, int depth, bool onlyStored) {
    const bool fits = named_ && named_->hierarchies == std::vector<std::size_t>{hierarchy};
    if (fits && !onlyStored && OneIn(3)) {
        return *named_;
    }
    if (depth <= 0) {
        const std::size_t kind = Below(3);
        return kind == 0 ? Leaf(hierarchy) : kind == 1 ? Family(hierarchy) : Range(hierarchy);
    }
    if (!onlyStored && OneIn(3)) {
        return Chosen(hierarchy, depth);
    }
    const Set left = SetOver(hierarchy, depth - 1, onlyStored);
    const Set right = SetOver(hierarchy, depth - 1, onlyStored);
    using Tuples = std::vector<Tuple>;
    switch (Below(6)) {
    case 0:
        return Combined("Union({}, {})", left, right, [](const Tuples& a, const Tuples& b) {
            return Kept(Joined(a, b), Joined(a, b), true);
        });
    case 1:
        return Combined("{{{}, {}}}", left, right,
                        [](const Tuples& a, const Tuples& b) { return Joined(a, b); });
    case 2:
        return Combined("Except({}, {})", left, right,
                        [](const Tuples& a, const Tuples& b) { return Kept(a, b, false); });
    case 3:
        return Combined("Intersect({}, {})", left, right,
                        [](const Tuples& a, const Tuples& b) { return Kept(a, b, true); });
    case 4:
        return Combined("Head({}, Count({}))", left, right, [](const Tuples& a, const Tuples& b) {
            return Tuples(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(std::min(a.size(), b.size())));
        });
    default:
        return Combined("Tail({}, Count({}))", left, right, [](const Tuples& a, const Tuples& b) {
            return Tuples(a.end() - static_cast<std::ptrdiff_t>(std::min(a.size(), b.size())), a.end());
        });
    }
}

Set RandomMdx::Crossed(Set left, Set right) {
    std::vector<std::size_t> both = left.hierarchies;
    both.insert(both.end(), right.hierarchies.begin(), right.hierarchies.end());
    std::string text = OneIn(2) ? fmt::format("CrossJoin({}, {})", left.text, right.text)
                                : fmt::format("{} * {}", left.text, right.text);
    return {
        std::move(text), both, [left, right](const World& world, const Place& place) {
            const auto& hierarchies = world.GetCube().hierarchies;
            /// Members of one dimension that share no value are not combined.
            const auto meet = [&](const Tuple& a, const Tuple& b) {
                for (std::size_t i = 0; i < a.size(); ++i) {
                    for (std::size_t j = 0; j < b.size(); ++j) {
                        const std::size_t one = left.hierarchies[i];
                        const std::size_t two = right.hierarchies[j];
                        if (std::max(one, two) >= hierarchies.size() || std::max(a[i], b[j]) >= calculated ||
                            hierarchies[one].dimension != hierarchies[two].dimension ||
                            hierarchies[one].column == noColumn) {
                            continue;
                        }
                        const auto& values = hierarchies[one].members[static_cast<std::size_t>(a[i])].values;
                        const auto& others = hierarchies[two].members[static_cast<std::size_t>(b[j])].values;
                        if (std::none_of(values.begin(), values.end(),
                                         [&](const auto& value) { return others.count(value) > 0; })) {
                            return false;
                        }
                    }
                }
                return true;
            };
            std::vector<Tuple> tuples;
            const std::vector<Tuple> rights = right.at(world, place);
            for (const Tuple& a : left.at(world, place)) {
                for (const Tuple& b : rights) {
                    if (meet(a, b)) {
                        tuples.push_back(a);
                        tuples.back().insert(tuples.back().end(), b.begin(), b.end());
                    }
                }
            }
            return tuples;
        }};
}

/// A cell that names its measure and perhaps a member.
Number RandomMdx::Reading() {
    const std::size_t measures = cube_.hierarchies.size();
    std::vector<std::size_t> hierarchies{measures};
    Tuple tuple{static_cast<int>(Below(3))};
    const World world(cube_);
    std::string text = world.PathOf(measures, tuple[0]);
    if (OneIn(3)) {
        hierarchies.push_back(AnyHierarchy());
        tuple.push_back(AnyMember(hierarchies[1]));
        text = fmt::format("({}, {})", text, world.PathOf(hierarchies[1], tuple[1]));
    }
    return {text, [hierarchies, tuple](const World& at, const Place& place) {
                return at.CellAt(With(place, hierarchies, tuple));
            }};
}

/// A number over a set.
Number RandomMdx::OverSet(int depth) {
    const Set set = SetOver(AnyHierarchy(), static_cast<int>(Below(2)), OneIn(2));
    const Number number = NumberOf(depth - 1);
    const std::size_t kind = Below(6);
    constexpr const char* names[] = {"Sum", "Avg", "Min", "Max"};
    if (kind == 5) {
        return {fmt::format("Aggregate({}, {})", set.text, number.text),
                [set, number](const World& world, const Place& place) {
                    const std::vector<Tuple> tuples = set.at(world, place);
                    return tuples.empty() ? Value()
                                          : number.at(world, WithAll(place, set.hierarchies, tuples));
                }};
    }
    if (kind == 4) {
        return {fmt::format("Count(CrossJoin({}, {{[Measures].[Lines]}}), EXCLUDEEMPTY)", set.text),
                [set](const World& world, const Place& place) {
                    std::int64_t count = 0;
                    for (const Tuple& tuple : set.at(world, place)) {
                        Place cell = With(place, set.hierarchies, tuple);
                        cell.back() = 2;
                        count += world.CellAt(cell).isEmpty ? 0 : 1;
                    }
                    return Exact(count, 0);
                }};
    }
    return {fmt::format("{}({}, {})", names[kind], set.text, number.text),
            [set, number, kind](const World& world, const Place& place) {
                Value total;
                std::int64_t count = 0;
                for (const Tuple& tuple : set.at(world, place)) {
                    const Value value = number.at(world, With(place, set.hierarchies, tuple));
                    count += value.isEmpty ? 0 : 1;
                    if (kind < 2) {
                        total = Plus(total, value);
                    } else if (!value.isEmpty && (total.isEmpty || (kind == 2 ? Compare(value, total) < 0
                                                                              : Compare(value, total) > 0))) {
                        total = value;
                    }
                }
                return kind == 1 && count > 0 ? Inexact(total.number / static_cast<double>(count)) : total;
            }};
}

Number RandomMdx::NumberOf(int depth) {
    if (depth <= 0) {
        return Reading();
    }
    const auto literal = [&]() -> Number {
        const auto tenths = static_cast<std::int64_t>(Below(60));
        return {fmt::format("{}.{}", tenths / 10, tenths % 10),
                [tenths](const World&, const Place&) { return Exact(tenths, 1); }};
    };
    switch (Below(8)) {
    case 0:
        return Binary(NumberOf(depth - 1), "+", NumberOf(depth - 1), Plus);
    case 1:
        return Binary(NumberOf(depth - 1), "-", NumberOf(depth - 1),
                      [](const Value& a, const Value& b) { return Plus(a, Minus(b)); });
    case 2:
        return Binary(NumberOf(depth - 1), "*", literal(), Times);
    case 3: {
        const Condition condition = ConditionOf(depth - 1);
        const Number yes = NumberOf(depth - 1);
        const Number no = NumberOf(depth - 1);
        return {fmt::format("IIf({}, {}, {})", condition.text, yes.text, no.text),
                [=](const World& world, const Place& place) {
                    return condition.at(world, place) ? yes.at(world, place) : no.at(world, place);
                }};
    }
    case 4: {
        const Number first = NumberOf(depth - 1);
        const Number other = literal();
        return {fmt::format("CoalesceEmpty({}, {})", first.text, other.text),
                [=](const World& world, const Place& place) {
                    const Value value = first.at(world, place);
                    return value.isEmpty ? other.at(world, place) : value;
                }};
    }
    case 5: {
        const Number inner = NumberOf(depth - 1);
        return {fmt::format("Abs({})", inner.text), [inner](const World& world, const Place& place) {
                    const Value value = inner.at(world, place);
                    return value.number < 0 ? Minus(value) : value;
                }};
    }
    default:
        return OverSet(depth);
    }
}

Condition RandomMdx::ConditionOf(int depth) {
    if (depth > 0 && OneIn(3)) {
        const Condition left = ConditionOf(depth - 1);
        const Condition right = ConditionOf(depth - 1);
        const bool both = OneIn(2);
        return {fmt::format("({} {} NOT {})", left.text, both ? "AND" : "OR", right.text),
                [=](const World& world, const Place& place) {
                    const bool isDecided = left.at(world, place) != both; // by the left side alone
                    return isDecided ? !both : !right.at(world, place);
                }};
    }
    const std::size_t hierarchy = AnyHierarchy();
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    const int member = AnyMember(hierarchy);
    switch (Below(4)) {
    case 0: {
        const Number number = NumberOf(depth - 1);
        return {fmt::format("IsEmpty({})", number.text),
                [number](const World& world, const Place& place) { return number.at(world, place).isEmpty; }};
    }
    case 1:
        return {fmt::format("{}.CurrentMember IS {}", tree.uniqueName,
                            tree.members[static_cast<std::size_t>(member)].path),
                [=](const World&, const Place& place) { return place.Current(hierarchy) == member; }};
    case 2: {
        const std::string name = tree.members[static_cast<std::size_t>(member)].name;
        if (name.find('"') != std::string::npos) {
            return ConditionOf(depth);
        }
        return {fmt::format("{}.CurrentMember.Name = \"{}\"", tree.uniqueName, name),
                [=](const World& world, const Place& place) {
                    return world.NameOf(hierarchy, place.Current(hierarchy)) == name;
                }};
    }
    default: {
        const Number left = NumberOf(depth - 1);
        const Number right = NumberOf(depth - 1);
        const bool orEqual = OneIn(2);
        return {fmt::format("{} {} {}", left.text, orEqual ? "<=" : ">", right.text),
                [=](const World& world, const Place& place) {
                    const int order = Compare(left.at(world, place), right.at(world, place));
                    return orEqual ? order <= 0 : order > 0;
                }};
    }
    }
}

Number RandomMdx::MemberFormula(std::size_t hierarchy) {
    const Hierarchy& tree = cube_.hierarchies[hierarchy];
    if (OneIn(3)) {
        const int first = AnyMember(hierarchy);
        const int second = AnyMember(hierarchy);
        const auto path = [&](int member) { return tree.members[static_cast<std::size_t>(member)].path; };
        const auto cell = [hierarchy](int member) {
            return [hierarchy, member](const World& world, const Place& place) {
                return world.CellAt(With(place, {hierarchy}, {member}));
            };
        };
        return Binary({path(first), cell(first)}, "-", {path(second), cell(second)},
                      [](const Value& a, const Value& b) { return Plus(a, Minus(b)); });
    }
    const Set set = SetOver(hierarchy, static_cast<int>(Below(2)), true);
    const bool namesMeasure = OneIn(2);
    const bool together = OneIn(3);
    return {fmt::format("{}({}{})", together ? "Aggregate" : "Sum", set.text,
                        namesMeasure ? ", [Measures].[Amount]" : ""),
            [set, namesMeasure, together](const World& world, const Place& place) {
                const std::vector<Tuple> tuples = set.at(world, place);
                Place cell = place;
                cell.back() = namesMeasure ? 0 : cell.back();
                Value sum;
                if (together) {
                    return tuples.empty() ? sum : world.CellAt(WithAll(cell, set.hierarchies, tuples));
                }
                for (const Tuple& tuple : tuples) {
                    sum = Plus(sum, world.CellAt(With(cell, set.hierarchies, tuple)));
                }
                return sum;
            }};
}

} // namespace qel::engine::plain
