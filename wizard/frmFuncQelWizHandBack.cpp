#include "store/LocalDb.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"
#include "wizard/WizardStore.h"
#include "wizard/frmFuncQelWiz.h"

namespace qel {

using namespace FunctionForm;

void frmFuncQelWiz::CheckAndHandBack(bool detail) {
    if (IsFileTaken()) {
        GoToSheet(detail);
    }
}

bool frmFuncQelWiz::IsFileTaken() {
    const std::string cubeFile = CubeFile();
    if (const auto fault = CubeFileFault(Context(), cubeFile)) {
        WarnNumbered(*fault);
        return false;
    }
    // A key may press the button while a path is being typed: load the file first, so that the person sees
    // its content.
    if (cubeFile != takenFile_ || CanTryAgain()) {
        TakeCubeFile(cubeFile);
        return false;
    }
    if (!cube_) {
        WarnNumbered(noCubeFileText);
        return false;
    }
    return true;
}

void frmFuncQelWiz::GoToSheet(bool detail) {
    if (const auto fault = Fault()) {
        return Warn(Context(), *fault);
    }
    const Selection selection = Read();
    Call = CallOf(selection);
    FormulaArgs = ArgumentsOf(Call, Context().locale);
    bDetail = detail;
    // The formula does not depend on saving the selection.
    Trapped("GoToSheet", [&] {
        RememberCubeFile(Context(), selection.cubeFile);
        OpenWizardDatabase(Context())->ReplaceRows(DataTblTable().name, {RowOf(selection)});
    });
    Form().Hide();
}

Selection frmFuncQelWiz::Read() const {
    Selection selection;
    selection.cubeFile = CubeFile();
    selection.cubeName = cubes_.Key().value_or("");
    obs_.Read(selection);
    activities_.Read(selection);
    accounts_.Read(selection);
    measures_.Read(selection);
    others_.Read(selection);
    dates_.Read(selection);
    return selection;
}

std::optional<std::string> frmFuncQelWiz::Fault() const {
    if (auto fault = dates_.Fault()) {
        return fault;
    }
    std::optional<std::int32_t> missing = obs_.Missing();
    if (!missing) {
        missing = accounts_.Missing();
    }
    if (!missing) {
        missing = activities_.Missing();
    }
    return missing ? std::optional(OwnText(Context(), *missing)) : std::nullopt;
}

void frmFuncQelWiz::ForgetResult() {
    QelResult = Null{};
    Form().SetText(TxtCalc, "");
}

} // namespace qel
