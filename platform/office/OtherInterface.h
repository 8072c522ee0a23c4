#pragma once

#include "platform/value/AutomationError.h"

#include <com/sun/star/uno/Reference.hxx>

namespace qel::office {

/// Another interface of an office's object. Raises 91 when it is missing.
template <class Interface, class Object>
com::sun::star::uno::Reference<Interface> As(const Object& object) {
    com::sun::star::uno::Reference<Interface> found(object, com::sun::star::uno::UNO_QUERY);
    if (!found.is()) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return found;
}

} // namespace qel::office
