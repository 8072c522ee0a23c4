#pragma once

#include "tests/engine/eval/PlainMdx.h"

#include <random>

namespace qel::engine::plain {

/// Generates random valid expressions over a cube, each as text and as its meaning.
class RandomMdx {
public:
    RandomMdx(const Cube& cube, std::uint32_t seed) : cube_(cube), random_(seed) {}

    std::size_t Below(std::size_t bound) { return random_() % bound; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    int AnyMember(std::size_t hierarchy) {
        return static_cast<int>(Below(cube_.hierarchies[hierarchy].members.size()));
    }
    std::size_t AnyHierarchy() { return Below(cube_.hierarchies.size()); }

    /// A set over one hierarchy, with functions nested up to `depth`. With `onlyStored` no tuple depends on a
    /// cell's value.
    Set SetOver(std::size_t hierarchy, int depth, bool onlyStored = false);
    /// A set over two hierarchies.
    Set Crossed(Set left, Set right);
    /// Sorted by a value within families.
    Set Ordered(const Set& set);
    /// A few tuples of two hierarchies that may overlap.
    Set TuplesOver(std::size_t first, std::size_t second);
    /// A named set, which sets over its hierarchy use until the next one.
    Set Name(const std::string& name, Set set);
    void ForgetName() { named_.reset(); }
    /// A number; every cell it reads names its measure.
    Number NumberOf(int depth);
    Condition ConditionOf(int depth);
    /// A calculated member of the hierarchy, computed from stored members under the current measure.
    Number MemberFormula(std::size_t hierarchy);

private:
    Set Leaf(std::size_t hierarchy);
    Set Family(std::size_t hierarchy);
    Set Range(std::size_t hierarchy);
    Set Chosen(std::size_t hierarchy, int depth);
    Number Reading();
    Number OverSet(int depth);

    const Cube& cube_;
    std::mt19937 random_;
    std::optional<Set> named_;
};

} // namespace qel::engine::plain
