#pragma once

#include "OrmFunctionQel4.h"
#include "function/OrmQelFunction.h"
#include "platform/windows/UserLocale.h"
#include "server/ServerModule.h"
#include "server/ThreadContext.h"
#include "server/Wizards.h"
#include "server/dispatch/AutomationObject.h"

#include <functional>
#include <memory>

namespace qel::server {

/// The worksheet class as callers see it.
class OrmQelFunctionObject : public AutomationObject<_OrmQelFunction> {
public:
    explicit OrmQelFunctionObject(const ClassTypes& types)
        : AutomationObject(types, windows::UserLocale()), thread_(StateOfThread()),
          function_({*thread_, ProvidersOfMachine(), UserLocale()}) {}

    STDMETHODIMP QelFuncDemo(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum,
                             VARIANT* arrObsLevel, VARIANT* arrObsMember, VARIANT* arrActivityList,
                             BSTR* strLevelAcc, BSTR* strMemberAcc, BSTR* strListAcc, BSTR* strMeasure,
                             BSTR* ComMoneySet, BSTR* strPlbs, BSTR* ComRh, BSTR* ComFirma, BSTR* ComOB,
                             DATE strMin, DATE strMax, short* optLev, VARIANT* result) override;
    STDMETHODIMP ShowFormGetVal(IDispatch** xlActiveCell, BSTR* result) override;
    STDMETHODIMP get_g_cubeFile(BSTR* result) override;
    STDMETHODIMP put_g_cubeFile(BSTR value) override;
    STDMETHODIMP get_g_CubeName(BSTR* result) override;
    STDMETHODIMP put_g_CubeName(BSTR value) override;
    STDMETHODIMP put_ResQel(BSTR value) override;
    STDMETHODIMP get_iShowDetail(short* result) override;
    STDMETHODIMP put_iShowDetail(short value) override;
    STDMETHODIMP get_iLang(short* result) override;
    STDMETHODIMP put_iLang(short value) override;
    STDMETHODIMP ShowFormQelName(IDispatch** xlActiveCell, BSTR* result) override;
    STDMETHODIMP QelName(BSTR* cubeFile, BSTR* CubeName, BSTR* DimType, BSTR* DimMember,
                         VARIANT* result) override;
    STDMETHODIMP RetQelName(BSTR* cubeFile, BSTR* CubeName, BSTR* DimType, BSTR* DimMember,
                            VARIANT* result) override;
    STDMETHODIMP QeL1(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum, VARIANT* ObsLevel,
                      VARIANT* ObsMember, VARIANT* ActivityList, BSTR* Summary_Group, BSTR* Seif_level,
                      BSTR* Accounts, BSTR* Measure, BSTR* MoneySet, BSTR* Plbs, BSTR* RH, BSTR* Firma,
                      BSTR* Opening_Balance, DATE From_Date, DATE To_Date, VARIANT* result) override;
    STDMETHODIMP QeLF1(BSTR* cubeFile, BSTR* CubeName, VARIANT* ObsName, VARIANT* ObsNum, VARIANT* ObsLevel,
                       VARIANT* ObsMember, VARIANT* ActivityList, BSTR* Summary_Group, BSTR* Seif_level,
                       BSTR* Accounts, BSTR* Measure, BSTR* MoneySet, BSTR* Plbs, BSTR* RH, BSTR* Firma,
                       BSTR* Opening_Balance, DATE From_Date, DATE To_Date, VARIANT* result) override;

private:
    void ShowDialog(const std::function<void()>& dialog);

    ServerUse use_;
    std::shared_ptr<ModSetCube::ThreadState> thread_;
    std::unique_ptr<Wizards> wizards_; ///< null until a dialog is shown
    OrmQelFunction function_;
};

} // namespace qel::server
