#include "cube/CubeValue.h"

#include "cube/ObsSel.h"
#include "cube/PeriodSelection.h"
#include "cube/ValueStatement.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "support/ClTimming.h"
#include "text/Text.h"

namespace qel::ModSetCube {

namespace {

const std::vector<std::int32_t> firstColumnAndRow = {0, 0};

Variant Zero() { return std::int16_t{0}; }

/// Element 0 as text; a list without elements holds no key, as one with an empty element does.
std::string FirstKey(const KeyList& list, const Locale& locale) {
    return list.empty() ? std::string() : ToText(list.front(), locale);
}

ValueSelection Select(const ValueArguments& arguments, const Locale& locale) {
    return {.cubeName = arguments.cubeName,
            .obsName = FirstKey(arguments.obsNames, locale),
            .obsNumber = FirstKey(arguments.obsNumbers, locale),
            .obsLevel = FirstKey(arguments.obsLevels, locale),
            .obsMember = FirstKey(arguments.obsMembers, locale),
            .activity = FirstKey(arguments.activities, locale),
            .summaryLevel = arguments.summaryLevel,
            .summaryMember = arguments.summaryMember,
            .accounts = arguments.accounts,
            .measure = arguments.measure,
            .moneySet = arguments.moneySet,
            .plbs = arguments.plbs,
            .rh = arguments.rh,
            .firma = arguments.firma,
            .openingBalance = arguments.openingBalance};
}

/// Callers get their selections back as pieces of the slicer; an unrestricted RH alone stays as it was.
void OverwriteWithSlicers(const ValueArguments& arguments) {
    if (!IsUnrestricted(arguments.rh)) {
        arguments.rh = MemberSlicer("[RH]", arguments.rh);
    }
    arguments.firma = MemberSlicer("[Firma]", arguments.firma);
    arguments.openingBalance = MemberSlicer("[Opening_Balance]", arguments.openingBalance);
    arguments.moneySet = MemberSlicer("[MoneySet]", arguments.moneySet);
}

bool IsEmptyCell(const Variant& value) {
    return value.Is<Null>() || value.Is<Empty>() ||
           (value.Is<std::string>() && value.As<std::string>().empty());
}

Variant ReadFirstCell(const std::string& statement, const ThreadState& thread, DataAccess& dataAccess) {
    ClTimming timing;
    timing.Start();
    const auto cellset = dataAccess.CreateCellset();
    cellset->Open(statement, thread.CubeConnection);
    timing.Finish();
    Variant value = cellset->Value(firstColumnAndRow);
    cellset->Close();
    return IsEmptyCell(value) ? Zero() : value;
}

} // namespace

Variant ComputeCubeValue(const ThreadState& thread, DataAccess& dataAccess, const Locale& locale,
                         const ValueArguments& arguments) {
    DayRange days{ParseDate(arguments.fromDate, locale), ParseDate(arguments.toDate, locale)};
    if (const auto known = ClampToCube(thread.dates, days)) {
        return *known;
    }
    const ValueSelection selection = Select(arguments, locale);
    OverwriteWithSlicers(arguments);
    std::string obsSel;
    if (NeedsObsSel(selection)) {
        obsSel = BuildObsSel(thread, dataAccess, std::string(Trimmed(selection.obsLevel)),
                             std::string(Trimmed(selection.obsMember)));
    }
    const auto span = FindPeriods(thread.dates, days);
    if (!span) {
        return Zero();
    }
    return ReadFirstCell(ComposeValueStatement(selection, *span, obsSel), thread, dataAccess);
}

Variant GetCubeValue(const ThreadState& thread, DataAccess& dataAccess, const Locale& locale,
                     const ValueArguments& arguments) {
    try {
        return ComputeCubeValue(thread, dataAccess, locale, arguments);
    } catch (const AutomationError& error) {
        return "#ERR " + std::to_string(error.Number());
    }
}

} // namespace qel::ModSetCube
