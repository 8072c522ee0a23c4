#include "function/formula/BindFormula.h"

#include "function/formula/FormulaError.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

namespace qel {

namespace {

using TextField = std::string ValueCall::*;
using ListField = Variant ValueCall::*;
using DateField = AutomationDate ValueCall::*;
using NameField = std::string NameCall::*;
/// The last parameter of QelFuncDemo, a number that the function ignores.
struct IgnoredNumber {};

struct Parameter {
    const char* name;
    std::variant<TextField, ListField, DateField, NameField, IgnoredNumber> field;
};

constexpr std::array<Parameter, 19> valueParameters = {{{"cubeFile", &ValueCall::cubeFile},
                                                        {"CubeName", &ValueCall::CubeName},
                                                        {"ObsName", &ValueCall::ObsName},
                                                        {"ObsNum", &ValueCall::ObsNum},
                                                        {"ObsLevel", &ValueCall::ObsLevel},
                                                        {"ObsMember", &ValueCall::ObsMember},
                                                        {"ActivityList", &ValueCall::ActivityList},
                                                        {"Summary_Group", &ValueCall::Summary_Group},
                                                        {"Seif_level", &ValueCall::Seif_level},
                                                        {"Accounts", &ValueCall::Accounts},
                                                        {"Measure", &ValueCall::Measure},
                                                        {"MoneySet", &ValueCall::MoneySet},
                                                        {"Plbs", &ValueCall::Plbs},
                                                        {"RH", &ValueCall::RH},
                                                        {"Firma", &ValueCall::Firma},
                                                        {"Opening_Balance", &ValueCall::Opening_Balance},
                                                        {"From_Date", &ValueCall::From_Date},
                                                        {"To_Date", &ValueCall::To_Date},
                                                        {"optLev", IgnoredNumber{}}}};
constexpr std::size_t requiredValueArguments = 16;
constexpr std::size_t worksheetValueArguments = 18;

constexpr std::array<Parameter, 4> nameParameters = {{{"cubeFile", &NameCall::cubeFile},
                                                      {"CubeName", &NameCall::CubeName},
                                                      {"DimType", &NameCall::DimType},
                                                      {"DimMember", &NameCall::DimMember}}};

struct FunctionEntry {
    std::string_view name;
    WorksheetFunction function;
    std::span<const Parameter> parameters;
    std::size_t required;
};

const std::array<FunctionEntry, 5> entries = {
    {{"QelF1", WorksheetFunction::QeLF1, std::span(valueParameters).first(worksheetValueArguments),
      requiredValueArguments},
     {"QeL1", WorksheetFunction::QeL1, std::span(valueParameters).first(worksheetValueArguments),
      requiredValueArguments},
     {"QelName", WorksheetFunction::QelName, nameParameters, nameParameters.size()},
     {"RetQelName", WorksheetFunction::RetQelName, nameParameters, nameParameters.size()},
     {"QelFuncDemo", WorksheetFunction::QelFuncDemo, valueParameters, requiredValueArguments}}};

const FunctionEntry& FindFunction(const Formula& formula) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const FunctionEntry& entry) {
        return EqualIgnoringCase(entry.name, formula.function);
    });
    if (found != entries.end()) {
        return *found;
    }
    std::string names;
    for (const auto& entry : entries) {
        names += fmt::format("{}{}", names.empty() ? "" : ", ", entry.name);
    }
    throw FormulaError(formula.position,
                       fmt::format("There is no function '{}'; there are {}", formula.function, names));
}

void CheckCount(const Formula& formula, const FunctionEntry& entry) {
    const auto given = formula.arguments.size();
    if (given > entry.parameters.size()) {
        throw FormulaError(formula.arguments[entry.parameters.size()].position,
                           fmt::format("{} takes at most {} arguments, and {} are given", entry.name,
                                       entry.parameters.size(), given));
    }
    if (given < entry.required) {
        throw FormulaError(formula.position,
                           fmt::format("{} needs {} arguments, and {} are given: {} is missing", entry.name,
                                       entry.required, given, entry.parameters[given].name));
    }
}

/// Converts one argument; a conversion that the platform refuses is told with the parameter's name and place.
class ArgumentBinder {
public:
    ArgumentBinder(FormulaCall& call, const Locale& locale) : call_(call), locale_(locale) {}

    void Bind(std::size_t index, const Parameter& parameter, const FormulaArgument& argument) {
        try {
            std::visit([&](const auto& field) { Store(field, argument.value); }, parameter.field);
        } catch (const AutomationError& error) {
            throw FormulaError(argument.position, fmt::format("Argument {} ({}): {}", index + 1,
                                                              parameter.name, error.Description()));
        }
    }

private:
    template <class Call>
    void Store(std::string Call::*field, const std::optional<Variant>& value) {
        std::get<Call>(call_.arguments).*field = value ? ToText(*value, locale_) : "";
    }

    void Store(ListField field, const std::optional<Variant>& value) {
        std::get<ValueCall>(call_.arguments).*field = value ? *value : Variant(ErrorValue{parameterNotFound});
    }

    void Store(DateField field, const std::optional<Variant>& value) {
        if (!value) {
            return;
        }
        try {
            std::get<ValueCall>(call_.arguments).*field = ToDate(*value, locale_);
        } catch (const AutomationError& error) {
            if (!value->Is<std::string>()) {
                throw;
            }
            throw AutomationError(error.Number(), fmt::format("{}: '{}' is not a date", error.Description(),
                                                              value->As<std::string>()));
        }
    }

    void Store(IgnoredNumber /*field*/, const std::optional<Variant>& value) {
        if (value) {
            ToDouble(*value, locale_);
        }
    }

    FormulaCall& call_;
    const Locale& locale_;
};

} // namespace

FormulaCall BindFormula(const Formula& formula, const Locale& locale) {
    const auto& entry = FindFunction(formula);
    CheckCount(formula, entry);
    FormulaCall call;
    call.function = entry.function;
    call.given = formula.arguments.size();
    if (entry.parameters.size() == nameParameters.size()) {
        call.arguments = NameCall{};
    }
    ArgumentBinder binder(call, locale);
    for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
        // What the formula does not reach is omitted like what it leaves empty.
        static const FormulaArgument omitted;
        binder.Bind(i, entry.parameters[i], i < formula.arguments.size() ? formula.arguments[i] : omitted);
    }
    return call;
}

} // namespace qel
