#include "platform/dialog/calc/OfficeWindows.h"

#include <algorithm>
#include <com/sun/star/awt/PosSize.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/XMultiComponentFactory.hpp>

namespace qel::office {

namespace awt = com::sun::star::awt;
namespace uno = com::sun::star::uno;

uno::Reference<uno::XInterface> OfficeWindows::New(const char* service) const {
    return context_->getServiceManager()->createInstanceWithContext(rtl::OUString::createFromAscii(service),
                                                                    context_);
}

WindowPeer OfficeWindows::Active() const {
    if (!dialogs_.empty()) {
        return dialogs_.back();
    }
    const auto frame = com::sun::star::frame::Desktop::create(context_)->getActiveFrame();
    return frame.is() ? WindowPeer(frame->getContainerWindow(), uno::UNO_QUERY) : WindowPeer();
}

void OfficeWindows::Centre(const uno::Reference<awt::XWindow>& own) const {
    const uno::Reference<awt::XWindow> parent(Active(), uno::UNO_QUERY);
    if (!parent.is() || !own.is()) {
        return;
    }
    // A window's position is relative to its parent's.
    const awt::Rectangle around = parent->getPosSize(), size = own->getPosSize();
    own->setPosSize(std::max<sal_Int32>((around.Width - size.Width) / 2, 0),
                    std::max<sal_Int32>((around.Height - size.Height) / 2, 0), 0, 0, awt::PosSize::POS);
}

void OfficeWindows::PutBeside(const uno::Reference<awt::XWindow>& own, WindowSide side) const {
    const uno::Reference<awt::XWindow> parent(Active(), uno::UNO_QUERY);
    if (!parent.is()) {
        return;
    }
    constexpr sal_Int32 frameSize = 16, statusBar = 48; // about what the desktop adds to a window
    const awt::Rectangle around = parent->getPosSize(), size = own->getPosSize();
    const awt::Rectangle screen = awt::Toolkit::create(context_)->getWorkArea();
    const sal_Int32 needed = size.Width + frameSize;
    const sal_Int32 free =
        side == WindowSide::Left ? around.X - screen.X : screen.X + screen.Width - (around.X + around.Width);
    const sal_Int32 outside = free >= needed ? needed : 0;
    const sal_Int32 left = side == WindowSide::Left ? frameSize - outside : around.Width - needed + outside;
    own->setPosSize(left, std::max<sal_Int32>(around.Height - size.Height - statusBar, 0), 0, 0,
                    awt::PosSize::POS);
}

} // namespace qel::office
