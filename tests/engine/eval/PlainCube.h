#pragma once

#include "qel/engine/Cube.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine::plain {

// A cube as plain lists of rows and trees, independent of the engine; the engine's cube is built from the
// same data.

/// The fact columns that members restrict.
enum Column : std::size_t { Date, Account, Obs, Firm, columnCount };
inline constexpr std::size_t noColumn = columnCount;

inline constexpr int noParent = -1;

struct Fact {
    std::vector<std::string> values; ///< by column; an empty value belongs only to top members
    std::int64_t cents = 0, thousandths = 0;
};

struct Member {
    std::string name, path; ///< `path` is the unique name
    int level = 0, parent = noParent;
    std::set<std::string> values; ///< of the hierarchy's column
    bool isTop = false;           ///< includes every fact

    bool Takes(const std::string& value) const { return isTop || values.count(value) > 0; }
};

/// Members are stored level by level; the children of a member are consecutive.
struct Hierarchy {
    std::string uniqueName, dimension;
    std::size_t column = noColumn;
    std::vector<std::string> levels;
    std::vector<Member> members;

    std::vector<int> Children(int member) const;
    std::vector<int> OfLevel(int level) const;
    /// The member's ancestor on the level, or noParent when the member is above the level.
    int AncestorAt(int member, int level) const;
};

struct Cube {
    std::vector<Hierarchy> hierarchies;
    std::vector<Fact> facts;
    std::shared_ptr<const engine::Cube> built;
};

/// Random facts over uneven and overlapping trees and a calendar, by days or by months.
Cube MakeCube(std::uint32_t seed, std::size_t factCount, bool byDays);

} // namespace qel::engine::plain
