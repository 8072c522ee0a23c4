#include "platform/dialog/calc/OfficeDialog.h"

#include "platform/office/KeyFilter.h"
#include "platform/office/OfficeFailure.h"
#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <com/sun/star/awt/Key.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/lang/XComponent.hpp>
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

/// Counts a handler while it runs.
class Running {
public:
    explicit Running(int& count) : count_(count) { ++count_; }
    ~Running() { --count_; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    int& count_;
};

rtl::OUString UrlOf(const std::string& path) {
    rtl::OUString url;
    osl::FileBase::getFileURLFromSystemPath(ToOffice(path), url);
    return url;
}

} // namespace

OfficeDialog::OfficeDialog(OfficeWindows& windows, const FormDesign& design, bool isRightToLeft,
                           DialogEvents& events)
    : DesignedDialog(design, isRightToLeft, events), windows_(windows), later_(new LaterCall([this] {
          TellLeftByClick();
          TellChanged();
          told_ = nullptr;
          PrepareFocused();
          SettleSearches();
      })) {
    const OwnChange own(*this);
    MakeModel();
    MakeWindow();
}

OfficeDialog::~OfficeDialog() {
    later_->Silence();
    if (closing_.is()) {
        closing_->Silence();
    }
    if (hider_.is()) {
        hider_->Silence();
    }
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
    model_.set(windows_.New("com.sun.star.awt.UnoControlDialogModel"), uno::UNO_QUERY_THROW);
    model_->setPropertyValue("Width", uno::Any(sal_Int32{Design().width}));
    model_->setPropertyValue("Height", uno::Any(sal_Int32{Design().height}));
    model_->setPropertyValue("Moveable", uno::Any(true));
    model_->setPropertyValue("Closeable", uno::Any(true));
    OfficeDialog::SetCaption(Design().caption);
    const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(model_, uno::UNO_QUERY_THROW);
    for (std::size_t i = 0; i < Design().controls.size(); ++i) {
        Add(std::make_unique<OfficeControl>(factory, Design(), i, IsRightToLeft()));
    }
}

void OfficeDialog::MakeWindow() {
    window_.set(windows_.New("com.sun.star.awt.UnoControlDialog"), uno::UNO_QUERY_THROW);
    window_->setModel(uno::Reference<awt::XControlModel>(model_, uno::UNO_QUERY_THROW));
    const uno::Reference<awt::XWindow> hidden(window_, uno::UNO_QUERY_THROW);
    hidden->setVisible(false);
    const uno::Reference<awt::XToolkit> toolkit(awt::Toolkit::create(windows_.Office()),
                                                uno::UNO_QUERY_THROW);
    window_->createPeer(toolkit, windows_.Active());
    const uno::Reference<awt::XControlContainer> container(window_, uno::UNO_QUERY_THROW);
    for (const auto& control : OwnControls()) {
        if (!control->HasModel()) {
            continue;
        }
        const rtl::Reference<ControlListener> listener(new ControlListener(CallbacksOf(*control)));
        listeners_.push_back(listener);
        const auto window = container->getControl(rtl::OUString::createFromAscii(control->Design().name));
        listener->ListenTo(window);
        if (control->Search() != nullptr) {
            control->Search()->Attach(window);
        }
    }
}

ControlCallbacks OfficeDialog::CallbacksOf(OfficeControl& control) {
    return {.onPressed = [this, &control] { OnPressed(control); },
            .onItem = [this, &control] { OnItem(control); },
            .onText = [this, &control] { OnText(control); },
            .onFocus = [this, &control] { OnFocus(control); }};
}

bool OfficeDialog::Load() {
    isHidden_ = false;
    focused_ = nullptr;
    clicked_ = spoilt_ = nullptr;
    left_.clear();
    changed_.clear();
    told_ = nullptr;
    Tell([&] { Events().OnLoad(); });
    return !isHidden_;
}

void OfficeDialog::ShowModal() {
    Translating([&] {
        if (!Load()) {
            return;
        }
        windows_.Centre({window_, uno::UNO_QUERY});
        windows_.Shown(window_->getPeer());
        isShown_ = true;
        const uno::Reference<awt::XDialog> dialog(window_, uno::UNO_QUERY_THROW);
        const FilteredKeys keys({awt::Toolkit::create(windows_.Office()), uno::UNO_QUERY_THROW},
                                [this](sal_Int16 key) { return OnKey(key); });
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
            Events().OnQueryUnload();
        }
    });
}

