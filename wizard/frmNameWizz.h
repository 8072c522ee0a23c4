#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/NamedQueries.h"
#include "wizard/WizardForm.h"

namespace qel {

/// The name wizard: the dialog in which a person chooses a member whose name a sheet is to show. It keeps
/// what was chosen as named queries. Made and shown by the formula writer, which reads the public members
/// afterwards.
class frmNameWizz : public WizardForm {
public:
    explicit frmNameWizz(const WizardContext& context);

    /// Cube file, cube name, dimension type and member, as they stand in a formula.
    std::vector<std::string> Arguments;

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    void OnLeave(std::string_view control) override;

    void OpenDb();
    void ShowQueries();
    /// Fills the list of cubes from a file, and the other lists from its first cube or the one that is named.
    /// False when that failed, which is reported.
    bool LoadCubeFile(const std::string& cubeFile, const std::string& cubeName = {});
    void FillFromCube();
    /// Binds the list of members, which is read when it is first used.
    void SetMember();
    std::vector<MemberRow> ListMembers() const;
    void TakeQuery(const NamedQuery& query);
    void ShowName();
    void RemoveQuery();
    void CheckAndHandBack();
    NamedQuery Read() const;
    void ClearLists();
    void EnableButtons(bool isEnabled);
    std::string CubeFile() const;
    ModSetCube::OpenedCube ChosenCube() const { return {CubeFile(), cubes_.Key().value_or("")}; }

    ChoiceBox cubes_, obs_, firmas_, dimTypes_;
    MemberList members_;
    NamedQueries queries_;
    std::shared_ptr<const LoadedCube> cube_; ///< none until all lists are filled from it
    std::string takenFile_;                  ///< the path that was tried last
    ModSetCube::OpenedCube opened_;          ///< by the last name, on the thread's connection
};

} // namespace qel
