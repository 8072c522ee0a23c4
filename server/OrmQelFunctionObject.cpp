#include "server/OrmQelFunctionObject.h"

#include "platform/sheet/automation/AutomationSheet.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/VariantConversion.h"
#include "server/ByReference.h"

namespace qel::server {

using windows::FromAutomation;
using windows::ToAutomation;

namespace {

Variant Read(const VARIANT* argument) {
    return argument != nullptr ? FromAutomation(*argument) : Variant(ErrorValue{parameterNotFound});
}

using ValueTexts = TextsByReference<ValueCall, valueCallTexts.size()>;
using NameTexts = TextsByReference<NameCall, nameCallTexts.size()>;

ValueCall CallOf(const ValueTexts& texts, const std::array<VARIANT*, valueCallLists.size()>& lists, DATE from,
                 DATE to) {
    ValueCall call = texts.Read();
    for (std::size_t i = 0; i < lists.size(); ++i) {
        call.*valueCallLists[i] = Read(lists[i]);
    }
    call.From_Date = {from};
    call.To_Date = {to};
    return call;
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
                                               BSTR* ComOB, DATE strMin, DATE strMax, short* /*optLev*/,
                                               VARIANT* result) {
    return Guard([&] {
        const ValueTexts texts(valueCallTexts, {cubeFile, CubeName, strLevelAcc, strMemberAcc, strListAcc,
                                                strMeasure, ComMoneySet, strPlbs, ComRh, ComFirma, ComOB});
        const ValueCall call =
            CallOf(texts, {ObsName, ObsNum, arrObsLevel, arrObsMember, arrActivityList}, strMin, strMax);
        const FormulaResult shown = function_.QelFuncDemo(call);
        Give(shown.value, result);
        if (shown.reached != Reached::Nothing) {
            WriteKeys(*arrObsMember,
                      WithQuotesRestored(call.ObsMember.As<std::shared_ptr<const VariantArray>>()->elements,
                                         UserLocale()));
        }
        texts.WriteBack(call, TextsAfter(call, shown.reached));
    });
}

void OrmQelFunctionObject::ShowDialog(const std::function<void()>& dialog) {
    if (!wizards_) {
        wizards_ = std::make_unique<Wizards>(*thread_);
        function_.UseWizards(wizards_->Services());
    }
    wizards_->Show(dialog);
}

STDMETHODIMP OrmQelFunctionObject::ShowFormGetVal(IDispatch** xlActiveCell, BSTR* result) {
    return Guard([&] { ShowDialog([&] { Give(function_.ShowFormGetVal(CellOf(xlActiveCell)), result); }); });
}

STDMETHODIMP OrmQelFunctionObject::ShowFormQelName(IDispatch** xlActiveCell, BSTR* result) {
    return Guard([&] { ShowDialog([&] { Give(function_.ShowFormQelName(CellOf(xlActiveCell)), result); }); });
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
        const NameTexts texts(nameCallTexts, {cubeFile, CubeName, DimType, DimMember});
        const NameCall call = texts.Read();
        Give(function_.RetQelName(call).value, result);
        texts.WriteBack(call, TextsAfter(call));
    });
}

STDMETHODIMP OrmQelFunctionObject::RetQelName(BSTR* cubeFile, BSTR* CubeName, BSTR* DimType, BSTR* DimMember,
                                              VARIANT* result) {
    return QelName(cubeFile, CubeName, DimType, DimMember, result);
}

STDMETHODIMP OrmQelFunctionObject::QeL1(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum,
                                        VARIANT* ObsLevel, VARIANT* ObsMember, VARIANT* ActivityList,
                                        BSTR* Summary_Group, BSTR* Seif_level, BSTR* Accounts, BSTR* Measure,
                                        BSTR* MoneySet, BSTR* Plbs, BSTR* RH, BSTR* Firma,
                                        BSTR* Opening_Balance, DATE From_Date, DATE To_Date,
                                        VARIANT* result) {
    return Guard([&] {
        const ValueTexts texts(valueCallTexts, {cubeFile, CubeName, Summary_Group, Seif_level, Accounts,
                                                Measure, MoneySet, Plbs, RH, Firma, Opening_Balance});
        const ValueCall call =
            CallOf(texts, {ObsName, ObsNum, ObsLevel, ObsMember, ActivityList}, From_Date, To_Date);
        const FormulaResult shown = function_.QeLF1(call);
        Give(shown.value, result);
        texts.WriteBack(call, TextsAfter(call, shown.reached));
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
