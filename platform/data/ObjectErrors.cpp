#include "platform/data/ObjectErrors.h"

#include "platform/data/DataAccessErrors.h"

namespace qel {

AutomationError ObjectOpenError(const std::string& provider) {
    return {errorObjectOpen, "Operation is not allowed when the object is open.", provider};
}

AutomationError ObjectClosedError(const std::string& provider) {
    return {errorObjectClosed, "Operation is not allowed when the object is closed.", provider};
}

AutomationError InvalidConnectionError(const std::string& provider) {
    return {errorInvalidConnection,
            "The connection cannot be used to perform this operation. It is either closed or invalid in this "
            "context.",
            provider};
}

AutomationError NoActiveConnectionError(const std::string& provider) {
    return {errorInvalidConnection, "The catalog has no active connection.", provider};
}

std::size_t CheckedIndex(std::int32_t index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    return static_cast<std::size_t>(index);
}

} // namespace qel
