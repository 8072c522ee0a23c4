#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/NamedQueries.h"
#include "wizard/WizardForm.h"

namespace qel {

/// The name wizard: the dialog for a member whose name a sheet shows. It saves the choices as named queries.
/// The formula writer creates and shows it, and reads the public members afterwards.
class frmNameWizz : public WizardForm {
public:
    /// Starts with the given choice; without one, with the query that was used last.
    explicit frmNameWizz(const WizardContext& context, std::optional<NamedQuery> start = std::nullopt);

    /// Cube file, cube name, dimension type and member, as they stand in a formula.
    std::vector<std::string> Arguments;

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    bool OnLeave(std::string_view control) override;

    void OpenDb();
    void ShowQueries();
    /// Marks the saved query that the dialog shows, if there is one.
    void MarkQuery();
    /// Fills the list of cubes from a file, and the other lists from its first or the named cube. A failure
    /// is reported and returns false.
    bool LoadCubeFile(const std::string& cubeFile, const std::string& cubeName = {});
    void FillFromCube();
    /// Binds the list of members, which is read on first use.
    void SetMember();
    std::vector<MemberRow> ListMembers() const;
    /// `message` is the number of the text before what the cube lacks.
    void TakeQuery(const NamedQuery& query, std::int32_t message);
    /// Chooses the member, of the OBS that the list is for, or of the first that has it.
    bool ChooseMember(const NamedQuery& query);
    void ShowName();
    void RemoveQuery();
    void CheckAndHandBack();
    NamedQuery Read() const;
    void ClearLists();
    void EnableButtons(bool isEnabled);
    std::string CubeFile() const;
    /// A server that gave no cube is asked again, unlike a file.
    bool CanTryAgain() const;
    ModSetCube::OpenedCube ChosenCube() const { return {CubeFile(), cubes_.Key().value_or("")}; }

    std::optional<NamedQuery> start_;
    ChoiceBox cubes_, obs_, firmas_, dimTypes_;
    MemberList members_;
    NamedQueries queries_;
    std::shared_ptr<const LoadedCube> cube_; ///< null until all lists are filled from it
    std::string takenFile_;                  ///< the path that was tried last
    ModSetCube::OpenedCube opened_;          ///< by the last name, on the thread's connection
};

} // namespace qel
