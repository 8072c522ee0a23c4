#pragma once

#include "tests/engine/eval/PlainCube.h"

#include <functional>
#include <map>
#include <optional>

namespace qel::engine::plain {

// A reference for the meaning of statements: every number scans all facts, every set is a list.

inline constexpr int calculated = 1000; ///< the number of the first calculated member

struct Value {
    bool isEmpty = true;
    bool isExact = false; ///< the value is `scaled` / 10^`decimals`, and `number` the nearest double
    std::int64_t scaled = 0;
    int decimals = 0;
    double number = 0;
};

Value Exact(std::int64_t scaled, int decimals);
Value Inexact(double number);
Value Plus(const Value& a, const Value& b);
Value Minus(const Value& a);
Value Times(const Value& a, const Value& b);
/// Negative, 0 or positive. Empty counts as 0.
int Compare(const Value& a, const Value& b);

using Tuple = std::vector<int>;

/// Tuples that stand somewhere together: a slicer of several tuples, or the set of Aggregate.
struct Group {
    std::vector<std::size_t> hierarchies;
    std::vector<Tuple> tuples;
};

/// What a hierarchy's entry in a place is when a group of tuples is meant.
inline constexpr int several = -1;

/// The current member of every hierarchy; the last entry is the measure.
struct Place {
    std::vector<int> members;
    std::map<std::size_t, std::shared_ptr<const Group>> groups; ///< by hierarchy, where there are several

    int operator[](std::size_t hierarchy) const { return members[hierarchy]; }
    int& back() { return members.back(); }
    int back() const { return members.back(); }
    /// Raises NoCurrentMember where several members stand.
    int Current(std::size_t hierarchy) const;
};

struct NoCurrentMember {};

class World;

/// An expression as text and as a function of the current members.
struct Number {
    std::string text;
    std::function<Value(const World&, const Place&)> at;
};
struct Condition {
    std::string text;
    std::function<bool(const World&, const Place&)> at;
};
struct Set {
    std::string text;
    std::vector<std::size_t> hierarchies; ///< the hierarchies of its tuples
    std::function<std::vector<Tuple>(const World&, const Place&)> at;
};

/// A calculated member.
struct Formula {
    std::size_t hierarchy = 0;
    int solveOrder = 0;
    std::string name, path;
    Number number;
};

/// A cube and the calculated members of one statement.
class World {
public:
    explicit World(const Cube& cube) : cube_(cube), start_(Defaults()) {}

    const Cube& GetCube() const { return cube_; }
    std::size_t Measures() const { return cube_.hierarchies.size(); }
    Place Defaults() const { return {std::vector<int>(Measures() + 1, 0), {}}; }
    std::string PathOf(std::size_t hierarchy, int member) const;
    std::string NameOf(std::size_t hierarchy, int member) const;
    int ParentOf(std::size_t hierarchy, int member) const;
    Value CellAt(const Place& place) const;
    /// Where cells and named sets start from: the slicer, once it is known.
    const Place& Start() const { return start_; }
    void StartFrom(Place place) { start_ = std::move(place); }
    void Add(Formula formula) { formulas_.push_back(std::move(formula)); }

private:
    Value SumOfFacts(const Place& place) const;
    bool Counts(const Fact& fact, const Place& place) const;
    bool Takes(std::size_t hierarchy, int member, const Fact& fact) const;

    const Cube& cube_;
    Place start_;
    std::vector<Formula> formulas_; ///< number k is member `calculated` + k of its hierarchy
};

/// The place with a tuple's members applied.
Place With(Place place, const std::vector<std::size_t>& hierarchies, const Tuple& tuple);
/// The place with all tuples together: a hierarchy that has one member in all of them has a current member.
Place WithAll(Place place, const std::vector<std::size_t>& hierarchies, const std::vector<Tuple>& tuples);

} // namespace qel::engine::plain
