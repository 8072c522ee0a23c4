#include "cube/CubeLayout.h"

#include "text/CaseFold.h"

namespace qel::ModSetCube {

namespace {

/// A hierarchy that statements name, its levels by name, and how many it has at least, the top one counted.
struct RequiredHierarchy {
    const char* dimension;
    const char* hierarchy; ///< null for the dimension's first one, whatever its name
    std::vector<const char*> levels;
    std::int32_t fewestLevels = 0;
    const char* without = ""; ///< what does not work when something of it is missing
};

const std::vector<RequiredHierarchy>& Layout() {
    static const std::vector<RequiredHierarchy> layout{
        {"Date", nullptr, {}, 4, "no formula works"},
        {"ActX", "OBSx", {}, 3, "no formula works"},
        {"OBS", nullptr, {"Level1"}, 0, "ObsLevel names no level"},
        {"Cost_Centers", nullptr, {"Cost_Center"}, 0, "ObsLevel is never Cost_Centers"},
        {"Activities", "ActivityCodes", {"ActivityCode"}, 0, "ActivityList is always All"},
        {"Activities", "ActivityNames", {"ActivityName"}, 0, "activities cannot be listed"},
        {"Accounts", "AccountCodes", {"AccountCode"}, 0, "Accounts is always All"},
        {"Accounts", "AccountNames", {"AccountName"}, 0, "accounts cannot be listed"},
        {"SuperSumery", "SumeryCode", {"SuperSum1"}, 0, "no formula works"},
        {"SuperSumery", "SumeryName", {"SuperSum1Name"}, 0, "QelName shows no names"},
        {"AccX", "AccX", {}, 0, "accounts and summary groups cannot be listed"},
        {"Firma", nullptr, {}, 0, "Firma is always All; accounts and summary groups cannot be listed"},
        {"Plbs", nullptr, {}, 0, "Plbs is always All"},
        {"RH", nullptr, {}, 0, "RH is always All"},
        {"Opening_Balance", nullptr, {}, 0, "Opening_Balance is always All"},
        {"MoneySet", nullptr, {}, 0, "MoneySet is always All"},
        {"MoneyType", nullptr, {}, 0, "OBS members, cost centres and activities cannot be listed"},
    };
    return layout;
}

/// "[Dimension].[Hierarchy].[Level]", of as many names as there are.
std::string Path(std::initializer_list<std::string> names) {
    std::string path;
    for (const auto& name : names) {
        path += path.empty() ? "[" : ".[";
        path += name;
        path += ']';
    }
    return path;
}

std::unique_ptr<Dimension> FindDimension(const CubeDef& cube, const char* name) {
    for (std::int32_t i = 0; i < cube.DimensionCount(); ++i) {
        auto dimension = cube.DimensionAt(i);
        if (EqualIgnoringCase(dimension->Name(), name)) {
            return dimension;
        }
    }
    return nullptr;
}

std::unique_ptr<Hierarchy> FindHierarchy(const Dimension& dimension, const char* name) {
    for (std::int32_t i = 0; i < dimension.HierarchyCount(); ++i) {
        auto hierarchy = dimension.HierarchyAt(i);
        if (!name || EqualIgnoringCase(hierarchy->Name(), name)) {
            return hierarchy;
        }
    }
    return nullptr;
}

bool HasLevel(const Hierarchy& hierarchy, const char* name) {
    for (std::int32_t i = 0; i < hierarchy.LevelCount(); ++i) {
        if (EqualIgnoringCase(hierarchy.LevelAt(i)->Name(), name)) {
            return true;
        }
    }
    return false;
}

void CheckHierarchy(const CubeDef& cube, const RequiredHierarchy& required,
                    std::vector<std::string>& faults) {
    const auto add = [&](const std::string& fault) { faults.push_back(fault + ": " + required.without); };
    const auto dimension = FindDimension(cube, required.dimension);
    if (!dimension) {
        // Told for each of its hierarchies: other things do not work without each.
        add("no dimension " + Path({required.dimension}));
        return;
    }
    const auto hierarchy = FindHierarchy(*dimension, required.hierarchy);
    if (!hierarchy) {
        add("no hierarchy " + Path({required.dimension, required.hierarchy ? required.hierarchy : "(any)"}));
        return;
    }
    for (const char* level : required.levels) {
        if (!HasLevel(*hierarchy, level)) {
            add("no level " + Path({required.dimension, hierarchy->Name(), level}));
        }
    }
    if (hierarchy->LevelCount() < required.fewestLevels) {
        add(Path({required.dimension, hierarchy->Name()}) + " has " +
            std::to_string(hierarchy->LevelCount()) + " levels instead of at least " +
            std::to_string(required.fewestLevels));
    }
}

} // namespace

std::vector<std::string> FindLayoutFaults(const CubeDef& cube) {
    std::vector<std::string> faults;
    for (const auto& required : Layout()) {
        CheckHierarchy(cube, required, faults);
    }
    return faults;
}

} // namespace qel::ModSetCube
