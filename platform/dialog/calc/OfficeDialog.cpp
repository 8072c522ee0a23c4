#include "platform/dialog/calc/OfficeDialog.h"

#include "platform/office/OfficeFailure.h"
#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XMultiComponentFactory.hpp>
#include <com/sun/star/text/WritingMode2.hpp>
#include <com/sun/star/ui/dialogs/ExecutableDialogResults.hpp>
#include <com/sun/star/ui/dialogs/FilePicker.hpp>
#include <com/sun/star/ui/dialogs/TemplateDescription.hpp>
#include <osl/file.hxx>

namespace qel::office {

namespace awt = com::sun::star::awt;
namespace dialogs = com::sun::star::ui::dialogs;
namespace uno = com::sun::star::uno;

namespace {

/// Counts up for as long as it lives.
class Counted {
public:
    explicit Counted(int& count) : count_(count) { ++count_; }
    ~Counted() { --count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& count_;
};

uno::Reference<uno::XInterface> New(const Context& context, const char* service) {
    return context->getServiceManager()->createInstanceWithContext(rtl::OUString::createFromAscii(service),
                                                                   context);
}

rtl::OUString UrlOf(const std::string& path) {
    rtl::OUString url;
    osl::FileBase::getFileURLFromSystemPath(ToOffice(path), url);
    return url;
}

} // namespace

OfficeDialog::OfficeDialog(OfficeWindows& windows, const FormDesign& design, bool isRightToLeft,
                           DialogEvents& events)
    : windows_(windows), design_(design), isRightToLeft_(isRightToLeft), events_(events) {
    const Counted own(ownChanges_);
    MakeModel();
    MakeWindow();
}

OfficeDialog::~OfficeDialog() {
    for (const auto& listener : listeners_) {
        listener->Silence();
    }
    try {
        const uno::Reference<com::sun::star::lang::XComponent> component(window_, uno::UNO_QUERY);
        if (component.is()) {
            component->dispose();
        }
    } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the office took it away before
    }
}

void OfficeDialog::MakeModel() {
    model_.set(New(windows_.Office(), "com.sun.star.awt.UnoControlDialogModel"), uno::UNO_QUERY_THROW);
    model_->setPropertyValue("Width", uno::Any(sal_Int32{design_.width}));
    model_->setPropertyValue("Height", uno::Any(sal_Int32{design_.height}));
    model_->setPropertyValue("Moveable", uno::Any(true));
    model_->setPropertyValue("Closeable", uno::Any(true));
    OfficeDialog::SetCaption(design_.caption);
    const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(model_, uno::UNO_QUERY_THROW);
    for (std::size_t i = 0; i < design_.controls.size(); ++i) {
        controls_.push_back(std::make_unique<OfficeControl>(factory, design_, i, isRightToLeft_));
    }
}

void OfficeDialog::MakeWindow() {
    window_.set(New(windows_.Office(), "com.sun.star.awt.UnoControlDialog"), uno::UNO_QUERY_THROW);
    window_->setModel(uno::Reference<awt::XControlModel>(model_, uno::UNO_QUERY_THROW));
    const uno::Reference<awt::XWindow> hidden(window_, uno::UNO_QUERY_THROW);
    hidden->setVisible(false);
    const uno::Reference<awt::XToolkit> toolkit(awt::Toolkit::create(windows_.Office()),
                                                uno::UNO_QUERY_THROW);
    window_->createPeer(toolkit, windows_.Active());
    const uno::Reference<awt::XControlContainer> container(window_, uno::UNO_QUERY_THROW);
    for (const auto& control : controls_) {
        if (!control->HasModel()) {
            continue;
        }
        const rtl::Reference<ControlListener> listener(new ControlListener(CallbacksOf(*control)));
        listeners_.push_back(listener);
        listener->ListenTo(container->getControl(rtl::OUString::createFromAscii(control->Design().name)));
    }
}

ControlCallbacks OfficeDialog::CallbacksOf(OfficeControl& control) {
    return {.onPressed = [this, &control] { OnPressed(control); },
            .onItem = [this, &control] { OnItem(control); },
            .onText = [this, &control] { OnText(control); },
            .onFocus = [this, &control] { OnFocus(control); }};
}

void OfficeDialog::ShowModal() {
    Translating([&] {
        isHidden_ = false;
        focused_ = nullptr;
        events_.OnLoad();
        if (isHidden_) {
            return;
        }
        windows_.Shown(window_->getPeer());
        isShown_ = true;
        const uno::Reference<awt::XDialog> dialog(window_, uno::UNO_QUERY_THROW);
        try {
            dialog->execute();
        } catch (...) {
            isShown_ = false;
            windows_.LastHidden();
            throw;
        }
        isShown_ = false;
        windows_.LastHidden();
        if (!isHidden_) { // the close box, Esc, or the office ended it
            events_.OnQueryUnload();
        }
    });
}

void OfficeDialog::Hide() {
    isHidden_ = true;
    const uno::Reference<awt::XDialog> dialog(window_, uno::UNO_QUERY);
    if (isShown_ && dialog.is()) {
        dialog->endExecute();
    }
}

OfficeControl& OfficeDialog::Find(std::string_view control, std::initializer_list<ControlKind> kinds) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const auto& candidate) {
        return candidate->Design().name == control;
    });
    if (found == controls_.end() ||
        std::find(kinds.begin(), kinds.end(), (*found)->Design().kind) == kinds.end()) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall, std::string(design_.name) +
                                                                     ": no control '" + std::string(control) +
                                                                     "' that can do this");
    }
    return **found;
}

void OfficeDialog::SetEnabled(std::string_view control, bool isEnabled) {
    using enum ControlKind;
    const Counted own(ownChanges_);
    Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox, Line})
        .SetEnabled(isEnabled);
}

