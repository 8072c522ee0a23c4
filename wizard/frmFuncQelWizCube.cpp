#include "store/LocalDb.h"
#include "text/Text.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/FunctionFormDesign.h"
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
        const std::string cubeFile = start_ ? start_->cubeFile : RememberedCubeFile(Context());
        const bool isNamed = LengthInUtf16(cubeFile) >= shortestPath;
        if (isNamed && CanOpen(Context(), cubeFile)) {
            return LoadFirst(cubeFile);
        }
        if (isNamed) {
            Context().Messages().Show(MessageBoxStyle::Exclamation, "", cubeFile + " File Not Found");
        }
        LastSelection();
    });
}

void frmFuncQelWiz::LoadFirst(const std::string& cubeFile) {
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
    offered_ = Read();
    // The dialog works without its database.
    Trapped("LoadCube", [this] { start_ ? RestoreStart() : RestoreLastSelection(); });
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
    try {
        connection_ = OpenCubeFile(Context().providers, cubeFile);
    } catch (...) {
        ClearLists(); // a file that cannot be opened leaves nothing of the one before
        throw;
    }
    ClearLists();
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
    offered_ = Read();
    EnableButtons(true);
}

void frmFuncQelWiz::RejectCubeFile() {
    Form().SetText(txtCubeFile, "");
    ClearLists();
    LoadCube();
}

void frmFuncQelWiz::TakeOtherCube() {
    if (cube_) {
        wanted_ = ChangedChoices(Read(), offered_);
    }
    cube_.reset();
    EnableButtons(false);
    dates_.Fill(ChosenCube());
    const auto cube = SetMeasures();
    if (!cube || !FillDimensions(cube)) {
        return;
    }
    cube_ = cube;
    BindLists();
    offered_ = Read();
    Restore(wanted_, OwnTextNumber::LackingChoices);
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
    wanted_ = {};
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

std::optional<Selection> frmFuncQelWiz::LastSelection() const {
    if (!HasWizardDatabase(Context())) {
        CreateLocalDb(Context().Store());
        return std::nullopt;
    }
    const auto rows = OpenWizardDatabase(Context())->ReadRows(DataTblTable().name);
    return rows.empty() ? std::nullopt : std::optional(SelectionOf(rows.back(), Context().locale));
}

void frmFuncQelWiz::RestoreLastSelection() {
    const auto selection = LastSelection();
    // The choices of another file may exist in this one and mean something else.
    if (!selection || selection->cubeFile != CubeFile()) {
        return;
    }
    if (selection->cubeName != ChosenCube().cubeName && cubes_.Choose(selection->cubeName)) {
        TakeOtherCube();
    }
    if (cube_) {
        Restore(*selection, OwnTextNumber::DroppedChoices);
    }
}

void frmFuncQelWiz::RestoreStart() {
    constexpr std::int32_t cubeNameLabel = 1474;
    std::vector<std::string> dropped;
    if (!cubes_.Choose(start_->cubeName)) {
        dropped.push_back(DroppedChoice(Context(), cubeNameLabel, start_->cubeName));
    } else if (cube_->name.cubeName != start_->cubeName) {
        TakeOtherCube();
    }
    if (cube_) {
        Restore(*start_, OwnTextNumber::LackingChoices, std::move(dropped));
    }
}

void frmFuncQelWiz::Restore(const Selection& selection, std::int32_t message,
                            std::vector<std::string> dropped) {
    dates_.Restore(selection, dropped);
    measures_.Restore(selection, dropped);
    obs_.Restore(selection, dropped);
    others_.Restore(selection, dropped);
    BindLists(); // within the restored firm and OBS
    accounts_.Restore(selection, dropped);
    activities_.Restore(selection, dropped);
    if (dropped.empty()) {
        return;
    }
    std::string text = OwnText(Context(), message);
    for (const std::string& choice : dropped) {
        text += "\r\n" + choice;
    }
    Warn(Context(), text);
}

} // namespace qel
