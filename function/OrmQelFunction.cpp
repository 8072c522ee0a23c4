#include "function/OrmQelFunction.h"

#include "cube/CubeValue.h"
#include "cube/MemberName.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/CaseFold.h"
#include "text/Text.h"

namespace qel {

namespace {

const char* const outdatedCube = "Outdated Cube Version";
constexpr std::size_t mostKeys = 32768; // keys are counted in 16 bits

/// Formulas carry a double quote of a member's key as a no-break space.
void RestoreQuotes(KeyList& keys, const Locale& locale) {
    constexpr std::string_view noBreakSpace = "\xC2\xA0";
    if (keys.size() > mostKeys) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    for (Variant& key : keys) {
        key = ReplaceAll(ToText(key, locale), noBreakSpace, "\"");
    }
}

bool IsOutdatedCube(const Variant& result) {
    return result.Is<std::string>() && EqualIgnoringCase(result.As<std::string>(), outdatedCube);
}

} // namespace

OrmQelFunction::OrmQelFunction(const FunctionContext& context) : context_(context) {
    context_.thread.CubeConnection = context_.dataAccess.CreateConnection();
}

OrmQelFunction::~OrmQelFunction() { context_.thread.CubeConnection.reset(); }

Variant OrmQelFunction::QelFuncDemo(std::string& cubeFile, std::string& CubeName, KeyList& ObsName,
                                    KeyList& ObsNum, KeyList& arrObsLevel, KeyList& arrObsMember,
                                    KeyList& arrActivityList, std::string& strLevelAcc,
                                    std::string& strMemberAcc, std::string& strListAcc,
                                    std::string& strMeasure, std::string& ComMoneySet, std::string& strPlbs,
                                    std::string& ComRh, std::string& ComFirma, std::string& ComOB,
                                    AutomationDate strMin, AutomationDate strMax, std::int16_t /*optLev*/) {
    const auto& [thread, dataAccess, locale, wizards] = context_;
    try {
        Trim(cubeFile);
        Trim(CubeName);
        if (!EnsureCurrentCubeOpen(thread, dataAccess, opened_, {cubeFile, CubeName})) {
            return outdatedCube;
        }
        RestoreQuotes(arrObsMember, locale);
        Trim(strMeasure);
        if (strMin.IsZero()) {
            strMin = strMax;
        }
        Variant result = ModSetCube::GetCubeValue(thread, dataAccess, locale,
                                                  {.cubeName = CubeName,
                                                   .obsNames = ObsName,
                                                   .obsNumbers = ObsNum,
                                                   .obsLevels = arrObsLevel,
                                                   .obsMembers = arrObsMember,
                                                   .activities = arrActivityList,
                                                   .summaryLevel = strLevelAcc,
                                                   .summaryMember = strMemberAcc,
                                                   .accounts = strListAcc,
                                                   .measure = strMeasure,
                                                   .moneySet = ComMoneySet,
                                                   .plbs = strPlbs,
                                                   .rh = ComRh,
                                                   .firma = ComFirma,
                                                   .openingBalance = ComOB,
                                                   .fromDate = FormatShortDate(strMin, locale),
                                                   .toDate = FormatShortDate(strMax, locale)});
        opened_ = {cubeFile, CubeName};
        return result;
    } catch (const AutomationError& error) {
        thread.CubeConnection.reset();
        return "#err " + std::to_string(error.Number());
    }
}

Variant OrmQelFunction::EvalQel(std::string& cubeFile, std::string& CubeName, const Variant& ObsName,
                                const Variant& ObsNum, const Variant& ObsLevel, const Variant& ObsMember,
                                const Variant& ActivityList, std::string& Summary_Group,
                                std::string& Seif_level, std::string& Accounts, std::string& Measure,
                                std::string& MoneySet, std::string& Plbs, std::string& RH, std::string& Firma,
                                std::string& Opening_Balance, AutomationDate From_Date,
                                AutomationDate To_Date) {
    // A list that cannot be made fails the call itself. Their order says which failure is told.
    KeyList obsNames = ArgToList(ObsName, context_.locale);
    KeyList obsLevels = ArgToList(ObsLevel, context_.locale);
    KeyList obsMembers = ArgToList(ObsMember, context_.locale);
    KeyList activities = ArgToList(ActivityList, context_.locale);
    KeyList obsNumbers = ArgToList(ObsNum, context_.locale);
    Variant result = QelFuncDemo(cubeFile, CubeName, obsNames, obsNumbers, obsLevels, obsMembers, activities,
                                 Summary_Group, Seif_level, Accounts, Measure, MoneySet, Plbs, RH, Firma,
                                 Opening_Balance, From_Date, To_Date, 0);
    const bool isShown =
        (IsNumeric(result, context_.locale) && !result.Is<Empty>()) || IsOutdatedCube(result);
    return isShown ? result : Variant(std::int16_t{0});
}

Variant OrmQelFunction::QeL1(std::string& cubeFile, std::string& CubeName, const Variant& ObsName,
                             const Variant& ObsNum, const Variant& ObsLevel, const Variant& ObsMember,
                             const Variant& ActivityList, std::string& Summary_Group, std::string& Seif_level,
                             std::string& Accounts, std::string& Measure, std::string& MoneySet,
                             std::string& Plbs, std::string& RH, std::string& Firma,
                             std::string& Opening_Balance, AutomationDate From_Date, AutomationDate To_Date) {
    return EvalQel(cubeFile, CubeName, ObsName, ObsNum, ObsLevel, ObsMember, ActivityList, Summary_Group,
                   Seif_level, Accounts, Measure, MoneySet, Plbs, RH, Firma, Opening_Balance, From_Date,
                   To_Date);
}

Variant OrmQelFunction::QeLF1(std::string& cubeFile, std::string& CubeName, const Variant& ObsName,
                              const Variant& ObsNum, const Variant& ObsLevel, const Variant& ObsMember,
                              const Variant& ActivityList, std::string& Summary_Group,
                              std::string& Seif_level, std::string& Accounts, std::string& Measure,
                              std::string& MoneySet, std::string& Plbs, std::string& RH, std::string& Firma,
                              std::string& Opening_Balance, AutomationDate From_Date,
                              AutomationDate To_Date) {
    return EvalQel(cubeFile, CubeName, ObsName, ObsNum, ObsLevel, ObsMember, ActivityList, Summary_Group,
                   Seif_level, Accounts, Measure, MoneySet, Plbs, RH, Firma, Opening_Balance, From_Date,
                   To_Date);
}

Variant OrmQelFunction::QelName(std::string& cubeFile, std::string& CubeName, std::string& DimType,
                                std::string& DimMember) {
    return RetQelName(cubeFile, CubeName, DimType, DimMember);
}

Variant OrmQelFunction::RetQelName(std::string& cubeFile, std::string& CubeName, std::string& DimType,
                                   std::string& DimMember) {
    const auto& [thread, dataAccess, locale, wizards] = context_;
    try {
        Trim(cubeFile);
        Trim(CubeName);
        OpenOrReuse(thread, dataAccess, opened_, {cubeFile, CubeName});
        return ModSetCube::GetMemberName(thread, dataAccess, locale, CubeName, DimType, DimMember);
    } catch (const AutomationError&) {
        return "-"; // a worksheet function raises no dialog
    }
}

} // namespace qel
