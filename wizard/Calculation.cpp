#include "wizard/Calculation.h"

#include "cube/CubeConnection.h"
#include "cube/CubeValue.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "wizard/LoadedCube.h"

namespace qel {

namespace {

using namespace ModSetCube;

/// A formula's arguments as the value query takes them.
class ValueCall {
public:
    ValueCall(const Selection& selection, const Locale& locale)
        : selection_(selection), obsNames_{InBrackets(selection.obsName)},
          obsNumbers_{InBrackets(selection.obsNumber)}, obsLevels_{selection.obsLevel},
          activities_{InBrackets(selection.activity)}, from_(FormatShortDate(selection.from, locale)),
          to_(FormatShortDate(selection.to, locale)) {
        for (const std::string& member : selection.obsMembers) {
            obsMembers_.emplace_back(selection.obsLevel == costCentersLevel ? InBrackets(member) : member);
        }
        for (std::string* key : {&selection_.summaryLevel, &selection_.summaryMember, &selection_.account,
                                 &selection_.measure, &selection_.moneySet, &selection_.plbs, &selection_.rh,
                                 &selection_.firma, &selection_.openingBalance}) {
            *key = InBrackets(*key);
        }
    }

    ValueArguments Arguments() {
        return {.cubeName = selection_.cubeName,
                .obsNames = obsNames_,
                .obsNumbers = obsNumbers_,
                .obsLevels = obsLevels_,
                .obsMembers = obsMembers_,
                .activities = activities_,
                .summaryLevel = selection_.summaryLevel,
                .summaryMember = selection_.summaryMember,
                .accounts = selection_.account,
                .measure = selection_.measure,
                .moneySet = selection_.moneySet,
                .plbs = selection_.plbs,
                .rh = selection_.rh,
                .firma = selection_.firma,
                .openingBalance = selection_.openingBalance,
                .fromDate = from_,
                .toDate = to_};
    }

private:
    Selection selection_;
    KeyList obsNames_, obsNumbers_, obsLevels_, obsMembers_, activities_;
    std::string from_, to_;
};

/// The reason of a failed value query, which its result does not contain.
std::string ReasonOf(const WizardContext& context, const Selection& selection) {
    try {
        ValueCall call(selection, context.locale);
        ComputeCubeValue(context.thread, context.dataAccess, context.locale, call.Arguments());
        return {};
    } catch (const AutomationError& error) {
        return error.Description();
    }
}

} // namespace

Calculation Calculate(const WizardContext& context, OpenedCube& opened, const Selection& selection) {
    const OpenedCube cube{selection.cubeFile, selection.cubeName};
    try {
        if (!EnsureCurrentCubeOpen(context.thread, context.dataAccess, opened, cube)) {
            return {Null{}, "Outdated Cube Version"};
        }
        opened = cube;
        ValueCall call(selection, context.locale);
        const Variant value =
            GetCubeValue(context.thread, context.dataAccess, context.locale, call.Arguments());
        if (IsNumeric(value, context.locale)) {
            return {value, ToText(value, context.locale)};
        }
        return {Null{}, ToText(value, context.locale) + " " + ReasonOf(context, selection)};
    } catch (const AutomationError& error) {
        context.thread.CubeConnection.reset();
        return {Null{}, "#err " + std::to_string(error.Number()) + " " + error.Description()};
    }
}

} // namespace qel
