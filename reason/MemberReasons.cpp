#include "reason/MemberReasons.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
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

NearestNames NearestOf(const std::string& name, const KnownWords& known) {
    if (auto near = known.Nearest(name, mostSuggestions); !near.empty()) {
        return {std::move(near), true, 0};
    }
    const auto first = known.All().first(std::min(known.All().size(), mostSuggestions));
    return {{first.begin(), first.end()}, false, known.All().size() - first.size()};
}

using Members = std::vector<std::unique_ptr<Member>>;

/// Looks up what one query names, argument by argument.
class MemberSearch {
public:
    MemberSearch(const CubeDef& cube, QueryMembers& found, KnownNames& known)
        : cube_(cube), found_(found), known_(known) {}

    /// An argument that names no member.
    void Plain(const char* argument, const std::string& key, ArgumentRole role) {
        Begin(argument, key).role = role;
    }

    /// A member at any level below the top. An empty name restricts nothing.
    void Any(const char* argument, const std::string& name, const char* dimension) {
        ArgumentReason& entry = Begin(argument, name);
        const auto hierarchy = name.empty() ? nullptr : FirstHierarchy(argument, dimension);
        if (!hierarchy) {
            return;
        }
        for (std::int32_t i = 0; i < hierarchy->LevelCount() && entry.members.empty(); ++i) {
            Take(entry, hierarchy->LevelAt(i)->MembersNamed(name));
        }
        if (entry.members.empty()) {
            const std::int32_t lowest = hierarchy->LevelCount() - 1;
            Miss(argument, hierarchy->UniqueName(), name,
                 [&] { return NamesOf(*hierarchy->LevelAt(lowest)); });
        }
    }

    /// A member of one level, which may be missing as well.
    void InLevel(const char* levelArgument, const std::string& level, const char* memberArgument,
                 const std::string& name, const char* dimension) {
        Plain(levelArgument, level, ArgumentRole::Chosen);
        Begin(memberArgument, name);
        const auto hierarchy = FirstHierarchy(levelArgument, dimension);
        const auto found = hierarchy ? FindLevel(*hierarchy, level) : nullptr;
        if (found) {
            return InFoundLevel(levelArgument, *hierarchy, *found, name);
        }
        if (hierarchy) {
            Add(levelArgument, ReasonCode::NoLevel, {hierarchy->UniqueName(), level},
                NearestOf(level, KnownWords(LevelNames(*hierarchy))));
        }
    }

    /// A number under a name of [ActX]; both are always needed.
    void ObsNumber(const std::string& name, const std::optional<std::string>& number) {
        Begin("ObsName", name);
        Begin("ObsNum", number.value_or(""));
        const auto hierarchy = FirstHierarchy("ObsName", "ActX");
        constexpr std::int32_t numberLevel = 2;
        if (!hierarchy || hierarchy->LevelCount() <= numberLevel) {
            return;
        }
        const auto names = hierarchy->LevelAt(1);
        Take(Entry("ObsName"), names->MembersNamed(name));
        if (Entry("ObsName").members.empty()) {
            name.empty() ? Add("ObsName", ReasonCode::NoKey, {})
                         : Miss("ObsName", fmt::format("{}.[{}]", hierarchy->UniqueName(), names->Name()),
                                name, [&] { return NamesOf(*names); });
            return;
        }
        if (number) {
            NumberUnder(*hierarchy, *hierarchy->LevelAt(numberLevel), name, *number);
        }
    }

private:
    ArgumentReason& Begin(const char* argument, const std::string& key) {
        found_.arguments.push_back({argument, ArgumentRole::Everything, key, {}});
        return found_.arguments.back();
    }

    ArgumentReason& Entry(const char* argument) {
        return *std::find_if(found_.arguments.begin(), found_.arguments.end(),
                             [&](const auto& each) { return each.name == argument; });
    }

    static void Take(ArgumentReason& entry, const Members& members) {
        for (const auto& member : members) {
            entry.members.push_back({member->UniqueName(), member->Caption()});
        }
        if (!members.empty()) {
            entry.role = ArgumentRole::Chosen;
        }
    }

