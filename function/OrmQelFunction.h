#pragma once

#include "cube/CubeConnection.h"
#include "cube/ThreadState.h"
#include "function/ArgToList.h"
#include "platform/sheet/Spreadsheet.h"
#include "wizard/WizardContext.h"

#include <cstdint>
#include <string>

namespace qel {

/// What an object works with; it outlives the object. All objects of a thread share its `thread`.
struct FunctionContext {
    ModSetCube::ThreadState& thread;
    DataAccess& dataAccess;
    const Locale& locale;
    WizardServices* wizards = nullptr; ///< null where no dialogs can be shown
};

/// The worksheet functions. Texts are passed by reference as the interface defines them: they may come back
/// trimmed or replaced by their piece of the statement.
class OrmQelFunction {
public:
    /// Gives the thread a new, unopened connection in place of the one it had.
    explicit OrmQelFunction(const FunctionContext& context);
    /// Takes the thread's connection away, for every object of the thread; the next call opens a new one.
    ~OrmQelFunction();
    OrmQelFunction(const OrmQelFunction&) = delete;
    OrmQelFunction& operator=(const OrmQelFunction&) = delete;

    /// Gives dialogs to an object that was made without them. They outlive it.
    void UseWizards(WizardServices& wizards) { context_.wizards = &wizards; }

    const std::string& get_g_cubeFile() const { return opened_.cubeFile; }
    void put_g_cubeFile(const std::string& value) { opened_.cubeFile = value; }
    const std::string& get_g_CubeName() const { return opened_.cubeName; }
    void put_g_CubeName(const std::string& value) { opened_.cubeName = value; }
    void put_ResQel(const std::string& value) { resQel_ = value; }
    std::int16_t get_iShowDetail() const { return iShowDetail_; }
    void put_iShowDetail(std::int16_t value) { iShowDetail_ = value; }
    std::int16_t get_iLang() const { return iLang_; }
    void put_iLang(std::int16_t value) { iLang_ = value; }

    /// The value of a cell, with its errors as texts: a number, "Outdated Cube Version", "#ERR " and a number
    /// (the statement failed) or "#err " and a number (anything else failed; the connection is dropped).
    /// A zero strMin means the period of strMax alone. optLev is ignored. Raises nothing.
    Variant QelFuncDemo(std::string& cubeFile, std::string& CubeName, KeyList& ObsName, KeyList& ObsNum,
                        KeyList& arrObsLevel, KeyList& arrObsMember, KeyList& arrActivityList,
                        std::string& strLevelAcc, std::string& strMemberAcc, std::string& strListAcc,
                        std::string& strMeasure, std::string& ComMoneySet, std::string& strPlbs,
                        std::string& ComRh, std::string& ComFirma, std::string& ComOB,
                        AutomationDate strMin = {}, AutomationDate strMax = {}, std::int16_t optLev = 0);

    /// The value of a cell for a worksheet: a number or "Outdated Cube Version"; every other failure is 0.
    /// Raises only what ArgToList raises.
    Variant QeL1(std::string& cubeFile, std::string& CubeName, const Variant& ObsName, const Variant& ObsNum,
                 const Variant& ObsLevel, const Variant& ObsMember, const Variant& ActivityList,
                 std::string& Summary_Group, std::string& Seif_level, std::string& Accounts,
                 std::string& Measure, std::string& MoneySet, std::string& Plbs, std::string& RH,
                 std::string& Firma, std::string& Opening_Balance, AutomationDate From_Date = {},
                 AutomationDate To_Date = {});
    /// The same as QeL1; worksheet formulas call it by the name QelF1.
    Variant QeLF1(std::string& cubeFile, std::string& CubeName, const Variant& ObsName, const Variant& ObsNum,
                  const Variant& ObsLevel, const Variant& ObsMember, const Variant& ActivityList,
                  std::string& Summary_Group, std::string& Seif_level, std::string& Accounts,
                  std::string& Measure, std::string& MoneySet, std::string& Plbs, std::string& RH,
                  std::string& Firma, std::string& Opening_Balance, AutomationDate From_Date = {},
                  AutomationDate To_Date = {});

    /// The name of a summary group; "-" on any failure. The same as RetQelName.
    Variant QelName(std::string& cubeFile, std::string& CubeName, std::string& DimType,
                    std::string& DimMember);
    Variant RetQelName(std::string& cubeFile, std::string& CubeName, std::string& DimType,
                       std::string& DimMember);

    /// Shows the function wizard and writes what was chosen into the sheet of `xlActiveCell`: the formula
    /// into the active cell, or a table of the arguments from there on. Returns the formula's argument text;
    /// " " when the wizard was canceled, an empty text when something failed, which is reported. Raises
    /// E_NOTIMPL where no dialogs can be shown.
    std::string ShowFormGetVal(const std::shared_ptr<SheetRange>& xlActiveCell);
    /// The same for the name wizard and a name formula.
    std::string ShowFormQelName(const std::shared_ptr<SheetRange>& xlActiveCell);

private:
    WizardContext RequireWizards() const;
    Variant EvalQel(std::string& cubeFile, std::string& CubeName, const Variant& ObsName,
                    const Variant& ObsNum, const Variant& ObsLevel, const Variant& ObsMember,
                    const Variant& ActivityList, std::string& Summary_Group, std::string& Seif_level,
                    std::string& Accounts, std::string& Measure, std::string& MoneySet, std::string& Plbs,
                    std::string& RH, std::string& Firma, std::string& Opening_Balance,
                    AutomationDate From_Date, AutomationDate To_Date);

    FunctionContext context_;
    ModSetCube::OpenedCube opened_;
    std::string resQel_;
    std::int16_t iShowDetail_ = 0;
    std::int16_t iLang_ = 0;
};

} // namespace qel
