#include "reason/RunFormula.h"

#include "platform/value/Conversion.h"

namespace qel {

FormulaResult RunFormula(OrmQelFunction& object, const FormulaCall& call) {
    switch (call.function) {
    case WorksheetFunction::QeLF1:
        return object.QeLF1(std::get<ValueCall>(call.arguments));
    case WorksheetFunction::QeL1:
        return object.QeL1(std::get<ValueCall>(call.arguments));
    case WorksheetFunction::QelFuncDemo:
        return object.QelFuncDemo(std::get<ValueCall>(call.arguments));
    case WorksheetFunction::QelName:
        return object.QelName(std::get<NameCall>(call.arguments));
    case WorksheetFunction::RetQelName:
        return object.RetQelName(std::get<NameCall>(call.arguments));
    }
    return {};
}

bool ShowsZero(const FormulaResult& result, const Locale& locale) {
    return IsNumeric(result.value, locale) && ToDouble(result.value, locale) == 0;
}

bool IsOutdated(const FormulaResult& result) {
    return result.reached == Reached::Nothing && !result.failure && result.masked.empty() &&
           result.value.Is<std::string>() && !result.value.As<std::string>().empty();
}

KeyList KeysOf(WorksheetFunction function, const Variant& list, const Locale& locale) {
    if (function == WorksheetFunction::QelFuncDemo && list.IsArray()) {
        return list.As<std::shared_ptr<const VariantArray>>()->elements;
    }
    return ArgToList(list, locale);
}

} // namespace qel
