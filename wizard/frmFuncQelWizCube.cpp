#include "store/LocalDb.h"
#include "support/Files.h"
#include "text/Text.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/FunctionForm.h"
#include "wizard/OwnText.h"
#include "wizard/WizardStore.h"
#include "wizard/frmFuncQelWiz.h"

namespace qel {

using namespace FunctionForm;

namespace {

constexpr std::size_t shortestPath = 2;

} // namespace

void frmFuncQelWiz::LoadCube() {
    Trapped("LoadCube", [this] {
        const std::string cubeFile = RememberedCubeFile(Context());
        const bool isRemembered = LengthInUtf16(cubeFile) >= shortestPath;
        if (isRemembered && FileExists(cubeFile)) {
            return LoadRemembered(cubeFile);
        }
        if (isRemembered) {
            Context().Messages().Show(MessageBoxStyle::Exclamation, "", cubeFile + " File Not Found");
        }
        PrepareWizardDatabase(Context());
    });
}

void frmFuncQelWiz::LoadRemembered(const std::string& cubeFile) {
    Form().SetText(txtCubeFile, cubeFile);
    takenFile_ = cubeFile;
    connection_ = OpenCubeFile(Context().providers, cubeFile);
    if (!SetCube(Context(), cubes_, connection_.get())) {
        Form().SetText(txtCubeFile, "");
        return;
    }
    dates_.Fill(ChosenCube());
    const auto cube = SetMeasures();
    if (!cube || !FillDimensions(cube)) {
        return;
    }
    cube_ = cube;
    BindLists();
    // The dialog works without its database.
    Trapped("LoadCube", [this] { RestoreLastSelection(); });
    EnableButtons(true);
}

void frmFuncQelWiz::CmdCubeFile_Click() {
    const std::string cubeFile = AskForCubeFile(Form(), CmdDial, CubeFile());
    if (!cubeFile.empty()) {
        TakeCubeFile(cubeFile);
    }
}

void frmFuncQelWiz::TakeCubeFile(const std::string& cubeFile) {
    Form().SetText(txtCubeFile, cubeFile);
    takenFile_ = cubeFile;
    ClearLists(); // a file that cannot be opened leaves nothing of the one before
    connection_ = OpenCubeFile(Context().providers, cubeFile);
    if (!SetCube(Context(), cubes_, connection_.get())) {
        return RejectCubeFile();
    }
    const auto cube = SetMeasures();
    if (!cube) {
        return;
    }
    dates_.Fill(cube->name);
    if (!FillDimensions(cube)) {
        return RejectCubeFile();
    }
    cube_ = cube;
    BindLists();
    EnableButtons(true);
}

void frmFuncQelWiz::RejectCubeFile() {
    Form().SetText(txtCubeFile, "");
    ClearLists();
    LoadCube();
}

void frmFuncQelWiz::TakeOtherCube() {
    cube_.reset();
    EnableButtons(false);
    dates_.Fill(ChosenCube());
    const auto cube = SetMeasures();
    if (!cube || !FillDimensions(cube)) {
        return;
    }
    cube_ = cube;
    BindLists();
    EnableButtons(true);
}

std::shared_ptr<const LoadedCube> frmFuncQelWiz::SetMeasures() {
    auto cube = OpenWizardCube(Context(), ChosenCube());
    if (!cube || !Trapped("SetMeasure", [&] { measures_.Fill(*cube); })) {
        return nullptr;
    }
    return cube;
}

bool frmFuncQelWiz::FillDimensions(const std::shared_ptr<const LoadedCube>& cube) {
    Trapped("SetObs", [&] { obs_.Fill(cube); });
    Trapped("SetOthersDim", [&] { others_.Fill(*cube); });
    return Trapped("SetAccX", [&] { accounts_.Fill(cube); });
}

void frmFuncQelWiz::BindLists() {
    const ListScope scope{others_.Firma(), obs_.Name(), obs_.Number()};
    accounts_.BindList(scope);
    activities_.BindList(cube_, scope);
}

void frmFuncQelWiz::ClearLists() {
    cube_.reset();
    EnableButtons(false);
    ForgetResult();
    cubes_.Clear();
    measures_.Clear();
    obs_.Clear();
    accounts_.Clear();
    activities_.Clear();
    others_.Clear();
    dates_.Clear();
}

void frmFuncQelWiz::RestoreLastSelection() {
    if (!HasWizardDatabase(Context())) {
        return CreateLocalDb(Context().Store());
    }
    const auto rows = OpenWizardDatabase(Context())->ReadRows(DataTblTable().name);
    if (rows.empty()) {
        return;
    }
    const Selection selection = SelectionOf(rows.back(), Context().locale);
    if (selection.cubeName != ChosenCube().cubeName && cubes_.Choose(selection.cubeName)) {
        TakeOtherCube();
    }
    if (cube_) {
        Restore(selection);
    }
}

void frmFuncQelWiz::Restore(const Selection& selection) {
    std::vector<std::string> dropped;
    dates_.Restore(selection);
    measures_.Restore(selection, dropped);
    obs_.Restore(selection, dropped);
    others_.Restore(selection, dropped);
    BindLists(); // within the restored firm and OBS
    accounts_.Restore(selection, dropped);
    activities_.Restore(selection, dropped);
    if (dropped.empty()) {
        return;
    }
    std::string text = OwnText(Context(), OwnTextNumber::DroppedChoices);
    for (const std::string& choice : dropped) {
        text += "\r\n" + choice;
    }
    Warn(Context(), text);
}

} // namespace qel
