#include "lines/CallQuestion.h"

#include "wizard/OwnText.h"
#include "wizard/WizardForm.h"

namespace qel {

namespace {

constexpr const char* callsLabel = "LabelCalls";
constexpr const char* callList = "ListCalls";
constexpr const char* okButton = "CmdOk";
constexpr const char* cancelButton = "CmdCancel";
constexpr std::int32_t okText = 1491, cancelText = 1492;

using enum ControlKind;

constexpr ControlDesign callControls[] = {
    {.name = callsLabel, .kind = Label, .place = {8, 8, 304, 10}},
    {.name = callList, .kind = ListBox, .place = {8, 20, 304, 84}},
    {.name = okButton, .kind = Button, .place = {188, 110, 60, 14}, .tag = okText},
    {.name = cancelButton, .kind = Button, .place = {252, 110, 60, 14}, .tag = cancelText},
};

constexpr FormDesign callDesign = {.name = "frmWhichCall",
                                   .width = 320,
                                   .height = 130,
                                   .controls = callControls,
                                   .defaultButton = okButton,
                                   .cancelButton = cancelButton};

class CallQuestion : public WizardForm {
public:
    CallQuestion(const WizardContext& context, const CallQuestionTexts& texts,
                 const std::vector<std::string>& calls)
        : WizardForm(context, callDesign) {
        Form().Texts().SetCaption(OwnText(context, texts.caption));
        Form().SetText(callsLabel, OwnText(context, texts.question));
        Form().SetItems(callList, calls);
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

std::optional<std::size_t> AskWhichCall(const WizardContext& context, const CallQuestionTexts& texts,
                                        const std::vector<std::string>& calls) {
    CallQuestion question(context, texts, calls);
    question.Show();
    return question.Answer();
}

} // namespace qel
