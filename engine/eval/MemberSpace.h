#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/mdx/SourceRange.h"
#include "engine/storage/FactTable.h"
#include "qel/engine/Cellset.h"
#include "qel/engine/Cube.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qel::engine {

/// A hierarchy's number in its cube. The measures count as one more hierarchy after the last.
using HierarchyId = std::uint32_t;

/// A stored member, a measure or a calculated member. `id` is noMember for no member.
struct MemberRef {
    HierarchyId hierarchy = 0;
    MemberId id = noMember;

    bool operator==(const MemberRef&) const = default;
};

/// Calculated members of all hierarchies are numbered from here.
inline constexpr MemberId firstCalculated = 0x80000000U;
/// From here on numbers stand for several members together, see CompoundSet.
inline constexpr MemberId firstCompound = 0xF0000000U;
inline bool IsCalculated(MemberId id) { return id >= firstCalculated && id < firstCompound; }
inline bool IsCompound(MemberId id) { return id >= firstCompound && id != noMember; }

struct LevelRef {
    HierarchyId hierarchy = 0;
    std::size_t level = 0;
};

struct CalculatedName {
    HierarchyId hierarchy = 0;
    MemberId parent = noMember; ///< a stored member, or none on the top level
    std::size_t level = 0;
    std::string name;
    bool isHidden = false; ///< the cube's; the statement has one of the same name
};

/// Who defines a calculated member or a set, and whose definitions a formula sees: the cube's see only each
/// other, the statement's see both and its own first.
enum class Scope : std::uint8_t { Statement, Cube };

/// Everything that a statement can name: the cube's hierarchies, its measures as one more hierarchy with a
/// single level, and the calculated members of the cube and of the statement, which are below the parent that
/// their name gives, or on the top level.
class MemberSpace {
public:
    explicit MemberSpace(const Cube& cube) : cube_(cube) {}

    const Cube& GetCube() const { return cube_; }
    HierarchyId Measures() const { return static_cast<HierarchyId>(cube_.Hierarchies().size()); }
    std::size_t HierarchyCount() const { return cube_.Hierarchies().size() + 1; }
    bool IsMeasures(HierarchyId hierarchy) const { return hierarchy == Measures(); }
    const Hierarchy& Stored(HierarchyId hierarchy) const { return cube_.Hierarchies()[hierarchy]; }

    std::string HierarchyUniqueName(HierarchyId hierarchy) const;
    std::string HierarchyName(HierarchyId hierarchy) const;
    std::string DimensionName(HierarchyId hierarchy) const;
    MemberId DefaultMember(HierarchyId hierarchy) const;
    std::size_t LevelCount(HierarchyId hierarchy) const;
    std::string_view LevelName(LevelRef level) const;
    /// The stored members of the level.
    MemberRange LevelMembers(LevelRef level) const;
    MemberRange AllMembers(HierarchyId hierarchy) const;

    /// 0 for a measure.
    std::size_t LevelOf(MemberRef member) const;
    MemberId Parent(MemberRef member) const;
    MemberRange Children(MemberRef member) const;
    /// The members with the same parent, including this one; for a top member, the whole top level.
    MemberRange Siblings(MemberRef member) const;
    /// The member's descendants on the level, or the member itself when it is on the level.
    MemberRange DescendantsAt(MemberRef member, std::size_t level) const;
    /// The member's ancestor on the level, or the member itself when it is on the level; noMember when it is
    /// above the level.
    MemberId AncestorAt(MemberRef member, std::size_t level) const;
    /// The member `steps` positions further on the same level (negative: back); noMember beyond the ends of
    /// the level.
    MemberId Shifted(MemberRef member, std::int64_t steps) const;

    std::string_view Name(MemberRef member) const;
    std::string_view Caption(MemberRef member) const;
    std::string_view Key(MemberRef member) const;
    std::string UniqueName(MemberRef member) const;

    /// The key column that the hierarchy's members restrict.
    std::optional<std::size_t> KeyColumn(HierarchyId hierarchy) const;
    CodeRanges Codes(MemberRef member) const { return Stored(member.hierarchy).Ranges(member.id); }

    /// A `parent` without a member stands for the top level. False when the name is taken there in the scope
    /// (any letter case).
    bool AddCalculated(MemberRef parent, std::string_view name, Scope scope);
    /// The calculated child of `parent` with that name (any letter case) that the scope sees, or nothing.
    std::optional<MemberId> FindCalculated(MemberRef parent, std::string_view name, Scope scope) const;
    const std::vector<CalculatedName>& Calculated() const { return calculated_; }

private:
    struct SameName {
        MemberId ofCube = noMember, ofStatement = noMember;
    };

    const CalculatedName& CalculatedAt(MemberId id) const { return calculated_[id - firstCalculated]; }

    const Cube& cube_;
    std::vector<CalculatedName> calculated_;
    std::map<std::pair<HierarchyId, MemberId>, std::unordered_map<std::string, SameName>>
        calculatedBelow_; ///< by hierarchy and parent, then by folded name
};

} // namespace qel::engine
