#include "server/OrmQelFunctionObject.h"

#include "platform/sheet/automation/AutomationSheet.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/VariantConversion.h"
#include "server/ByReference.h"
#include "server/Wizards.h"

namespace qel::server {

using windows::FromAutomation;
using windows::ToAutomation;

namespace {

constexpr std::size_t valueTexts = 11;
constexpr std::size_t nameTexts = 4;

Variant Read(const VARIANT* argument) {
    return argument != nullptr ? FromAutomation(*argument) : Variant(ErrorValue{parameterNotFound});
}

/// The elements of an array passed as a list. Raises 13 for anything else.
KeyList ElementsOf(const VARIANT* argument, const char* name) {
    const Variant list = Read(argument);
    if (!list.IsArray()) {
        throw AutomationError(ErrorNumber::TypeMismatch,
                              std::string("Type mismatch: QelFuncDemo takes ") + name + " as an array");
    }
    return list.As<std::shared_ptr<const VariantArray>>()->elements;
}

/// Writes changed keys back into the caller's array.
void WriteKeys(VARIANT& list, const KeyList& keys) {
    VARIANT& target = windows::Dereferenced(list);
    if (V_ISARRAY(&target)) {
        windows::ReplaceTexts(V_ISBYREF(&target) ? *V_ARRAYREF(&target) : V_ARRAY(&target), keys);
    }
}

/// Null when the caller passed no cell.
std::shared_ptr<SheetRange> CellOf(IDispatch** cell) {
    return cell != nullptr && *cell != nullptr ? windows::SheetRangeOf(*cell) : nullptr;
}

void Give(const Variant& value, VARIANT* result) { ResultPlace(result) = ToAutomation(value).Release(); }

void Give(const std::string& text, BSTR* result) { ResultPlace(result) = windows::Bstr(text).Release(); }

} // namespace

STDMETHODIMP OrmQelFunctionObject::QelFuncDemo(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName,
                                               VARIANT* ObsNum, VARIANT* arrObsLevel, VARIANT* arrObsMember,
                                               VARIANT* arrActivityList, BSTR* strLevelAcc,
                                               BSTR* strMemberAcc, BSTR* strListAcc, BSTR* strMeasure,
                                               BSTR* ComMoneySet, BSTR* strPlbs, BSTR* ComRh, BSTR* ComFirma,
                                               BSTR* ComOB, DATE strMin, DATE strMax, short* optLev,
                                               VARIANT* result) {
    return Guard([&] {
        TextsByReference<valueTexts> texts({cubeFile, CubeName, strLevelAcc, strMemberAcc, strListAcc,
                                            strMeasure, ComMoneySet, strPlbs, ComRh, ComFirma, ComOB});
        KeyList names = ElementsOf(ObsName, "ObsName");
        KeyList numbers = ElementsOf(ObsNum, "ObsNum");
        KeyList levels = ElementsOf(arrObsLevel, "arrObsLevel");
        KeyList members = ElementsOf(arrObsMember, "arrObsMember");
        KeyList activities = ElementsOf(arrActivityList, "arrActivityList");
        const std::int16_t level = optLev != nullptr ? *optLev : std::int16_t{0};
        const Variant value = function_.QelFuncDemo(
            texts[0], texts[1], names, numbers, levels, members, activities, texts[2], texts[3], texts[4],
            texts[5], texts[6], texts[7], texts[8], texts[9], texts[10], {strMin}, {strMax}, level);
        Give(value, result);
        WriteKeys(*arrObsMember, members);
        texts.WriteBack();
    });
}

STDMETHODIMP OrmQelFunctionObject::ShowFormGetVal(IDispatch** xlActiveCell, BSTR* result) {
    return Guard([&] {
        function_.UseWizards(Wizards());
        Give(function_.ShowFormGetVal(CellOf(xlActiveCell)), result);
    });
}

STDMETHODIMP OrmQelFunctionObject::ShowFormQelName(IDispatch** xlActiveCell, BSTR* result) {
    return Guard([&] {
        function_.UseWizards(Wizards());
        Give(function_.ShowFormQelName(CellOf(xlActiveCell)), result);
    });
}

STDMETHODIMP OrmQelFunctionObject::get_g_cubeFile(BSTR* result) {
    return Guard([&] { Give(function_.get_g_cubeFile(), result); });
}

STDMETHODIMP OrmQelFunctionObject::put_g_cubeFile(BSTR value) {
    return Guard([&] { function_.put_g_cubeFile(windows::TextOfBstr(value)); });
}

STDMETHODIMP OrmQelFunctionObject::get_g_CubeName(BSTR* result) {
    return Guard([&] { Give(function_.get_g_CubeName(), result); });
}

STDMETHODIMP OrmQelFunctionObject::put_g_CubeName(BSTR value) {
    return Guard([&] { function_.put_g_CubeName(windows::TextOfBstr(value)); });
}

STDMETHODIMP OrmQelFunctionObject::put_ResQel(BSTR value) {
    return Guard([&] { function_.put_ResQel(windows::TextOfBstr(value)); });
}

STDMETHODIMP OrmQelFunctionObject::get_iShowDetail(short* result) {
    return Guard([&] { ResultPlace(result) = function_.get_iShowDetail(); });
}

STDMETHODIMP OrmQelFunctionObject::put_iShowDetail(short value) {
    return Guard([&] { function_.put_iShowDetail(value); });
}

STDMETHODIMP OrmQelFunctionObject::get_iLang(short* result) {
    return Guard([&] { ResultPlace(result) = function_.get_iLang(); });
}

STDMETHODIMP OrmQelFunctionObject::put_iLang(short value) {
    return Guard([&] { function_.put_iLang(value); });
}

STDMETHODIMP OrmQelFunctionObject::QelName(BSTR* cubeFile, BSTR* CubeName, BSTR* DimType, BSTR* DimMember,
                                           VARIANT* result) {
    return Guard([&] {
        TextsByReference<nameTexts> texts({cubeFile, CubeName, DimType, DimMember});
        Give(function_.QelName(texts[0], texts[1], texts[2], texts[3]), result);
        texts.WriteBack();
    });
}

STDMETHODIMP OrmQelFunctionObject::RetQelName(BSTR* cubeFile, BSTR* CubeName, BSTR* DimType, BSTR* DimMember,
                                              VARIANT* result) {
    return Guard([&] {
        TextsByReference<nameTexts> texts({cubeFile, CubeName, DimType, DimMember});
        Give(function_.RetQelName(texts[0], texts[1], texts[2], texts[3]), result);
        texts.WriteBack();
    });
}

STDMETHODIMP OrmQelFunctionObject::QeL1(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum,
                                        VARIANT* ObsLevel, VARIANT* ObsMember, VARIANT* ActivityList,
                                        BSTR* Summary_Group, BSTR* Seif_level, BSTR* Accounts, BSTR* Measure,
                                        BSTR* MoneySet, BSTR* Plbs, BSTR* RH, BSTR* Firma,
                                        BSTR* Opening_Balance, DATE From_Date, DATE To_Date,
                                        VARIANT* result) {
    return Guard([&] {
        TextsByReference<valueTexts> texts({cubeFile, CubeName, Summary_Group, Seif_level, Accounts, Measure,
                                            MoneySet, Plbs, RH, Firma, Opening_Balance});
        const Variant value =
            function_.QeL1(texts[0], texts[1], Read(ObsName), Read(ObsNum), Read(ObsLevel), Read(ObsMember),
                           Read(ActivityList), texts[2], texts[3], texts[4], texts[5], texts[6], texts[7],
                           texts[8], texts[9], texts[10], {From_Date}, {To_Date});
        Give(value, result);
        texts.WriteBack();
    });
}

STDMETHODIMP OrmQelFunctionObject::QeLF1(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum,
                                         VARIANT* ObsLevel, VARIANT* ObsMember, VARIANT* ActivityList,
                                         BSTR* Summary_Group, BSTR* Seif_level, BSTR* Accounts, BSTR* Measure,
                                         BSTR* MoneySet, BSTR* Plbs, BSTR* RH, BSTR* Firma,
                                         BSTR* Opening_Balance, DATE From_Date, DATE To_Date,
                                         VARIANT* result) {
    return QeL1(cubeFile, CubeName, ObsName, ObsNum, ObsLevel, ObsMember, ActivityList, Summary_Group,
                Seif_level, Accounts, Measure, MoneySet, Plbs, RH, Firma, Opening_Balance, From_Date, To_Date,
                result);
}

} // namespace qel::server
