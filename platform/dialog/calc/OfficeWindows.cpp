#include "platform/dialog/calc/OfficeWindows.h"

#include <com/sun/star/frame/Desktop.hpp>

namespace qel::office {

namespace uno = com::sun::star::uno;

WindowPeer OfficeWindows::Active() const {
    if (!dialogs_.empty()) {
        return dialogs_.back();
    }
    const auto frame = com::sun::star::frame::Desktop::create(context_)->getActiveFrame();
    return frame.is() ? WindowPeer(frame->getContainerWindow(), uno::UNO_QUERY) : WindowPeer();
}

} // namespace qel::office
