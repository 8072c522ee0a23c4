#include "qel/engine/CellQuery.h"

#include "engine/eval/CellPlan.h"
#include "engine/eval/NameSearch.h"
#include "engine/mdx/ReservedWords.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

/// Statements have a limit, too. Far below it nobody has to compute how long the statement would be.
constexpr std::size_t mostNameBytes = 1U << 20U;

/// Whether statements take the name of the cube without brackets.
bool IsPlainWord(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && isLetter(text.front()) && !mdx::IsReserved(text) && !mdx::IsMethod(text) &&
           std::all_of(text.begin(), text.end(),
                       [&](char c) { return isLetter(c) || isDigit(c) || c == '_'; });
}

/// What resolves names plainly, as a statement would, into the facts of one cell.
class CellBinding {
public:
    explicit CellBinding(const Cube& cube) : space_(cube), search_(space_, Scope::Statement) {
        parts_.reserve(usualParts);
        coordinates_.reserve(space_.HierarchyCount());
        for (HierarchyId hierarchy = 0; hierarchy < space_.HierarchyCount(); ++hierarchy) {
            coordinates_.push_back({space_.DefaultMember(hierarchy), false});
        }
    }

    /// All of these return false for what a statement has to tell.
    bool TakeMeasure(std::string_view name);
    bool TakeMember(const MemberPath& path);
    bool TakePeriods(std::string_view hierarchy, std::string_view last, int count);
    bool TakeSum(std::string_view hierarchy, std::span<const std::string> members);

    /// The cell of what was taken.
    FactCell Cell() const;

private:
    struct Coordinate {
        MemberId member;
        bool isTaken; ///< a hierarchy stands on one axis or in the slicer, once
    };
    static constexpr std::size_t usualParts = 8;

    bool TakeParts(std::string_view path);
    bool TakePart(std::string_view name, bool isKey);
    std::optional<Resolved> Find();
    std::optional<HierarchyId> TakeSummed(std::string_view path);
    std::optional<MemberId> MemberOf(HierarchyId hierarchy, std::string_view path);
    bool Take(HierarchyId hierarchy, MemberId member);
    void AddCodes(MemberRef member, std::vector<KeyRange>& codes) const;

    MemberSpace space_;
    NameSearch search_;
    std::vector<NamePart> parts_;
    std::size_t nameBytes_ = 0;
    std::vector<Coordinate> coordinates_;
    std::vector<KeyRange> summedCodes_, periodCodes_;
    std::optional<HierarchyId> summed_;
    HierarchyId periods_ = 0;
};

/// Parts of the form [name] or &[name]. Escaped brackets are left to statements.
bool CellBinding::TakeParts(std::string_view path) {
    parts_.clear();
    while (true) {
        const bool isKey = path.starts_with('&');
        path.remove_prefix(isKey ? 1 : 0);
        const std::size_t end = path.find(']');
        if (!path.starts_with('[') || end == std::string_view::npos ||
            !TakePart(path.substr(1, end - 1), isKey)) {
            return false;
        }
        path.remove_prefix(end + 1);
        if (path.empty()) {
            return true;
        }
        if (!path.starts_with('.')) {
            return false;
        }
        path.remove_prefix(1);
    }
}

/// The calculated members of the statement have names, too.
bool CellBinding::TakePart(std::string_view name, bool isKey) {
    nameBytes_ += name.size();
    if (nameBytes_ > mostNameBytes || name.find(']') != std::string_view::npos ||
        EqualIgnoringCase(name, "Sel") || EqualIgnoringCase(name, "DateSel")) {
        return false;
    }
    parts_.push_back({name, isKey, {}});
    return true;
}

std::optional<Resolved> CellBinding::Find() { return search_.Find(parts_); }

bool CellBinding::Take(HierarchyId hierarchy, MemberId member) {
    coordinates_[hierarchy].member = member;
    return !std::exchange(coordinates_[hierarchy].isTaken, true);
}

bool CellBinding::TakeMeasure(std::string_view name) {
    if (name.find('\'') != std::string_view::npos || !TakeParts("[Measures]") || !TakePart(name, false)) {
        return false;
    }
    const std::optional<Resolved> found = Find();
    const auto* member = found ? std::get_if<MemberRef>(&*found) : nullptr;
    return member != nullptr && space_.IsMeasures(member->hierarchy) && Take(member->hierarchy, member->id);
}

