#include "cli/RunFormula.h"

#include "platform/value/AutomationError.h"

#include <fmt/format.h>

namespace qel {

namespace {

KeyList ElementsOf(const char* name, const Variant& value) {
    if (!value.IsArray()) {
        throw AutomationError(ErrorNumber::TypeMismatch,
                              fmt::format("Type mismatch: QelFuncDemo takes {} as an array constant", name));
    }
    return value.As<std::shared_ptr<const VariantArray>>()->elements;
}

template <Variant (OrmQelFunction::*function)(
    std::string&, std::string&, const Variant&, const Variant&, const Variant&, const Variant&,
    const Variant&, std::string&, std::string&, std::string&, std::string&, std::string&, std::string&,
    std::string&, std::string&, std::string&, AutomationDate, AutomationDate)>
Variant RunMasked(OrmQelFunction& object, ValueCall& call) {
    return (object.*function)(call.cubeFile, call.CubeName, call.ObsName, call.ObsNum, call.ObsLevel,
                              call.ObsMember, call.ActivityList, call.Summary_Group, call.Seif_level,
                              call.Accounts, call.Measure, call.MoneySet, call.Plbs, call.RH, call.Firma,
                              call.Opening_Balance, call.From_Date, call.To_Date);
}

} // namespace

KeyLists NormaliseKeyLists(WorksheetFunction function, const ValueCall& call, const Locale& locale) {
    if (function == WorksheetFunction::QelFuncDemo) {
        return {ElementsOf("ObsName", call.ObsName), ElementsOf("ObsNum", call.ObsNum),
                ElementsOf("arrObsLevel", call.ObsLevel), ElementsOf("arrObsMember", call.ObsMember),
                ElementsOf("arrActivityList", call.ActivityList)};
    }
    return {ArgToList(call.ObsName, locale), ArgToList(call.ObsNum, locale), ArgToList(call.ObsLevel, locale),
            ArgToList(call.ObsMember, locale), ArgToList(call.ActivityList, locale)};
}

Variant RunUnmasked(OrmQelFunction& object, KeyLists lists, ValueCall call) {
    return object.QelFuncDemo(call.cubeFile, call.CubeName, lists.ObsName, lists.ObsNum, lists.ObsLevel,
                              lists.ObsMember, lists.ActivityList, call.Summary_Group, call.Seif_level,
                              call.Accounts, call.Measure, call.MoneySet, call.Plbs, call.RH, call.Firma,
                              call.Opening_Balance, call.From_Date, call.To_Date);
}

Variant RunFormula(OrmQelFunction& object, FormulaCall call, const Locale& locale) {
    switch (call.function) {
    case WorksheetFunction::QeLF1:
        return RunMasked<&OrmQelFunction::QeLF1>(object, std::get<ValueCall>(call.arguments));
    case WorksheetFunction::QeL1:
        return RunMasked<&OrmQelFunction::QeL1>(object, std::get<ValueCall>(call.arguments));
    case WorksheetFunction::QelFuncDemo: {
        auto& value = std::get<ValueCall>(call.arguments);
        auto lists = NormaliseKeyLists(call.function, value, locale);
        return RunUnmasked(object, std::move(lists), std::move(value));
    }
    case WorksheetFunction::QelName: {
        auto& name = std::get<NameCall>(call.arguments);
        return object.QelName(name.cubeFile, name.CubeName, name.DimType, name.DimMember);
    }
    case WorksheetFunction::RetQelName: {
        auto& name = std::get<NameCall>(call.arguments);
        return object.RetQelName(name.cubeFile, name.CubeName, name.DimType, name.DimMember);
    }
    }
    return {};
}

} // namespace qel
