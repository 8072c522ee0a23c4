#pragma once

#include "wizard/AccountSelector.h"
#include "wizard/ActivitySelector.h"
#include "wizard/DateSelector.h"
#include "wizard/FormulaArgs.h"
#include "wizard/ObsSelector.h"
#include "wizard/OtherDimensions.h"
#include "wizard/WizardForm.h"

namespace qel {

/// The function wizard: the dialog for a cube and all arguments of a value formula. The formula writer
/// creates and shows it, and reads the public members afterwards.
class frmFuncQelWiz : public WizardForm {
public:
    /// Starts with the given choices; without any, with the remembered cube and the last selection.
    explicit frmFuncQelWiz(const WizardContext& context, std::optional<Selection> start = std::nullopt);

    Variant QelResult = Null{}; ///< the calculated value of the current choice, or Null
    bool bDetail = false;       ///< write a table of the arguments instead of a formula
    qel::FormulaArgs FormulaArgs;
    ValueCall Call; ///< the same arguments, as the value function takes them

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    bool OnLeave(std::string_view control) override;

    void Form_Load();
    void CmdCubeFile_Click();
    void Command1_Click();
    /// The person chose something in one of the lists or check boxes.
    void TakeChoice(std::string_view control);
    void EnableButtons(bool isEnabled);

    // frmFuncQelWizCube.cpp: the cube file, its cubes, and the lists that are filled from them.

    /// Loads the cube to start with, and its selection.
    void LoadCube();
    void LoadFirst(const std::string& cubeFile);
    /// Loads another cube file. Raises what the provider raises.
    void TakeCubeFile(const std::string& cubeFile);
    /// Abandons a file and falls back to the remembered one.
    void RejectCubeFile();
    /// Another cube of the file was chosen.
    void TakeOtherCube();
    /// Opens the chosen cube and fills the list of measures. A failure is reported and returns null.
    std::shared_ptr<const LoadedCube> SetMeasures();
    /// Reports failures. Returns false when the accounts failed.
    bool FillDimensions(const std::shared_ptr<const LoadedCube>& cube);
    void BindLists();
    void ClearLists();
    /// Reads the last selection. Nullopt when none was saved.
    std::optional<Selection> LastSelection() const;
    void RestoreLastSelection();
    void RestoreStart();
    /// `message` is the number of the text before the choices that the cube lacks, and `dropped` some of
    /// them.
    void Restore(const Selection& selection, std::int32_t message, std::vector<std::string> dropped = {});

    // frmFuncQelWizHandBack.cpp: from the choices to the arguments.

    void CheckAndHandBack(bool detail);
    /// Whether the lists are those of the path in its box. If not, says why, or loads the file.
    bool IsFileTaken();
    void GoToSheet(bool detail);
    Selection Read() const;
    /// What is missing for a formula; nullopt when the choice is complete.
    std::optional<std::string> Fault() const;
    void ForgetResult();

    std::string CubeFile() const;
    /// A server that gave no cube is asked again, unlike a file.
    bool CanTryAgain() const;
    ModSetCube::OpenedCube ChosenCube() const { return {CubeFile(), cubes_.Key().value_or("")}; }

    std::optional<Selection> start_;
    ChoiceBox cubes_;
    MeasureSelector measures_;
    ObsSelector obs_;
    AccountSelector accounts_;
    ActivitySelector activities_;
    DateSelector dates_;
    OtherDimensions others_;
    std::shared_ptr<Connection> connection_; ///< the dialog's own, on the cube file
    std::shared_ptr<const LoadedCube> cube_; ///< null until all lists are filled from it
    Selection offered_;                      ///< what the lists show before anything is chosen
    Selection wanted_;                       ///< what was chosen in the last cube whose lists were filled
    std::string takenFile_;                  ///< the path that was tried last
    ModSetCube::OpenedCube opened_;          ///< by the calculation, on the thread's connection
};

} // namespace qel
