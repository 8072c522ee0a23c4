#include "engine/export/StarTables.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace qel::engine {

namespace {

/// The code of all members of a dimension without a fact column, which restrict nothing.
constexpr std::int64_t everyFact = 0;

/// The codes of every member, level by level.
class MemberCodes {
public:
    explicit MemberCodes(const Hierarchy& hierarchy)
        : hierarchy_(hierarchy), codes_(hierarchy.MemberCount()) {
        for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
            codes_[member] = StoredCodes(member);
        }
        for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
            if (codes_[member].empty() && hierarchy.Children(member).Count() == 0) {
                GiveOwnCode(member);
            }
        }
        for (auto& codes : codes_) {
            std::sort(codes.begin(), codes.end());
        }
    }

    const std::vector<std::int64_t>& Of(MemberId member) const { return codes_[member]; }

private:
    std::vector<std::int64_t> StoredCodes(MemberId member) const {
        if (!hierarchy_.KeyColumn()) {
            return {everyFact};
        }
        std::vector<std::int64_t> codes;
        for (const KeyRange& range : hierarchy_.Ranges(member)) {
            for (std::uint32_t code = range.first; code < range.last; ++code) {
                codes.push_back(code);
            }
        }
        return codes;
    }

    /// A code that no fact has, so that the member and its ancestors still appear in the tables.
    void GiveOwnCode(MemberId member) {
        const std::int64_t code = --lastOwnCode_;
        for (MemberId step = member; step != noMember; step = hierarchy_.Parent(step)) {
            codes_[step].push_back(code);
        }
    }

    const Hierarchy& hierarchy_;
    std::vector<std::vector<std::int64_t>> codes_;
    std::int64_t lastOwnCode_ = 0;
};

std::vector<std::size_t> StoredLevels(const Hierarchy& hierarchy) {
    std::vector<std::size_t> levels;
    for (std::size_t level = 0; level < hierarchy.Levels().size(); ++level) {
        if (!hierarchy.Levels()[level].isAll) {
            levels.push_back(level);
        }
    }
    return levels;
}

/// The member of every code on every level; empty unless each code has exactly one member per level.
std::map<std::int64_t, std::vector<MemberId>>
OnePathPerCode(const Hierarchy& hierarchy, const MemberCodes& codes, const std::vector<std::size_t>& levels) {
    std::map<std::int64_t, std::vector<MemberId>> paths;
    for (std::size_t place = 0; place < levels.size(); ++place) {
        const MemberRange members = hierarchy.Levels()[levels[place]].members;
        for (MemberId member = members.first; member < members.last; ++member) {
            for (const std::int64_t code : codes.Of(member)) {
                auto& path = paths[code];
                if (path.size() != place || (place > 0 && path.back() != hierarchy.Parent(member))) {
                    return {};
                }
                path.push_back(member);
            }
        }
    }
    const bool isWhole = std::all_of(paths.begin(), paths.end(),
                                     [&](const auto& path) { return path.second.size() == levels.size(); });
    return isWhole ? paths : std::map<std::int64_t, std::vector<MemberId>>{};
}

/// One row per code of every member of the level, joined to the row of the same code of the member's parent.
StarTable LevelTable(const Hierarchy& hierarchy, const MemberCodes& codes, std::size_t level,
                     std::map<std::pair<MemberId, std::int64_t>, std::int64_t>& rowNumbers) {
    StarTable table{.name = {}, .levels = {level}, .rows = {}};
    const MemberRange members = hierarchy.Levels()[level].members;
    for (MemberId member = members.first; member < members.last; ++member) {
        for (const std::int64_t code : codes.Of(member)) {
            const auto number = static_cast<std::int64_t>(rowNumbers.size()) + 1;
            const auto above = rowNumbers.find({hierarchy.Parent(member), code});
            rowNumbers[{member, code}] = number;
            table.rows.push_back({.row = number,
                                  .owner = above == rowNumbers.end() ? code : above->second,
                                  .members = {member}});
        }
    }
    return table;
}

/// One row per code. Without a table that has no level, Mondrian would join the facts to the lowest level's
/// table first and count a code once for each of its members there.
StarTable CodeTable(const StarTable& topLevel) {
    StarTable table;
    std::set<std::int64_t> codes;
    for (const StarRow& row : topLevel.rows) {
        if (codes.insert(row.owner).second) {
            table.rows.push_back({.row = row.owner, .owner = row.owner, .members = {}});
        }
    }
    return table;
}

} // namespace

std::vector<StarTable> MakeStarTables(const Hierarchy& hierarchy, const std::string& name) {
    const MemberCodes codes(hierarchy);
    const auto levels = StoredLevels(hierarchy);
    const auto paths = OnePathPerCode(hierarchy, codes, levels);
    std::vector<StarTable> tables;
    if (!paths.empty()) {
        auto& table = tables.emplace_back(StarTable{.name = name, .levels = levels, .rows = {}});
        for (const auto& [code, path] : paths) {
            table.rows.push_back({.row = code, .owner = code, .members = path});
        }
        return tables;
    }
    std::map<std::pair<MemberId, std::int64_t>, std::int64_t> rowNumbers;
    for (const std::size_t level : levels) {
        tables.push_back(LevelTable(hierarchy, codes, level, rowNumbers));
    }
    if (levels.size() > 1) {
        tables.insert(tables.begin(), CodeTable(tables.front()));
    }
    for (std::size_t i = 0; i < tables.size(); ++i) {
        tables[i].name = tables.size() == 1 ? name : name + "_" + std::to_string(i);
    }
    return tables;
}

bool HasOneRowPerCode(const std::vector<StarTable>& tables) {
    std::set<std::int64_t> owners;
    return tables.size() == 1 &&
           std::all_of(tables.front().rows.begin(), tables.front().rows.end(),
                       [&](const StarRow& row) { return owners.insert(row.owner).second; });
}

} // namespace qel::engine
