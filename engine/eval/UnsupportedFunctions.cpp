#include "engine/eval/FunctionLookup.h"
#include "engine/mdx/ReservedWords.h"

// Functions of MDX that are refused, and what can be written instead.

namespace qel::engine {

namespace {

struct Unsupported {
    std::string_view name, instead;
};

constexpr Unsupported unsupported[] = {
    {"VisualTotals", "write a calculated member with Aggregate over the members that are shown"},
    {"Existing", "write Exists(set, {hierarchy.CurrentMember})"},
    {"DrilldownLevelTop", "write DrilldownLevel over TopCount"},
    {"DrilldownLevelBottom", "write DrilldownLevel over BottomCount"},
    {"DrilldownMemberTop", "write Generate with TopCount over the children"},
    {"DrilldownMemberBottom", "write Generate with BottomCount over the children"},
    {"Dimensions", "name the dimension"},
    {"Members", "write StrToMember"},
    {"LinkMember", "write StrToMember with the member's name in the other hierarchy"},
    {"Distinctcount", "write Count(NonEmpty(set))"},
    {"Correlation", "compute it from Sum, Avg and Stdev"},
    {"Covariance", "compute it from Sum and Avg"},
    {"CovarianceN", "compute it from Sum and Avg"},
    {"LinRegSlope", "compute it from Sum and Avg"},
    {"LinRegIntercept", "compute it from Sum and Avg"},
    {"LinRegPoint", "compute it from Sum and Avg"},
    {"LinRegR2", "compute it from Sum and Avg"},
    {"LinRegVariance", "compute it from Sum and Avg"},
    {"Predict", "the cube has no mining models"},
    {"CalculationCurrentPass", "the engine has one pass; give SOLVE_ORDER"},
    {"CalculationPassValue", "the engine has one pass; give SOLVE_ORDER"},
    {"LookupCube", "ask the other cube in a statement of its own"},
    {"NameToSet", "write StrToSet"},
    {"UserName", "the file has no users"},
    {"CustomData", "the file has no users"},
    {"ValidMeasure", "name the All members of the other hierarchies in a tuple"},
    {"Error", "write NULL"},
    {"Cast", "numbers become texts by Format"},
    {"CStr", "numbers become texts by Format"},
    {"Str", "numbers become texts by Format"},
    {"Now", "name the period"},
    {"Date", "name the period"},
    {"RollupChildren", "write Sum over the children"},
    {"MeasureGroupMeasures", "name the measures"},
};

} // namespace

std::string_view InsteadOf(std::string_view name) {
    for (const Unsupported& function : unsupported) {
        if (mdx::IsWord(name, function.name)) {
            return function.instead;
        }
    }
    return {};
}

} // namespace qel::engine
