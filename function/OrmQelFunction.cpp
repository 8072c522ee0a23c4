#include "function/OrmQelFunction.h"

#include "cube/CallKey.h"
#include "cube/NameQuery.h"
#include "function/FirstKeys.h"
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

bool IsCubeOf(const ValueCall& call, const ModSetCube::OpenedCube& cube) {
    return Trimmed(call.CubeName) == cube.cubeName && Trimmed(call.cubeFile) == cube.cubeFile;
}

ModSetCube::OpenedCube CubeOf(const std::string& cubeFile, const std::string& cubeName) {
    return {std::string(Trimmed(cubeFile)), std::string(Trimmed(cubeName))};
}

ModSetCube::DayRange DaysOf(const ValueCall& call, const Locale& locale) {
    return ModSetCube::DaysOf(call.From_Date.IsZero() ? call.To_Date : call.From_Date, call.To_Date, locale);
}

/// Completes the call with a value that is known without its cell, or gives it the query.
void Ask(ModSetCube::PreparedValue value, PreparedCall& prepared) {
    if (value.hasSlicers) {
        prepared.result.reached = Reached::Slicers;
    }
    if (auto* query = std::get_if<ModSetCube::ValueQuery>(&value.content)) {
        prepared.query = std::move(*query);
    } else {
        auto& known = std::get<ModSetCube::CubeValue>(value.content);
        prepared.result.value = std::move(known.value);
        prepared.result.failure = std::move(known.failure);
    }
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

PreparedCall OrmQelFunction::PrepareForWorksheet(const ValueCall& call, KnownCell known) {
    const FirstKeys keys(call, context_.locale); // a list that cannot be made fails the call itself
    PreparedCall prepared = Prepare(call, [&](PreparedCall& reading) {
        reading.result.reached = Reached::OpenCube;
        const auto days = DaysOf(call, context_.locale);
        if (known == KnownCell::IsLeft || !ReadKnown(call, keys, days, reading)) {
            Ask(PrepareCubeValue(context_.thread, context_.locale, call, keys.Values(), days), reading);
        }
    });
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
    return Prepare(call, [&](PreparedCall& prepared) {
        const Locale& locale = context_.locale;
        keys.ObsMember = FirstWithQuotesRestored(obsMembers, locale);
        prepared.result.reached = Reached::OpenCube;
        Ask(PrepareCubeValue(context_.thread, locale, call, keys, DaysOf(call, locale)), prepared);
    });
}

template <class Steps>
PreparedCall OrmQelFunction::Prepare(const ValueCall& call, const Steps& steps) {
    const auto& [thread, providers, locale, wizards] = context_;
    PreparedCall prepared;
    try {
        std::optional<ModSetCube::OpenedCube> other;
        const auto& cube =
            IsCubeOf(call, opened_) ? opened_ : other.emplace(CubeOf(call.cubeFile, call.CubeName));
        if (!EnsureCurrentCubeOpen(thread, providers, opened_, cube)) {
            prepared.result.value = outdatedCube;
            return prepared;
        }
        steps(prepared);
        if (other) {
            opened_ = std::move(*other);
        }
    } catch (...) {
        DropConnection(thread);
        prepared.result = Trapped(prepared.result.reached);
    }
    return prepared;
}

bool OrmQelFunction::ReadKnown(const ValueCall& call, const FirstKeys& keys, ModSetCube::DayRange days,
                               PreparedCall& prepared) {
    ModSetCube::WriteCallKey(key_, call, keys.Texts(), days);
    ModSetCube::KnownCells& cells = context_.thread.knownCells;
    if (const PreparedCell* cell = cells.Find(key_)) {
        if (auto answer = ModSetCube::ReadKnownCell(*cell)) {
            prepared.result.reached = Reached::Slicers;
            prepared.result.value = ModSetCube::ValueOf(std::move(*answer)).value;
            return true;
        }
        cells.Clear(); // the file has changed
    }
    prepared.key = key_;
    return false;
}

FormulaResult OrmQelFunction::Run(PreparedCall prepared) {
    if (!prepared.query) {
        return std::move(prepared.result);
    }
    try {
        auto answer = prepared.key.empty() ? ReadCell(context_.thread, context_.providers, *prepared.query)
                                           : ReadCellAndKeep(context_.thread, context_.providers,
                                                             *prepared.query, std::move(prepared.key));
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