    void InFoundLevel(const char* levelArgument, const Hierarchy& hierarchy, const Level& level,
                      const std::string& name) {
        ArgumentReason& entry = found_.arguments.back();
        Take(entry, level.MembersNamed(name));
        if (!entry.members.empty()) {
            return;
        }
        for (std::int32_t i = 0; i < hierarchy.LevelCount(); ++i) {
            const auto other = hierarchy.LevelAt(i);
            if (!other->MembersNamed(name).empty()) {
                return Add(entry.name.c_str(), ReasonCode::OtherLevel,
                           {hierarchy.UniqueName(), level.Name(), name, other->Name(), levelArgument});
            }
        }
        Miss(entry.name.c_str(), fmt::format("{}.[{}]", hierarchy.UniqueName(), level.Name()), name,
             [&] { return NamesOf(level); });
    }

    void NumberUnder(const Hierarchy& hierarchy, const Level& level, const std::string& name,
                     const std::string& number) {
        std::vector<std::string> numbers;
        Members found;
        for (std::int32_t i = 0; i < level.MemberCount(); ++i) {
            auto member = level.MemberAt(i);
            const auto parent = member->Parent();
            if (!parent || !EqualIgnoringCase(parent->Name(), name)) {
                continue;
            }
            numbers.push_back(member->Name());
            if (EqualIgnoringCase(numbers.back(), number)) {
                found.push_back(std::move(member));
            }
        }
        Take(Entry("ObsNum"), found);
        if (found.empty()) {
            Miss("ObsNum", fmt::format("\"{}\" of {}", name, hierarchy.UniqueName()), number,
                 [&] { return numbers; });
        }
    }

    std::unique_ptr<Hierarchy> FirstHierarchy(const char* argument, const char* dimension) {
        for (std::int32_t i = 0; i < cube_.DimensionCount(); ++i) {
            const auto found = cube_.DimensionAt(i);
            if (EqualIgnoringCase(found->Name(), dimension)) {
                return found->HierarchyAt(0);
            }
        }
        Add(argument, ReasonCode::NoDimension, {dimension});
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

    void Miss(const char* argument, const std::string& place, const std::string& name,
              const std::function<std::vector<std::string>()>& names) {
        auto known = known_.find(place);
        if (known == known_.end()) {
            known = known_.emplace(place, names()).first;
        }
        Add(argument, ReasonCode::NoMember, {place, name}, NearestOf(name, known->second));
    }

    void Add(const char* argument, ReasonCode code, std::vector<Reason::Field> fields,
             NearestNames nearest = {}) {
        Entry(argument).role = ArgumentRole::Missing;
        found_.missing.push_back({code, std::move(fields), argument, std::move(nearest)});
    }

    const CubeDef& cube_;
    QueryMembers& found_;
    KnownNames& known_;
};

/// Keys go into statements unchanged, so a caller has doubled their brackets.
std::string Unescaped(const std::string& key) { return ReplaceAll(key, "]]", "]"); }

} // namespace

QueryMembers FindQueryMembers(const CubeDef& cube, const ModSetCube::ValueQuery& query, KnownNames& known) {
    using ModSetCube::ObsPart;
    QueryMembers found;
    MemberSearch search(cube, found, known);
    search.ObsNumber(Unescaped(query.obsName),
                     query.obsNumber ? std::optional(Unescaped(*query.obsNumber)) : std::nullopt);
    if (query.obsPart == ObsPart::LevelMember) {
        search.InLevel("ObsLevel", query.obsLevel, "ObsMember", query.obsMember, "OBS");
    } else {
        const bool isCenter = query.obsPart == ObsPart::CostCenter;
        search.Plain("ObsLevel", isCenter ? query.obsLevel : "",
                     isCenter ? ArgumentRole::Chosen : ArgumentRole::Everything);
        search.Any("ObsMember", isCenter ? Unescaped(query.obsMember) : "", "Cost_Centers");
    }
    search.Any("ActivityList", Unescaped(query.activity), "Activities");
    if (!query.summaryLevel.empty()) {
        search.InLevel("Summary_Group", query.summaryLevel, "Seif_level", Unescaped(query.summaryMember),
                       "SuperSumery");
    } else {
        search.Plain("Summary_Group", "", ArgumentRole::Everything);
        search.Plain("Seif_level", "", ArgumentRole::Everything);
    }
    search.Any("Accounts", Unescaped(query.accounts), "Accounts");
    search.Any("Measure", Unescaped(query.measure), "Measures");
    search.Any("MoneySet", Unescaped(query.moneySet), "MoneySet");
    search.Any("Plbs", Unescaped(query.plbs), "Plbs");
    search.Any("RH", Unescaped(query.rh), "RH");
    search.Any("Firma", Unescaped(query.firma), "Firma");
    search.Any("Opening_Balance", Unescaped(query.openingBalance), "Opening_Balance");
    return found;
}

} // namespace qel
