#include "calc/ServerQuestion.h"

#include "function/FunctionTexts.h"
#include "platform/dialog/calc/OfficeDialogToolkit.h"
#include "platform/dialog/calc/OfficeMessages.h"
#include "platform/value/AutomationError.h"

namespace qel::calc {

namespace {

constexpr const char* title = "OrmFuncQel4";
constexpr const char* question = "LabelQuestion";
constexpr const char* addressBox = "TxtServer";
constexpr const char* hint = "LabelHint";
constexpr const char* once = "CmdOnce";
constexpr const char* always = "CmdAlways";
constexpr const char* never = "CmdNever";

using enum ControlKind;

/// No button is the default one: Enter, typed for something else, answers nothing.
constexpr ControlDesign controls[] = {
    {.name = question, .kind = Label, .place = {8, 8, 254, 18}},
    {.name = addressBox, .kind = TextBox, .place = {8, 28, 254, 12}, .isReadOnly = true},
    {.name = hint, .kind = Label, .place = {8, 46, 254, 18}},
    {.name = once, .kind = Button, .place = {70, 70, 60, 14}},
    {.name = always, .kind = Button, .place = {134, 70, 60, 14}},
    {.name = never, .kind = Button, .place = {198, 70, 64, 14}},
};

constexpr FormDesign design = {
    .name = "frmServer", .caption = title, .width = 270, .height = 92, .controls = controls};

struct ControlText {
    const char* control;
    Bilingual text;
};

constexpr ControlText texts[] = {
    {question,
     {"A formula wants to ask this server. The request contains values of cells.",
      "נוסחה מבקשת לפנות לשרת הזה. הבקשה מכילה ערכים מתאים."}},
    {hint,
     {"Allow it only if you know the server and trust the document.",
      "יש לאשר רק אם השרת מוכר והמסמך אמין."}},
    {once, {"Once", "הפעם"}},
    {always, {"Always", "תמיד"}},
    {never, {"Never", "אף פעם"}},
};

/// One question.
class ServerQuestion : private DialogEvents {
public:
    enum class Reply { None, Once, Always, Never };

    ServerQuestion(office::OfficeWindows& windows, const std::string& address, bool isHebrew)
        : dialog_(office::OfficeDialogToolkit(windows).NewDialog(design, isHebrew, *this)) {
        for (const ControlText& text : texts) {
            dialog_->SetText(text.control, text.text.In(isHebrew));
        }
        dialog_->SetText(addressBox, address);
    }
    ~ServerQuestion() override = default;
    ServerQuestion(const ServerQuestion&) = delete;
    ServerQuestion& operator=(const ServerQuestion&) = delete;

    Reply Ask() {
        dialog_->ShowModal();
        return reply_;
    }

private:
    void OnLoad() override {}
    void OnClick(std::string_view control) override {
        reply_ = control == once ? Reply::Once : control == always ? Reply::Always : Reply::Never;
        dialog_->Hide();
    }
    void OnChange(std::string_view /*control*/) override {}
    bool OnLeave(std::string_view /*control*/) override { return true; }
    void OnQueryUnload() override {}

    std::unique_ptr<Dialog> dialog_;
    Reply reply_ = Reply::None;
};

} // namespace

void AskAboutServer(office::OfficeWindows& windows, KnownServers& servers, const ServerAddress& address,
                    bool isHebrew) {
    if (servers.RightsOf(address).access != ServerAccess::Unknown) {
        return; // another address of the same server
    }
    servers.Answer(address, false); // whatever happens to the question
    const auto reply = ServerQuestion(windows, address.origin, isHebrew).Ask();
    if (reply == ServerQuestion::Reply::Once) {
        servers.Answer(address, true);
    } else if (reply != ServerQuestion::Reply::None) {
        try {
            servers.Remember(address, reply == ServerQuestion::Reply::Always);
        } catch (const AutomationError& error) {
            office::OfficeMessages(windows).Show(MessageBoxStyle::Exclamation, title, error.Description());
        }
    }
}

ServerPermission AskingThePerson(const office::Context& context, const std::shared_ptr<KnownServers>& servers,
                                 const std::shared_ptr<const std::atomic<bool>>& isHebrew) {
    return {.isUndecided =
                [servers](const std::string& server) {
                    return servers->RightsOf(ParseServerAddress(server)).access == ServerAccess::Unknown;
                },
            .decide =
                [context, servers, isHebrew](const std::string& server) {
                    try {
                        office::OfficeWindows windows(context);
                        AskAboutServer(windows, *servers, ParseServerAddress(server), *isHebrew);
                    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it stays refused
                    } catch (const com::sun::star::uno::Exception&) { // NOLINT(bugprone-empty-catch)
                    }
                }};
}

} // namespace qel::calc