bool CellBinding::TakeMember(const MemberPath& path) {
    if (!TakeParts(path.path)) {
        return false;
    }
    for (std::size_t i = 0; i < path.nameCount; ++i) {
        if (!TakePart(path.names[i], false)) {
            return false;
        }
    }
    const std::optional<Resolved> found = Find();
    if (!found) {
        return false;
    }
    if (const auto* hierarchy = std::get_if<HierarchyName>(&*found); hierarchy && path.nameCount == 0) {
        return Take(hierarchy->hierarchy, space_.DefaultMember(hierarchy->hierarchy));
    }
    const auto* member = std::get_if<MemberRef>(&*found);
    return member != nullptr && Take(member->hierarchy, member->id);
}

/// The hierarchy, in which the statement's calculated member stands.
std::optional<HierarchyId> CellBinding::TakeSummed(std::string_view path) {
    if (!TakeParts(path)) {
        return std::nullopt;
    }
    const std::optional<Resolved> found = Find();
    const auto* name = found ? std::get_if<HierarchyName>(&*found) : nullptr;
    const bool isSummable =
        name != nullptr && space_.KeyColumn(name->hierarchy) && Take(name->hierarchy, noMember);
    return isSummable ? std::optional(name->hierarchy) : std::nullopt;
}

std::optional<MemberId> CellBinding::MemberOf(HierarchyId hierarchy, std::string_view path) {
    if (!TakeParts(path)) {
        return std::nullopt;
    }
    const std::optional<Resolved> found = Find();
    const auto* member = found ? std::get_if<MemberRef>(&*found) : nullptr;
    return member != nullptr && member->hierarchy == hierarchy ? std::optional(member->id) : std::nullopt;
}

void CellBinding::AddCodes(MemberRef member, std::vector<KeyRange>& codes) const {
    const CodeRanges own = space_.Codes(member);
    codes.insert(codes.end(), own.begin(), own.end());
}

bool CellBinding::TakePeriods(std::string_view hierarchy, std::string_view last, int count) {
    if (count < 1 || last.find('\'') != std::string_view::npos) {
        return false;
    }
    const std::optional<HierarchyId> number = TakeSummed(hierarchy);
    const std::optional<MemberId> member = number ? MemberOf(*number, last) : std::nullopt;
    if (!member) {
        return false;
    }
    periods_ = *number;
    const MemberRange level = space_.LevelMembers({periods_, space_.LevelOf({periods_, *member})});
    const auto before = static_cast<MemberId>(count - 1);
    MemberId period = *member - level.first > before ? *member - before : level.first;
    for (; period <= *member; ++period) {
        AddCodes({periods_, period}, periodCodes_);
    }
    return JoinDisjoint(periodCodes_);
}

bool CellBinding::TakeSum(std::string_view hierarchy, std::span<const std::string> members) {
    summed_ = TakeSummed(hierarchy);
    for (const std::string& path : members) {
        const std::optional<MemberId> member = summed_ ? MemberOf(*summed_, path) : std::nullopt;
        if (!member) {
            return false;
        }
        AddCodes({*summed_, *member}, summedCodes_);
    }
    return summed_ && !members.empty() && JoinDisjoint(summedCodes_);
}

FactCell CellBinding::Cell() const {
    FactCell cell;
    cell.restrictions.reserve(coordinates_.size());
    cell.measure = coordinates_[space_.Measures()].member;
    for (HierarchyId hierarchy = 0; hierarchy < space_.Measures(); ++hierarchy) {
        if (const MemberId member = coordinates_[hierarchy].member; member != noMember) {
            cell.Restrict(space_, hierarchy, space_.Codes({hierarchy, member}));
        }
    }
    if (summed_) {
        cell.Restrict(space_, *summed_, summedCodes_);
    }
    cell.Restrict(space_, periods_, periodCodes_);
    return cell;
}

} // namespace

std::unique_ptr<const PlannedCell> PlanCell(const Cube& cube, const CellQuery& query) {
    if (!cube.GetCalculations().Empty() || !IsPlainWord(query.cube) ||
        !EqualIgnoringCase(query.cube, cube.Name())) {
        return nullptr;
    }
    CellBinding binding(cube);
    const bool isPlain = binding.TakeMeasure(query.measure) &&
                         binding.TakePeriods(query.periods, query.lastPeriod, query.periodCount) &&
                         (query.summed.empty() || binding.TakeSum(query.summed, query.summedMembers)) &&
                         std::all_of(query.members.begin(), query.members.end(),
                                     [&](const MemberPath& member) { return binding.TakeMember(member); });
    return isPlain ? std::make_unique<const CellPlan>(cube, binding.Cell()) : nullptr;
}

} // namespace qel::engine
