#pragma once

#include "platform/office/KeyFilter.h"
#include "platform/sheet/Workbook.h"

#include <chrono>
#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/task/XStatusIndicator.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <com/sun/star/util/XCloseable.hpp>

namespace qel::office {

/// Keeps a document open as long as it lives: the office would go on with one that is gone.
class ClosingVeto {
public:
    using Frame = com::sun::star::uno::Reference<com::sun::star::frame::XFrame>;

    /// `refused` is called when the document is to be closed.
    ClosingVeto(const Frame& frame, std::function<void()> refused);
    ~ClosingVeto();
    ClosingVeto(const ClosingVeto&) = delete;
    ClosingVeto& operator=(const ClosingVeto&) = delete;

private:
    com::sun::star::uno::Reference<com::sun::star::util::XCloseable> document_;
    com::sun::star::uno::Reference<com::sun::star::util::XCloseListener> listener_;
};

/// Shows a share in the status bar of a document's window, which takes no click and no key meanwhile. To
/// close the document stops the action, too.
class StatusBarAction : public LongAction {
public:
    using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;
    using Frame = com::sun::star::uno::Reference<com::sun::star::frame::XFrame>;

    StatusBarAction(const Context& context, const Frame& frame, const std::string& text);
    ~StatusBarAction() override;
    StatusBarAction(const StatusBarAction&) = delete;
    StatusBarAction& operator=(const StatusBarAction&) = delete;

    void Report(double share) override;

private:
    bool Takes(sal_Int16 key);
    void SetWindowEnabled(bool isEnabled) const noexcept;

    com::sun::star::uno::Reference<com::sun::star::awt::XWindow> window_;
    com::sun::star::uno::Reference<com::sun::star::task::XStatusIndicator> bar_;
    FilteredKeys keys_;
    ClosingVeto veto_;
    std::chrono::steady_clock::time_point shown_;
    bool isStopped_ = false;
};

} // namespace qel::office
