#pragma once

#include "cube/CubeConnection.h"
#include "cube/ValueCall.h"
#include "function/ArgToList.h"
#include "function/FormulaResult.h"
#include "platform/sheet/Spreadsheet.h"
#include "wizard/WizardContext.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace qel {

class FirstKeys;

/// What an object works with; it outlives the object. All objects of a thread share its `thread`.
struct FunctionContext {
    ModSetCube::ThreadState& thread;
    Providers providers;
    const Locale& locale;
    WizardServices* wizards = nullptr; ///< null where no dialogs can be shown
};

/// The worksheet functions. A call is left as it is; TextsAfter says what its texts come back as.
class OrmQelFunction {
public:
    /// Takes away the connection that an earlier object of the thread left: each object begins without one.
    explicit OrmQelFunction(FunctionContext context);
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
    /// A zero From_Date means the period of To_Date alone. Raises 13 unless the five lists are arrays.
    FormulaResult QelFuncDemo(const ValueCall& call);

    /// The value of a cell for a worksheet: a number or "Outdated Cube Version"; every other failure is 0.
    /// Raises only what ArgToList raises.
    FormulaResult QeL1(const ValueCall& call) { return EvalQel(call); }
    /// The same as QeL1; worksheet formulas call it by the name QelF1.
    FormulaResult QeLF1(const ValueCall& call) { return EvalQel(call); }

    /// The two functions without reading the cell, for doors that ask for many cells together; Complete makes
    /// their result of the cell's answer. Raise as the functions.
    PreparedCall PrepareQelFuncDemo(const ValueCall& call);
    PreparedCall PrepareQeLF1(const ValueCall& call) { return PrepareForWorksheet(call, KnownCell::IsLeft); }
    FormulaResult Complete(const PreparedCall& prepared, ModSetCube::CellAnswer answer) const;

    /// The name of a summary group; "-" on any failure. The same as RetQelName.
    FormulaResult QelName(const NameCall& call) { return RetQelName(call); }
    FormulaResult RetQelName(const NameCall& call);

    /// Shows the function wizard and writes what was chosen into the sheet of `xlActiveCell`: the formula
    /// into the active cell, or a table of the arguments from there on. Returns the formula's argument text;
    /// " " when the wizard was canceled, an empty text when something failed, which is reported. Raises
    /// E_NOTIMPL where no dialogs can be shown.
    std::string ShowFormGetVal(const std::shared_ptr<SheetRange>& xlActiveCell);
    /// The same for the name wizard and a name formula.
    std::string ShowFormQelName(const std::shared_ptr<SheetRange>& xlActiveCell);

    using FullPath = std::function<std::string(const std::string& cubeFile)>;
    /// Shows the wizard that wrote the formula of a cell, with the formula's arguments, and writes the
    /// formula again. `fullPath` completes a path as the sheet's formulas mean it. Says so when the formula
    /// has no call of the class, or several. Failures are reported. Raises E_NOTIMPL where no dialogs can be
    /// shown.
    void EditFormula(FormulaCell& cell, const FullPath& fullPath);

private:
    WizardContext RequireWizards() const;
    FormulaResult EvalQel(const ValueCall& call) { return Run(PrepareForWorksheet(call, KnownCell::IsRead)); }
    /// Whether a call that was made before has its known cell read again, which completes it.
    enum class KnownCell : std::uint8_t { IsRead, IsLeft };
    PreparedCall PrepareForWorksheet(const ValueCall& call, KnownCell known);
    /// Opens the call's cube and takes the steps after it, which prepare the call; a failure of any of them
    /// ends with "#err ".
    template <class Steps>
    PreparedCall Prepare(const ValueCall& call, const Steps& steps);
    /// Completes a call whose cell is known; otherwise gives it the key by which it will be.
    bool ReadKnown(const ValueCall& call, const FirstKeys& keys, ModSetCube::DayRange days,
                   PreparedCall& prepared);
    FormulaResult Run(PreparedCall prepared);
    FormulaResult ForWorksheet(FormulaResult result) const;

    FunctionContext context_;
    ModSetCube::OpenedCube opened_;
    std::string key_; ///< of the call at hand
    std::string resQel_;
    std::int16_t iShowDetail_ = 0;
    std::int16_t iLang_ = 0;
};

} // namespace qel
