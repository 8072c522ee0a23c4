#include "cli/MemberReasons.h"

#include "text/CaseFold.h"
#include "text/Suggestion.h"
#include "text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <span>
#include <unordered_set>

namespace qel {

namespace {

constexpr std::size_t mostSuggestions = 3;

std::vector<std::string> NamesOf(const Level& level) {
    std::vector<std::string> names; // each once
    std::unordered_set<std::string> seen;
    for (std::int32_t i = 0; i < level.MemberCount(); ++i) {
        std::string name = level.MemberAt(i)->Name();
        if (seen.insert(name).second) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

/// "; did you mean "X"?", or what there is when nothing is near.
std::string Suggested(const std::string& name, std::span<const std::string> known) {
    const auto near = NearestWords(name, known, mostSuggestions);
    if (!near.empty()) {
        return fmt::format("; did you mean \"{}\"?", fmt::join(near, "\", \""));
    }
    const auto first = known.first(std::min(known.size(), mostSuggestions));
    return known.empty() ? ""
                         : fmt::format("; it has \"{}\"{}", fmt::join(first, "\", \""),
                                       known.size() > first.size()
                                           ? fmt::format(" and {} more", known.size() - first.size())
                                           : "");
}

/// Looks up what one query names, and keeps what is missing.
class MemberSearch {
public:
    MemberSearch(const CubeDef& cube, std::vector<std::string>& missing) : cube_(cube), missing_(missing) {}

    /// A member at any level below the top. An empty name restricts nothing.
    void Any(const char* argument, const std::string& name, const char* dimension) {
        const auto hierarchy = name.empty() ? nullptr : FirstHierarchy(argument, dimension);
        if (!hierarchy || HasMember(*hierarchy, name)) {
            return;
        }
        const std::int32_t lowest = hierarchy->LevelCount() - 1;
        Miss(argument, hierarchy->UniqueName(), name, NamesOf(*hierarchy->LevelAt(lowest)));
    }

    /// A member of one level, which may be missing as well.
    void InLevel(const char* levelArgument, const std::string& level, const char* memberArgument,
                 const std::string& name, const char* dimension) {
        const auto hierarchy = FirstHierarchy(levelArgument, dimension);
        if (!hierarchy) {
            return;
        }
        const auto found = FindLevel(*hierarchy, level);
        if (!found) {
            Add(levelArgument, fmt::format("{} has no level \"{}\"{}", hierarchy->UniqueName(), level,
                                           Suggested(level, LevelNames(*hierarchy))));
            return;
        }
        if (!found->MembersNamed(name).empty()) {
            return;
        }
        for (std::int32_t i = 0; i < hierarchy->LevelCount(); ++i) {
            const auto other = hierarchy->LevelAt(i);
            if (!other->MembersNamed(name).empty()) {
                Add(memberArgument,
                    fmt::format("{}.[{}] has no member \"{}\", but [{}] has one; set {} to \"{}\"",
                                hierarchy->UniqueName(), found->Name(), name, other->Name(), levelArgument,
                                other->Name()));
                return;
            }
        }
        Miss(memberArgument, fmt::format("{}.[{}]", hierarchy->UniqueName(), found->Name()), name,
             NamesOf(*found));
    }

    /// A number under a name of [ActX]; both are always needed.
    void ObsNumber(const std::string& name, const std::optional<std::string>& number) {
        const auto hierarchy = FirstHierarchy("ObsName", "ActX");
        constexpr std::int32_t numberLevel = 2;
        if (!hierarchy || hierarchy->LevelCount() <= numberLevel) {
            return;
        }
        const auto names = hierarchy->LevelAt(1);
        if (names->MembersNamed(name).empty()) {
            name.empty()
                ? Add("ObsName", "no key; write it in braces, {\"OBS\"}, or as a reference to a cell")
                : Miss("ObsName", fmt::format("{}.[{}]", hierarchy->UniqueName(), names->Name()), name,
                       NamesOf(*names));
            return;
        }
        std::vector<std::string> numbers;
        const auto level = hierarchy->LevelAt(numberLevel);
        for (std::int32_t i = 0; i < level->MemberCount(); ++i) {
            const auto member = level->MemberAt(i);
            const auto parent = member->Parent();
            if (parent && EqualIgnoringCase(parent->Name(), name)) {
                numbers.push_back(member->Name());
            }
        }
        const bool isThere = !number || std::any_of(numbers.begin(), numbers.end(), [&](const auto& known) {
            return EqualIgnoringCase(known, *number);
        });
        if (!isThere) {
            Miss("ObsNum", fmt::format("\"{}\" of {}", name, hierarchy->UniqueName()), *number, numbers);
        }
    }

private:
    std::unique_ptr<Hierarchy> FirstHierarchy(const char* argument, const char* dimension) {
        for (std::int32_t i = 0; i < cube_.DimensionCount(); ++i) {
            const auto found = cube_.DimensionAt(i);
            if (EqualIgnoringCase(found->Name(), dimension)) {
                return found->HierarchyAt(0);
            }
        }
        Add(argument, fmt::format("the cube has no dimension [{}]", dimension));
        return nullptr;
    }

    static std::vector<std::string> LevelNames(const Hierarchy& hierarchy) {
        std::vector<std::string> names(static_cast<std::size_t>(hierarchy.LevelCount()));
        for (std::int32_t i = 0; i < hierarchy.LevelCount(); ++i) {
            names[static_cast<std::size_t>(i)] = hierarchy.LevelAt(i)->Name();
        }
        return names;
    }

    static std::unique_ptr<Level> FindLevel(const Hierarchy& hierarchy, const std::string& name) {
        for (std::int32_t i = 0; i < hierarchy.LevelCount(); ++i) {
            auto level = hierarchy.LevelAt(i);
            if (EqualIgnoringCase(level->Name(), name)) {
                return level;
            }
        }
        return nullptr;
    }

    static bool HasMember(const Hierarchy& hierarchy, const std::string& name) {
        for (std::int32_t i = 0; i < hierarchy.LevelCount(); ++i) {
            if (!hierarchy.LevelAt(i)->MembersNamed(name).empty()) {
                return true;
            }
        }
        return false;
    }

    void Miss(const char* argument, const std::string& place, const std::string& name,
              const std::vector<std::string>& known) {
        Add(argument, fmt::format("{} has no member \"{}\"{}", place, name, Suggested(name, known)));
    }

    void Add(const char* argument, const std::string& fault) {
        missing_.push_back(fmt::format("{}: {}", argument, fault));
    }

    const CubeDef& cube_;
    std::vector<std::string>& missing_;
};

/// Keys go into statements unchanged, so a caller has doubled their brackets.
std::string Unescaped(const std::string& key) { return ReplaceAll(key, "]]", "]"); }

} // namespace

std::vector<std::string> FindMissingMembers(const CubeDef& cube, const ModSetCube::ValueQuery& query) {
    using ModSetCube::ObsPart;
    std::vector<std::string> missing;
    MemberSearch search(cube, missing);
    search.ObsNumber(Unescaped(query.obsName),
                     query.obsNumber ? std::optional(Unescaped(*query.obsNumber)) : std::nullopt);
    if (query.obsPart == ObsPart::LevelMember) {
        search.InLevel("ObsLevel", query.obsLevel, "ObsMember", query.obsMember, "OBS");
    } else if (query.obsPart == ObsPart::CostCenter) {
        search.Any("ObsMember", Unescaped(query.obsMember), "Cost_Centers");
    }
    search.Any("ActivityList", Unescaped(query.activity), "Activities");
    if (!query.summaryLevel.empty()) {
        search.InLevel("Summary_Group", query.summaryLevel, "Seif_level", Unescaped(query.summaryMember),
                       "SuperSumery");
    }
    search.Any("Accounts", Unescaped(query.accounts), "Accounts");
    search.Any("Measure", Unescaped(query.measure), "Measures");
    search.Any("MoneySet", Unescaped(query.moneySet), "MoneySet");
    search.Any("Plbs", Unescaped(query.plbs), "Plbs");
    search.Any("RH", Unescaped(query.rh), "RH");
    search.Any("Firma", Unescaped(query.firma), "Firma");
    search.Any("Opening_Balance", Unescaped(query.openingBalance), "Opening_Balance");
    return missing;
}

} // namespace qel