void OfficeDialog::ShowBeside(WindowSide side) {
    Translating([&] {
        if (!Load()) {
            return;
        }
        const uno::Reference<awt::XWindow> own(window_, uno::UNO_QUERY_THROW);
        windows_.PutBeside(own, side);
        closing_ = rtl::Reference<CloseListener>(new CloseListener([this] {
            if (handlers_ == 0) {
                Hide();
                Events().OnQueryUnload();
            }
        }));
        uno::Reference<awt::XTopWindow>(window_, uno::UNO_QUERY_THROW)->addTopWindowListener(closing_.get());
        own->setVisible(true);
    });
}

std::function<void()> OfficeDialog::Hider() {
    if (!hider_.is()) {
        hider_ = rtl::Reference<LaterCall>(new LaterCall([this] { Hide(); }));
    }
    return [hider = hider_, office = windows_.Office()] {
        try {
            hider->Post(office);
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the office ends
        }
    };
}

void OfficeDialog::Hide() {
    isHidden_ = true;
    if (closing_.is()) {
        closing_->Silence();
        closing_.clear();
        uno::Reference<awt::XWindow>(window_, uno::UNO_QUERY_THROW)->setVisible(false);
    }
    for (const auto& control : OwnControls()) {
        if (control->Search() != nullptr) {
            const OwnChange own(*this);
            control->Search()->Close(); // an open list must not outlive its dialog
        }
    }
    const uno::Reference<awt::XDialog> dialog(window_, uno::UNO_QUERY);
    if (isShown_ && dialog.is()) {
        dialog->endExecute();
    }
}

void OfficeDialog::SetEnabled(std::string_view control, bool isEnabled) {
    const OwnChange own(*this);
    Find(control, shown).SetEnabled(isEnabled);
}

void OfficeDialog::SetFocus(std::string_view control) {
    ++focusMoves_;
    if (const auto window = WindowOf(Find(control, focusable)); window.is()) {
        window->setFocus();
    }
}

