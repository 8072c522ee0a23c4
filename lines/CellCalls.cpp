#include "lines/CellCalls.h"

#include "cube/ValueQuery.h"
#include "function/EditedCall.h"
#include "function/formula/WrittenCalls.h"
#include "platform/value/Conversion.h"

#include <fmt/format.h>

namespace qel {

namespace {

namespace Arg = FormulaArg;

constexpr std::size_t argumentCount = std::tuple_size_v<FormulaArgs>;

std::string IsoDay(AutomationDate date) {
    if (date.IsZero()) {
        return {};
    }
    const CalendarDay day = DayFromDate(date);
    return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
}

/// A text that is no key has none.
std::string FirstKeyText(const Variant& list) {
    if (!list.IsArray()) {
        return {};
    }
    const auto& keys = list.As<std::shared_ptr<const VariantArray>>()->elements;
    return keys.empty() ? std::string() : ToText(keys.front(), {});
}

} // namespace

CellCalls CallsOf(const FormulaCell& cell, const CubePath& fullPath, const Locale& locale) {
    const auto reader = ArgumentReader::Of(cell, fullPath, locale);
    CellCalls calls;
    for (const WrittenCall& written : FindCalls(cell.Formula())) {
        if (IsNameCall(written)) {
            const NamedQuery query = EditedNameCall(written.arguments, reader).Choice();
            calls.names.push_back({query.cubeFile, query.cubeName, query.dimType, query.dataMember});
            continue;
        }
        const EditedValueCall edited(written.arguments, reader);
        calls.values.push_back({edited.Call(), edited.Faulty(), written.arguments.size()});
        if (written.arguments.size() > argumentCount) {
            calls.values.back().faulty.push_back(argumentCount);
        }
    }
    return calls;
}

std::string CallText(std::size_t number, const ValueCall& call) {
    std::string text = std::to_string(number) + ".";
    for (std::size_t argument = Arg::ObsName; argument <= Arg::ToDate; ++argument) {
        if (const std::string value = ArgumentText(call, argument); !ModSetCube::IsUnrestricted(value)) {
            text += (text.ends_with('.') ? " " : ", ") + value;
        }
    }
    return text;
}

std::string ArgumentText(const ValueCall& call, std::size_t argument) {
    if (argument >= Arg::FromDate) {
        return IsoDay(argument == Arg::FromDate ? call.From_Date : call.To_Date);
    }
    if (argument >= Arg::ObsName && argument <= Arg::ActivityList) {
        return FirstKeyText(call.*valueCallLists[argument - Arg::ObsName]);
    }
    return call.*valueCallTexts[argument < Arg::ObsName ? argument : argument - valueCallLists.size()];
}

} // namespace qel
