#pragma once

#include "platform/dialog/DialogToolkit.h"

#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/awt/XWindowPeer.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <vector>

namespace qel::office {

using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;
using WindowPeer = com::sun::star::uno::Reference<com::sun::star::awt::XWindowPeer>;

/// The parent window of dialogs and message boxes. Used only by the user interface's thread.
class OfficeWindows {
public:
    explicit OfficeWindows(const Context& context) : context_(context) {}

    const Context& Office() const { return context_; }
    /// A new object of a service of the office, such as "com.sun.star.awt.UnoControlDialog".
    com::sun::star::uno::Reference<com::sun::star::uno::XInterface> New(const char* service) const;
    /// The open dialog, or else the active document's window, or null.
    WindowPeer Active() const;
    /// Moves a new window to the middle of Active.
    void Centre(const com::sun::star::uno::Reference<com::sun::star::awt::XWindow>& own) const;
    /// Moves a new window to a side of Active: out of it where the screen has room, otherwise to its edge.
    void PutBeside(const com::sun::star::uno::Reference<com::sun::star::awt::XWindow>& own,
                   WindowSide side) const;
    void Shown(const WindowPeer& dialog) { dialogs_.push_back(dialog); }
    void LastHidden() { dialogs_.pop_back(); }

private:
    Context context_;
    std::vector<WindowPeer> dialogs_; ///< from back to front
};

} // namespace qel::office
