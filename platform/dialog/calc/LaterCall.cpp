#include "platform/dialog/calc/LaterCall.h"

#include <com/sun/star/awt/AsyncCallback.hpp>

namespace qel::office {

namespace uno = com::sun::star::uno;

void LaterCall::Post(const uno::Reference<uno::XComponentContext>& context) {
    com::sun::star::awt::AsyncCallback::create(context)->addCallback(this, uno::Any());
}

void LaterCall::notify(const uno::Any& /*data*/) {
    try {
        if (const auto kept = call_) { // which may destroy its owner
            kept();
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): what fails in a handler is reported there
    }
}

} // namespace qel::office
