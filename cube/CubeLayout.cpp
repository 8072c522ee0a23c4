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
};

const std::vector<RequiredHierarchy>& Layout() {
    static const std::vector<RequiredHierarchy> layout{
        {"Date", nullptr, {}, 4},
        {"ActX", "OBSx", {}, 3},
        {"OBS", nullptr, {"Level1"}},
        {"Cost_Centers", nullptr, {"Cost_Center"}},
        {"Activities", "ActivityCodes", {"ActivityCode"}},
        {"Activities", "ActivityNames", {"ActivityName"}},
        {"Accounts", "AccountCodes", {"AccountCode"}},
        {"Accounts", "AccountNames", {"AccountName"}},
        {"SuperSumery", "SumeryCode", {"SuperSum1"}},
        {"SuperSumery", "SumeryName", {"SuperSum1Name"}},
        {"AccX", "AccX", {}},
        {"Firma", nullptr, {}},
        {"Plbs", nullptr, {}},
        {"RH", nullptr, {}},
        {"Opening_Balance", nullptr, {}},
        {"MoneySet", nullptr, {}},
        {"MoneyType", nullptr, {}},
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
    const auto dimension = FindDimension(cube, required.dimension);
    if (!dimension) {
        const std::string fault = "no dimension " + Path({required.dimension});
        if (faults.empty() || faults.back() != fault) { // it is told once for all of its hierarchies
            faults.push_back(fault);
        }
        return;
    }
    const auto hierarchy = FindHierarchy(*dimension, required.hierarchy);
    if (!hierarchy) {
        faults.push_back("no hierarchy " +
                         Path({required.dimension, required.hierarchy ? required.hierarchy : "(any)"}));
        return;
    }
    for (const char* level : required.levels) {
        if (!HasLevel(*hierarchy, level)) {
            faults.push_back("no level " + Path({required.dimension, hierarchy->Name(), level}));
        }
    }
    if (hierarchy->LevelCount() < required.fewestLevels) {
        faults.push_back(Path({required.dimension, hierarchy->Name()}) + " has " +
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