bool OfficeDialog::IsEnabled(std::string_view control) const {
    using enum ControlKind;
    return Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox, Line}).IsEnabled();
}

void OfficeDialog::SetFocus(std::string_view control) {
    using enum ControlKind;
    const auto& found = Find(control, {TextBox, Button, CheckBox, ComboBox, BoundList, ListBox});
    const uno::Reference<awt::XControlContainer> container(window_, uno::UNO_QUERY_THROW);
    const uno::Reference<awt::XWindow> window(
        container->getControl(rtl::OUString::createFromAscii(found.Design().name)), uno::UNO_QUERY);
    if (window.is()) {
        window->setFocus();
    }
}

std::string OfficeDialog::Text(std::string_view control) const {
    using enum ControlKind;
    return Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox}).Content();
}

void OfficeDialog::SetText(std::string_view control, const std::string& text) {
    using enum ControlKind;
    const Counted own(ownChanges_);
    Find(control, {Label, TextBox, Button, CheckBox}).SetContent(text);
}

bool OfficeDialog::IsChecked(std::string_view control) const {
    return Find(control, {ControlKind::CheckBox}).IsChecked();
}

void OfficeDialog::SetChecked(std::string_view control, bool isChecked) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::CheckBox}).SetChecked(isChecked);
}

void OfficeDialog::SetItems(std::string_view control, const std::vector<std::string>& items) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::ComboBox, ControlKind::ListBox}).SetItems(items);
}

std::optional<std::size_t> OfficeDialog::Selected(std::string_view control) const {
    using enum ControlKind;
    return Find(control, {ComboBox, ListBox, BoundList}).Selected();
}

void OfficeDialog::Select(std::string_view control, std::optional<std::size_t> index) {
    using enum ControlKind;
    const Counted own(ownChanges_);
    Find(control, {ComboBox, ListBox, BoundList}).Select(index);
}

void OfficeDialog::Bind(std::string_view control, std::shared_ptr<const ListSource> rows) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::BoundList}).Search()->Bind(std::move(rows));
}

std::string OfficeDialog::AskForFile(std::string_view control, const FileQuestion& question) {
    Find(control, {ControlKind::FileDialog});
    return Translating([&]() -> std::string {
        const auto picker = dialogs::FilePicker::createWithMode(
            windows_.Office(), dialogs::TemplateDescription::FILEOPEN_SIMPLE);
        picker->setTitle(ToOffice(question.title));
        const auto bar = question.filter.find('|');
        if (bar != std::string::npos) {
            picker->appendFilter(ToOffice(question.filter.substr(0, bar)),
                                 ToOffice(question.filter.substr(bar + 1)));
        }
        if (!question.startFolder.empty()) {
            picker->setDisplayDirectory(UrlOf(PathToUtf8(PathFromSetting(question.startFolder))));
        }
        if (picker->execute() != dialogs::ExecutableDialogResults::OK) {
            return {};
        }
        const auto files = picker->getSelectedFiles();
        rtl::OUString path;
        if (!files.hasElements() ||
            osl::FileBase::getSystemPathFromFileURL(files[0], path) != osl::FileBase::E_None) {
            return {};
        }
        return FromOffice(path);
    });
}

std::string OfficeDialog::Tag() const {
    return design_.tag != 0 ? std::to_string(design_.tag) : std::string();
}

void OfficeDialog::SetCaption(const std::string& caption) {
    model_->setPropertyValue("Title", uno::Any(ToOffice(caption)));
}

std::vector<FormControl*> OfficeDialog::Controls() const {
    std::vector<FormControl*> controls;
    for (const auto& control : controls_) {
        controls.push_back(control.get());
    }
    return controls;
}

void OfficeDialog::OnPressed(const OfficeControl& control) {
    if (ownChanges_ > 0) {
        return;
    }
    if (control.Design().name != std::string_view(design_.cancelButton)) {
        CommitSearches(); // keys press a button without leaving the field in which something was typed
    }
    events_.OnClick(control.Design().name);
}

void OfficeDialog::OnItem(OfficeControl& control) {
    if (ownChanges_ > 0) {
        return;
    }
    if (control.Design().kind == ControlKind::CheckBox) {
        events_.OnClick(control.Design().name);
    } else if (control.Search() != nullptr) {
        OnText(control);
    } else {
        events_.OnChange(control.Design().name);
    }
}

void OfficeDialog::OnText(OfficeControl& control) {
    if (ownChanges_ > 0) {
        return;
    }
    bool isTold = control.Search() == nullptr;
    if (!isTold) {
        const Counted own(ownChanges_);
        isTold = control.Search()->OnText();
    }
    if (isTold) {
        events_.OnChange(control.Design().name);
    }
}

void OfficeDialog::OnFocus(OfficeControl& control) {
    OfficeControl* const left = std::exchange(focused_, &control);
    if (control.Search() != nullptr) {
        const Counted own(ownChanges_);
        control.Search()->Prepare();
    }
    if (left == nullptr || left == &control ||
        control.Design().name == std::string_view(design_.cancelButton)) {
        return;
    }
    CommitSearches();
    const ControlKind kind = left->Design().kind;
    if (kind == ControlKind::TextBox || kind == ControlKind::ComboBox || kind == ControlKind::BoundList) {
        events_.OnLeave(left->Design().name);
    }
}

void OfficeDialog::CommitSearches() {
    for (const auto& control : controls_) {
        if (control->Search() == nullptr) {
            continue;
        }
        bool isOther = false;
        {
            const Counted own(ownChanges_);
            isOther = control->Search()->Commit();
        }
        if (isOther) {
            events_.OnChange(control->Design().name);
        }
    }
}

} // namespace qel::office
