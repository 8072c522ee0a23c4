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

/// The current member of every hierarchy; the last element is the measure.
using Place = std::vector<int>;
using Tuple = std::vector<int>;

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
    explicit World(const Cube& cube) : cube_(cube) {}

    const Cube& GetCube() const { return cube_; }
    std::size_t Measures() const { return cube_.hierarchies.size(); }
    Place Defaults() const { return Place(Measures() + 1, 0); }
    std::string PathOf(std::size_t hierarchy, int member) const;
    std::string NameOf(std::size_t hierarchy, int member) const;
    Value CellAt(const Place& place) const;
    void Add(Formula formula) { formulas_.push_back(std::move(formula)); }

private:
    Value SumOfFacts(const Place& place) const;

    const Cube& cube_;
    std::vector<Formula> formulas_; ///< number k is member `calculated` + k of its hierarchy
};

/// The place with a tuple's members applied.
Place With(Place place, const std::vector<std::size_t>& hierarchies, const Tuple& tuple);

} // namespace qel::engine::plain
