#pragma once

#include "wizard/AccountSelector.h"
#include "wizard/ActivitySelector.h"
#include "wizard/DateSelector.h"
#include "wizard/FormulaArgs.h"
#include "wizard/ObsSelector.h"
#include "wizard/OtherDimensions.h"
#include "wizard/WizardForm.h"

namespace qel {

/// The function wizard: the dialog in which a person chooses a cube and every argument of a value formula.
/// Made and shown by the formula writer, which reads the public members afterwards.
class frmFuncQelWiz : public WizardForm {
public:
    explicit frmFuncQelWiz(const WizardContext& context);

    Variant QelResult = Null{}; ///< what was calculated for the choice as it stands; Null for none
    bool bDetail = false;       ///< a table of the arguments is wanted, not a formula
    qel::FormulaArgs FormulaArgs;

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    void OnLeave(std::string_view control) override;

    void Form_Load();
    void CmdCubeFile_Click();
    void Command1_Click();
    /// The person chose something in one of the lists or check boxes.
    void TakeChoice(std::string_view control);
    void EnableButtons(bool isEnabled);

    // frmFuncQelWizCube.cpp: the cube file, its cubes, and the lists that are filled from them.

    /// Loads the remembered cube and the last selection.
    void LoadCube();
    void LoadRemembered(const std::string& cubeFile);
    /// Loads another cube file. Raises what the provider raises.
    void TakeCubeFile(const std::string& cubeFile);
    /// Gives a file up, and falls back to the remembered one.
    void RejectCubeFile();
    /// Another cube of the file was chosen.
    void TakeOtherCube();
    /// Opens the chosen cube and fills the list of measures. None when that failed, which is reported.
    std::shared_ptr<const LoadedCube> SetMeasures();
    /// False when the accounts failed. Whatever fails is reported.
    bool FillDimensions(const std::shared_ptr<const LoadedCube>& cube);
    void BindLists();
    void ClearLists();
    void RestoreLastSelection();
    void Restore(const Selection& selection);

    // frmFuncQelWizHandBack.cpp: from what was chosen to the arguments.

    void CheckAndHandBack(bool detail);
    void GoToSheet(bool detail);
    Selection Read() const;
    /// What keeps the choice from being a formula; none when it is whole.
    std::optional<std::string> Fault() const;
    void ForgetResult();

    std::string CubeFile() const;
    ModSetCube::OpenedCube ChosenCube() const { return {CubeFile(), cubes_.Key().value_or("")}; }

    ChoiceBox cubes_;
    MeasureSelector measures_;
    ObsSelector obs_;
    AccountSelector accounts_;
    ActivitySelector activities_;
    DateSelector dates_;
    OtherDimensions others_;
    std::shared_ptr<Connection> connection_; ///< the dialog's own, on the cube file
    std::shared_ptr<const LoadedCube> cube_; ///< none until all lists are filled from it
    std::string takenFile_;                  ///< the path that was tried last
    ModSetCube::OpenedCube opened_;          ///< by the calculation, on the thread's connection
};

} // namespace qel
