#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// A calculated member that a cube defines for every statement.
struct CalculatedMember {
    std::string name;    ///< its path, such as "[Measures].[Profit]"
    std::string formula; ///< an MDX expression
    std::string format;  ///< such as "#,##0.00"; empty: none
    std::int32_t solveOrder = 0;
};

/// A named set that a cube defines for every statement.
struct StoredSet {
    std::string name; ///< a path of one part, such as "[Main accounts]"
    std::string formula;
};

/// What a cube defines besides its stored members.
struct Calculations {
    static constexpr std::size_t most = 1000;          ///< members, and as many sets
    static constexpr std::size_t longestText = 50'000; ///< bytes of a name, a formula or a format

    std::vector<CalculatedMember> members;
    std::vector<StoredSet> sets;

    bool Empty() const { return members.empty() && sets.empty(); }
};

} // namespace qel::engine
