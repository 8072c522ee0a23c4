#include "platform/dialog/calc/CloseListener.h"

namespace qel::office {

void CloseListener::windowClosing(const com::sun::star::lang::EventObject& /*event*/) {
    try {
        if (const auto kept = closed_) { // which may destroy its owner
            kept();
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): what fails in a handler is reported there
    }
}

} // namespace qel::office