uno::Reference<awt::XWindow> OfficeDialog::WindowOf(const OfficeControl& control) const {
    const uno::Reference<awt::XControlContainer> container(window_, uno::UNO_QUERY_THROW);
    return {container->getControl(rtl::OUString::createFromAscii(control.Design().name)), uno::UNO_QUERY};
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

void OfficeDialog::SetCaption(const std::string& caption) {
    model_->setPropertyValue("Title", uno::Any(ToOffice(caption)));
}

void OfficeDialog::Tell(const std::function<void()>& handler) {
    told_ = nullptr;
    {
        const Running running(handlers_);
        handler();
    }
    TellLater(); // of what happened meanwhile
}

void OfficeDialog::OnPressed(const OfficeControl& control) {
    if (IsOwnChange() || handlers_ > 0) { // the press came before a box that a handler shows
        return;
    }
    if (control.Design().name != std::string_view(Design().cancelButton)) {
        if (std::exchange(spoilt_, nullptr) == &control || !TellLeft()) {
            return; // the field is wrong, and a box said so; or the dialog shows something new
        }
        TellChanged();
        CommitSearches(); // keys press a button without moving the focus out of the edited field
    }
    Tell([&] { Events().OnClick(control.Design().name); });
}

void OfficeDialog::OnItem(OfficeControl& control) {
    if (IsOwnChange()) {
        return;
    }
    if (handlers_ > 0) { // a screen reader chooses and types behind a box, too
        changed_.push_back(&control);
    } else if (control.Design().kind == ControlKind::CheckBox) {
        Tell([&] { Events().OnClick(control.Design().name); });
    } else if (control.Search() != nullptr) {
        OnText(control);
    } else if (told_ != &control || toldChoice_ != control.Selected()) {
        Tell([&] { Events().OnChange(control.Design().name); });
        told_ = &control;
        toldChoice_ = control.Selected();
    }
}

void OfficeDialog::OnText(OfficeControl& control) {
    if (IsOwnChange()) {
        return;
    }
    if (handlers_ > 0) {
        changed_.push_back(&control);
        return;
    }
    bool isTold = control.Search() == nullptr;
    if (!isTold) {
        ReadRows(*control.Search());
        const OwnChange own(*this);
        isTold = control.Search()->OnText();
        TellLater();
    }
    if (isTold) {
        Tell([&] { Events().OnChange(control.Design().name); });
    }
}

void OfficeDialog::OnFocus(OfficeControl& control) {
    OfficeControl* const left = std::exchange(focused_, &control);
    clicked_ = std::exchange(isTab_, false) ? nullptr : &control;
    spoilt_ = nullptr;
    PrepareFocused();
    if (left == nullptr || left == &control ||
        control.Design().name == std::string_view(Design().cancelButton)) {
        return;
    }
    left_.push_back(left);
    TellLater(); // a box of a handler would swallow the click that moves the focus
}

bool OfficeDialog::OnKey(sal_Int16 key) {
    isTab_ = key == awt::Key::TAB;
    spoilt_ = nullptr;
    SearchBox* const search = focused_ != nullptr ? focused_->Search() : nullptr;
    const bool isTaken = key == awt::Key::RETURN || key == awt::Key::ESCAPE;
    if (search == nullptr || handlers_ > 0 || !isTaken || !search->IsInUse()) {
        return false;
    }
    bool isOther = false;
    {
        const OwnChange own(*this);
        isOther = key == awt::Key::RETURN ? search->Commit() : search->TakeBack();
    }
    if (isOther) {
        Tell([&] { Events().OnChange(focused_->Design().name); });
    }
    TellLater();
    return true;
}

void OfficeDialog::TellLater() { later_->Post(windows_.Office()); }

void OfficeDialog::TellLeftByClick() {
    if (!left_.empty()) {
        spoilt_ = clicked_; // unless a box takes the focus, and with it the button's release
        spoilt_ = TellLeft() ? nullptr : spoilt_;
    }
}

bool OfficeDialog::TellLeft() {
    const int focusMoves = focusMoves_;
    bool pressCounts = true;
    // Handlers may show boxes, during which more is told, so a field is removed before it is told of.
    while (!left_.empty() && handlers_ == 0 && !isHidden_) {
        OfficeControl* const left = left_.front();
        left_.erase(left_.begin());
        Commit(*left);
        if (IsFieldKind(left->Design().kind) && left != focused_) {
            Tell([&] { pressCounts = Events().OnLeave(left->Design().name) && pressCounts; });
        }
    }
    return pressCounts && focusMoves_ == focusMoves;
}

void OfficeDialog::TellChanged() {
    while (!changed_.empty() && handlers_ == 0 && !isHidden_) {
        OfficeControl* const changed = changed_.front();
        changed_.erase(changed_.begin());
        changed->Design().kind == ControlKind::TextBox ? OnText(*changed) : OnItem(*changed);
    }
}

void OfficeDialog::PrepareFocused() {
    SearchBox* const search = focused_ != nullptr ? focused_->Search() : nullptr;
    if (search != nullptr && handlers_ == 0 && !isHidden_ && focused_->IsEnabled()) {
        ReadRows(*search);
        const OwnChange own(*this);
        search->Prepare();
    }
}

void OfficeDialog::ReadRows(const SearchBox& search) {
    if (!search.AreRowsRead()) {
        Tell([&] { search.ReadRows(); });
    }
}

void OfficeDialog::SettleSearches() {
    const OwnChange own(*this);
    for (const auto& control : OwnControls()) {
        if (control->Search() != nullptr && handlers_ == 0 && !isHidden_) {
            control->Search()->Settle(control.get() == focused_);
        }
    }
}

void OfficeDialog::CommitSearches() {
    for (const auto& control : OwnControls()) {
        Commit(*control);
    }
}

void OfficeDialog::Commit(OfficeControl& control) {
    if (control.Search() == nullptr) {
        return;
    }
    bool isOther = false;
    {
        const OwnChange own(*this);
        isOther = control.Search()->Commit();
    }
    if (isOther) {
        Tell([&] { Events().OnChange(control.Design().name); });
    }
}

} // namespace qel::office
