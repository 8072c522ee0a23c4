#include "reason/ValueReason.h"

#include "cube/CellLines.h"
#include "platform/data/ConnectionText.h"
#include "platform/value/Conversion.h"
#include "platform/value/ValueText.h"

#include <algorithm>
#include <array>

namespace qel {

namespace {

using Given = std::vector<std::optional<std::string>>;

constexpr std::array listNames = {"ObsName", "ObsNum", "ObsLevel", "ObsMember", "ActivityList"};
constexpr std::array textNames = {"cubeFile", "CubeName", "Summary_Group",  "Seif_level",
                                  "Accounts", "Measure",  "MoneySet",       "Plbs",
                                  "RH",       "Firma",    "Opening_Balance"};

Given KeyTexts(const KeyList& keys, const Locale& locale) {
    Given texts;
    for (const Variant& key : keys) {
        texts.push_back(key.Is<Empty>() ? std::nullopt : std::optional(ToText(key, locale)));
    }
    return texts;
}

ArgumentReason Unsearched(const std::string& name, Given given) {
    return {name, ArgumentRole::Everything, {}, {}, std::move(given)};
}

/// What was given, by the arguments' names; in the interface's order.
std::vector<ArgumentReason> GivenArguments(const FormulaCall& call, const Locale& locale) {
    std::vector<ArgumentReason> arguments;
    if (const auto* name = std::get_if<NameCall>(&call.arguments)) {
        return {Unsearched("cubeFile", {name->cubeFile}), Unsearched("CubeName", {name->CubeName}),
                Unsearched("DimType", {name->DimType}), Unsearched("DimMember", {name->DimMember})};
    }
    const auto& value = std::get<ValueCall>(call.arguments);
    for (std::size_t i = 0; i < textNames.size(); ++i) {
        arguments.push_back(Unsearched(textNames[i], {value.*valueCallTexts[i]}));
    }
    std::vector<ArgumentReason> lists;
    for (std::size_t i = 0; i < listNames.size(); ++i) {
        const KeyList keys = KeysOf(call.function, value.*valueCallLists[i], locale);
        lists.push_back(Unsearched(listNames[i], KeyTexts(keys, locale)));
    }
    constexpr std::ptrdiff_t placeOfLists = 2;
    arguments.insert(arguments.begin() + placeOfLists, lists.begin(), lists.end());
    const std::array dates = {std::pair("From_Date", value.From_Date), std::pair("To_Date", value.To_Date)};
    for (const auto& [name, date] : dates) {
        arguments.push_back(
            Unsearched(name, {date.IsZero() ? std::nullopt : std::optional(ToText(date, locale))}));
    }
    return arguments;
}

} // namespace

ValueReason ValueReasons::Of(const FormulaCall& call) {
    using Clock = std::chrono::steady_clock;
    ValueReason reason;
    reason.arguments = GivenArguments(call, locale_); // first: the call throws when a list is invalid
    recording_ = {};
    const auto start = Clock::now();
    reason.result = RunFormula(object_, call);
    reason.firstTime = Clock::now() - start;
    reason.openTime = recording_.openTime;
    reason.statements = recording_.statements;
    for (const std::string& text : recording_.connectionTexts) {
        reason.connections.push_back(WithoutPasswords(text));
    }
    reason.value = ValueText(reason.result.value);
    reason.why = zeros_.Why(call, reason.result);
    reason.notes = zeros_.Ignored(call);
    if (const auto* value = std::get_if<ValueCall>(&call.arguments)) {
        if (thread_.datesAreCurrent) {
            reason.periods = ChosenPeriods(thread_.dates, *value, locale_);
            reason.unsent = reason.statements.empty() ? WhyUnsent(*value) : std::nullopt;
        }
        reason.lineCount = CountLines(call);
        FindMembers(call, reason);
    }
    return reason;
}

void ValueReasons::FindMembers(const FormulaCall& call, ValueReason& reason) {
    QueryMembers found;
    try {
        found = zeros_.MembersOf(call);
    } catch (const AutomationError&) {
        return; // the result says so
    }
    for (ArgumentReason& argument : found.arguments) {
        const auto place = std::find_if(reason.arguments.begin(), reason.arguments.end(),
                                        [&](const auto& each) { return each.name == argument.name; });
        argument.given = std::move(place->given);
        *place = std::move(argument);
    }
}

std::optional<std::uint64_t> ValueReasons::CountLines(const FormulaCall& call) {
    const auto& value = std::get<ValueCall>(call.arguments);
    if (IsServerAddress(value.cubeFile)) {
        return std::nullopt;
    }
    try {
        const PreparedCall prepared = call.function == WorksheetFunction::QelFuncDemo
                                          ? object_.PrepareQelFuncDemo(value)
                                          : object_.PrepareQeLF1(value);
        if (!prepared.query) {
            return std::nullopt;
        }
        ModSetCube::LinesRequest one;
        one.most = 1;
        return ReadCellLines(thread_, providers_, *prepared.query, one).rows.total;
    } catch (const AutomationError&) {
        return std::nullopt; // of a value that the result tells the error of, or a provider without lines
    }
}

std::optional<Reason> ValueReasons::WhyUnsent(const ValueCall& call) const {
    const auto& dates = thread_.dates;
    if (dates.CubeDates.empty() || !dates.earlier.empty() || call.From_Date > call.To_Date ||
        (call.To_Date >= dates.CubeMinDate && call.From_Date <= dates.CubeMaxDate)) {
        return std::nullopt;
    }
    return Reason{ReasonCode::OutsideDates,
                  {ToText(dates.CubeMinDate, locale_), ToText(dates.CubeMaxDate, locale_)}};
}

double ValueDifference(double value, double other) {
    return ModSetCube::SumOfField({{""}, {{value}, {-other}}}, 0);
}

FormulaCall OverOtherFile(FormulaCall call, const std::string& cubeFile) {
    std::visit([&](auto& arguments) { arguments.cubeFile = cubeFile; }, call.arguments);
    return call;
}

} // namespace qel
