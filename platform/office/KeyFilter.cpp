#include "platform/office/KeyFilter.h"

// Deprecated because only some toolkits have it; the component checks that its own has.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace qel::office {

sal_Bool KeyFilter::keyPressed(const com::sun::star::awt::KeyEvent& event) {
    try {
        return takes_(event.KeyCode);
    } catch (...) {
        return false;
    }
}

FilteredKeys::FilteredKeys(const Toolkit& toolkit, KeyFilter::Takes takes)
    : toolkit_(toolkit), filter_(new KeyFilter(std::move(takes))) {
    toolkit_->addKeyHandler(filter_.get());
}

FilteredKeys::~FilteredKeys() {
    try {
        toolkit_->removeKeyHandler(filter_.get());
    } catch (const com::sun::star::uno::Exception&) { // NOLINT(bugprone-empty-catch): the office ends
    }
}

} // namespace qel::office
