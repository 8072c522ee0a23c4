#include "platform/sheet/calc/StatusBarAction.h"

#include "platform/office/OfficeText.h"
#include "platform/office/OtherInterface.h"

#include <com/sun/star/awt/Key.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/task/XStatusIndicatorFactory.hpp>
#include <com/sun/star/util/CloseVetoException.hpp>
#include <cppuhelper/implbase1.hxx>

namespace qel::office {

namespace uno = com::sun::star::uno;
namespace util = com::sun::star::util;

namespace {

constexpr sal_Int32 wholeBar = 100;
/// Showing a share lets the office work on what waits, which takes time.
constexpr auto pause = std::chrono::milliseconds(100);

class ClosingRefused : public cppu::WeakImplHelper1<util::XCloseListener> {
public:
    explicit ClosingRefused(std::function<void()> refused) : refused_(std::move(refused)) {}

    void SAL_CALL queryClosing(const com::sun::star::lang::EventObject& /*event*/,
                               sal_Bool /*getsOwnership*/) override {
        refused_();
        throw util::CloseVetoException();
    }
    void SAL_CALL notifyClosing(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& /*event*/) override {}

private:
    std::function<void()> refused_;
};

} // namespace

ClosingVeto::ClosingVeto(const Frame& frame, std::function<void()> refused)
    : document_(As<util::XCloseable>(frame->getController()->getModel())),
      listener_(new ClosingRefused(std::move(refused))) {
    document_->addCloseListener(listener_);
}

ClosingVeto::~ClosingVeto() {
    try {
        document_->removeCloseListener(listener_);
    } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the office ends
    }
}

StatusBarAction::StatusBarAction(const Context& context, const Frame& frame, const std::string& text)
    : window_(frame->getContainerWindow()),
      bar_(As<com::sun::star::task::XStatusIndicatorFactory>(frame)->createStatusIndicator()),
      keys_({com::sun::star::awt::Toolkit::create(context), uno::UNO_QUERY_THROW},
            [this](sal_Int16 key) { return Takes(key); }),
      veto_(frame, [this] { isStopped_ = true; }) {
    bar_->start(ToOffice(text), wholeBar);
    SetWindowEnabled(false);
}

StatusBarAction::~StatusBarAction() {
    SetWindowEnabled(true);
    try {
        bar_->end();
    } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the window was closed
    }
}

void StatusBarAction::Report(double share) {
    const auto now = std::chrono::steady_clock::now();
    if (now - shown_ >= pause) {
        bar_->setValue(static_cast<sal_Int32>(share * wholeBar));
        shown_ = std::chrono::steady_clock::now();
    }
    if (isStopped_) {
        throw ActionStopped();
    }
}

bool StatusBarAction::Takes(sal_Int16 key) {
    isStopped_ = isStopped_ || key == com::sun::star::awt::Key::ESCAPE;
    return true;
}

void StatusBarAction::SetWindowEnabled(bool isEnabled) const noexcept {
    try {
        window_->setEnable(isEnabled);
    } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the window was closed
    }
}

} // namespace qel::office
