#include "wizard/frmFuncQelWiz.h"

#include "text/Text.h"
#include "wizard/Calculation.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/OwnText.h"

namespace qel {

using namespace FunctionForm;

frmFuncQelWiz::frmFuncQelWiz(const WizardContext& context, std::optional<Selection> start)
    : WizardForm(context, FunctionFormDesign()), start_(std::move(start)), cubes_(Form(), cboDatabaseList),
      measures_(Context(), Form()), obs_(Context(), Form()), accounts_(Context(), Form()),
      activities_(Context(), Form()), dates_(Context(), Form()), others_(Context(), Form()) {}

void frmFuncQelWiz::OnLoad() {
    Trapped("Form_Load", [this] { Form_Load(); });
}

void frmFuncQelWiz::OnClick(std::string_view control) {
    Trapped(HandlerName(control, "Click"), [&] {
        if (control == CmdCubeFile) {
            CmdCubeFile_Click();
        } else if (control == CmdOK) {
            CheckAndHandBack(false);
        } else if (control == Command2) {
            CheckAndHandBack(true);
        } else if (control == CmdCancel) {
            Cancel();
        } else if (control == Command1) {
            Command1_Click();
        } else {
            TakeChoice(control);
        }
    });
}

void frmFuncQelWiz::OnChange(std::string_view control) {
    Trapped(ChangeHandlerName(control), [&] { TakeChoice(control); });
}

bool frmFuncQelWiz::OnLeave(std::string_view control) {
    bool isTried = false;
    const std::string handler = HandlerName(control, "LostFocus");
    Trapped(handler, [&] {
        const std::string cubeFile(Trimmed(CubeFile()));
        if (control == txtCubeFile && cubeFile == takenFile_) {
            Form().SetText(txtCubeFile, takenFile_); // without blanks around it
        } else if (control == txtCubeFile && CanOpen(Context(), cubeFile)) {
            isTried = true;
            TakeCubeFile(cubeFile);
        } else if (cube_) {
            dates_.OnLeave(control);
        }
    });
    Trapped(handler, [&] {
        if (isTried && CanTryAgain()) {
            Form().SetFocus(txtCubeFile); // a press that left the field would try again at once
        }
    });
    return !isTried || !cube_;
}

void frmFuncQelWiz::Form_Load() {
    EnableButtons(false);
    FormulaArgs = {};
    LoadCube();
    Form().SetText(LabelVersion, VersionText());
}

void frmFuncQelWiz::Command1_Click() {
    ForgetResult();
    if (!IsFileTaken()) {
        return;
    }
    if (const auto fault = Fault()) {
        return Warn(Context(), *fault);
    }
    const Calculation calculation = Calculate(Context(), opened_, Read());
    QelResult = calculation.value;
    Form().SetText(TxtCalc, calculation.text);
}

void frmFuncQelWiz::TakeChoice(std::string_view control) {
    if (control == txtCubeFile) {
        return; // a path is used once it is complete
    }
    ForgetResult();
    if (control == cboDatabaseList) {
        return TakeOtherCube();
    }
    if (!cube_) {
        return;
    }
    if (control == ComAddOBS) {
        return obs_.AddMember();
    }
    if (control == ComRemoveObs) {
        return obs_.RemoveMember();
    }
    obs_.OnChange(control);
    accounts_.OnChange(control);
    activities_.Enable(true);
    if (obs_.IsScope(control) || control == ComFirma) {
        BindLists();
    }
}

void frmFuncQelWiz::EnableButtons(bool isEnabled) {
    measures_.Enable(isEnabled);
    obs_.Enable(isEnabled);
    accounts_.Enable(isEnabled);
    activities_.Enable(isEnabled);
    dates_.Enable(isEnabled);
    others_.Enable(isEnabled);
    Form().SetEnabled(Command1, isEnabled);
    Form().SetEnabled(TxtCalc, isEnabled);
}

bool frmFuncQelWiz::CanTryAgain() const { return !cube_ && IsServer(Context(), CubeFile()); }

std::string frmFuncQelWiz::CubeFile() const { return Form().Text(txtCubeFile); }

} // namespace qel
