#include "lines/CallQuestion.h"

#include "cube/ValueQuery.h"
#include "wizard/FormulaArgs.h"
#include "wizard/OwnText.h"
#include "wizard/WizardForm.h"

namespace qel {

namespace {

constexpr const char* callsLabel = "LabelCalls";
constexpr const char* callList = "ListCalls";
constexpr const char* okButton = "CmdOk";
constexpr const char* cancelButton = "CmdCancel";
constexpr std::int32_t captionText = 1556, okText = 1491, cancelText = 1492;

using enum ControlKind;

constexpr ControlDesign callControls[] = {
    {.name = callsLabel, .kind = Label, .place = {8, 8, 304, 10}, .ownText = OwnTextNumber::WhichCall},
    {.name = callList, .kind = ListBox, .place = {8, 20, 304, 84}},
    {.name = okButton, .kind = Button, .place = {188, 110, 60, 14}, .tag = okText},
    {.name = cancelButton, .kind = Button, .place = {252, 110, 60, 14}, .tag = cancelText},
};

constexpr FormDesign callDesign = {.name = "frmWhichCall",
                                   .tag = captionText,
                                   .width = 320,
                                   .height = 130,
                                   .controls = callControls,
                                   .defaultButton = okButton,
                                   .cancelButton = cancelButton};

/// What tells a call from the others: its arguments that restrict something.
std::string CallText(std::size_t number, const ValueCall& call) {
    std::string text = std::to_string(number) + ".";
    for (std::size_t argument = FormulaArg::ObsName; argument <= FormulaArg::ToDate; ++argument) {
        if (const std::string value = ArgumentText(call, argument); !ModSetCube::IsUnrestricted(value)) {
            text += (text.ends_with('.') ? " " : ", ") + value;
        }
    }
    return text;
}

class CallQuestion : public WizardForm {
public:
    CallQuestion(const WizardContext& context, const std::vector<CellCall>& calls)
        : WizardForm(context, callDesign) {
        std::vector<std::string> texts;
        for (const CellCall& call : calls) {
            texts.push_back(CallText(texts.size() + 1, call.call));
        }
        Form().SetItems(callList, texts);
        Form().Select(callList, 0);
    }

    std::optional<std::size_t> Answer() const {
        return CanceledPivot ? std::nullopt : Form().Selected(callList);
    }

private:
    void OnLoad() override { Form().SetFocus(callList); }
    void OnClick(std::string_view control) override { control == okButton ? Form().Hide() : Cancel(); }
    void OnChange(std::string_view /*control*/) override {}
    bool OnLeave(std::string_view /*control*/) override { return true; }
};

} // namespace

std::optional<std::size_t> AskWhichCall(const WizardContext& context, const std::vector<CellCall>& calls) {
    CallQuestion question(context, calls);
    question.Show();
    return question.Answer();
}

} // namespace qel
