#include "function/OrmQelFunction.h"

#include "cube/NameQuery.h"
#include "platform/value/Conversion.h"
#include "platform/value/CurrentFailure.h"
#include "text/CaseFold.h"
#include "text/Text.h"

namespace qel {

namespace {

const char* const outdatedCube = "Outdated Cube Version";

bool IsOutdatedCube(const Variant& result) {
    return result.Is<std::string>() && EqualIgnoringCase(result.As<std::string>(), outdatedCube);
}

using Elements = std::span<const Variant>;

Elements ElementsOf(const Variant& list, const char* name) {
    if (!list.IsArray()) {
        throw AutomationError(ErrorNumber::TypeMismatch,
                              std::string("Type mismatch: QelFuncDemo takes ") + name + " as an array");
    }
    return list.As<std::shared_ptr<const VariantArray>>()->elements;
}

Variant FirstOf(Elements elements) { return elements.empty() ? Variant() : elements.front(); }

ModSetCube::OpenedCube CubeOf(const std::string& cubeFile, const std::string& cubeName) {
    return {std::string(Trimmed(cubeFile)), std::string(Trimmed(cubeName))};
}

/// The exception that is being handled, as QelFuncDemo's own trap shows it.
FormulaResult Trapped(Reached reached) {
    AutomationError error = CurrentFailure();
    const std::int32_t number = error.Number();
    return {.value = "#err " + std::to_string(number), .reached = reached, .failure = std::move(error)};
}

} // namespace

OrmQelFunction::OrmQelFunction(FunctionContext context) : context_(std::move(context)) {
    DropConnection(context_.thread);
}

OrmQelFunction::~OrmQelFunction() { DropConnection(context_.thread); }

PreparedCall OrmQelFunction::PrepareQeLF1(const ValueCall& call) {
    // A list that cannot be made fails the call itself. Their order says which failure is told.
    ModSetCube::ValueKeys keys;
    keys.ObsName = FirstKey(call.ObsName, context_.locale);
    keys.ObsLevel = FirstKey(call.ObsLevel, context_.locale);
    const Variant obsMember = FirstKey(call.ObsMember, context_.locale);
    keys.ActivityList = FirstKey(call.ActivityList, context_.locale);
    keys.ObsNum = FirstKey(call.ObsNum, context_.locale);
    PreparedCall prepared = Prepare(call, std::move(keys), {&obsMember, 1});
    prepared.isForWorksheet = true;
    if (!prepared.query) {
        prepared.result = ForWorksheet(std::move(prepared.result));
    }
    return prepared;
}

PreparedCall OrmQelFunction::PrepareQelFuncDemo(const ValueCall& call) {
    ModSetCube::ValueKeys keys;
    keys.ObsName = FirstOf(ElementsOf(call.ObsName, "ObsName"));
    keys.ObsNum = FirstOf(ElementsOf(call.ObsNum, "ObsNum"));
    keys.ObsLevel = FirstOf(ElementsOf(call.ObsLevel, "arrObsLevel"));
    const Elements obsMembers = ElementsOf(call.ObsMember, "arrObsMember");
    keys.ActivityList = FirstOf(ElementsOf(call.ActivityList, "arrActivityList"));
    return Prepare(call, std::move(keys), obsMembers);
}

PreparedCall OrmQelFunction::Prepare(const ValueCall& call, ModSetCube::ValueKeys keys, Elements obsMembers) {
    const auto& [thread, providers, locale, wizards] = context_;
    PreparedCall prepared;
    Reached& reached = prepared.result.reached;
    try {
        auto cube = CubeOf(call.cubeFile, call.CubeName);
        if (!EnsureCurrentCubeOpen(thread, providers, opened_, cube)) {
            prepared.result.value = outdatedCube;
            return prepared;
        }
        keys.ObsMember = FirstWithQuotesRestored(obsMembers, locale);
        reached = Reached::OpenCube;
        const AutomationDate from = call.From_Date.IsZero() ? call.To_Date : call.From_Date;
        auto value = ModSetCube::PrepareCubeValue(thread, locale, call, keys,
                                                  ModSetCube::DaysOf(from, call.To_Date, locale));
        if (value.hasSlicers) {
            reached = Reached::Slicers;
        }
        opened_ = std::move(cube);
        if (auto* query = std::get_if<ModSetCube::ValueQuery>(&value.content)) {
            prepared.query = std::move(*query);
        } else {
            auto& known = std::get<ModSetCube::CubeValue>(value.content);
            prepared.result.value = std::move(known.value);
            prepared.result.failure = std::move(known.failure);
        }
    } catch (...) {
        DropConnection(thread);
        prepared.result = Trapped(reached);
    }
    return prepared;
}

FormulaResult OrmQelFunction::Run(PreparedCall prepared) {
    if (!prepared.query) {
        return std::move(prepared.result);
    }
    try {
        auto answer = ReadCell(context_.thread, context_.providers, *prepared.query);
        return Complete(prepared, std::move(answer));
    } catch (...) {
        DropConnection(context_.thread);
        auto result = Trapped(prepared.result.reached);
        return prepared.isForWorksheet ? ForWorksheet(std::move(result)) : result;
    }
}

FormulaResult OrmQelFunction::Complete(const PreparedCall& prepared, ModSetCube::CellAnswer answer) const {
    auto cell = ModSetCube::ValueOf(std::move(answer));
    FormulaResult result{.value = std::move(cell.value),
                         .reached = prepared.result.reached,
                         .failure = std::move(cell.failure)};
    return prepared.isForWorksheet ? ForWorksheet(std::move(result)) : result;
}

FormulaResult OrmQelFunction::QelFuncDemo(const ValueCall& call) { return Run(PrepareQelFuncDemo(call)); }

FormulaResult OrmQelFunction::ForWorksheet(FormulaResult result) const {
    const Variant& value = result.value;
    if ((IsNumeric(value, context_.locale) && !value.Is<Empty>()) || IsOutdatedCube(value)) {
        return result;
    }
    if (value.Is<std::string>()) {
        result.masked = value.As<std::string>();
    }
    result.value = std::int16_t{0};
    return result;
}

FormulaResult OrmQelFunction::RetQelName(const NameCall& call) {
    const auto& [thread, providers, locale, wizards] = context_;
    try {
        const auto cube = CubeOf(call.cubeFile, call.CubeName);
        OpenOrReuse(thread, providers, opened_, cube);
        return {.value = ModSetCube::GetMemberName(thread, providers, locale, cube.cubeName, call.DimType,
                                                   call.DimMember)};
    } catch (...) {
        return {.value = "-", .failure = CurrentFailure()}; // a worksheet function raises no dialog
    }
}

} // namespace qel
