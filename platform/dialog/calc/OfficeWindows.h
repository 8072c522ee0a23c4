#pragma once

#include <com/sun/star/awt/XWindowPeer.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <vector>

namespace qel::office {

using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;
using WindowPeer = com::sun::star::uno::Reference<com::sun::star::awt::XWindowPeer>;

/// Before which window dialogs and boxes are shown. Used by the thread of the user interface alone.
class OfficeWindows {
public:
    explicit OfficeWindows(const Context& context) : context_(context) {}

    const Context& Office() const { return context_; }
    /// The dialog that is shown, or else the active document's window; none without a window.
    WindowPeer Active() const;
    void Shown(const WindowPeer& dialog) { dialogs_.push_back(dialog); }
    void LastHidden() { dialogs_.pop_back(); }

private:
    Context context_;
    std::vector<WindowPeer> dialogs_; ///< each before the one in front of it
};

} // namespace qel::office
