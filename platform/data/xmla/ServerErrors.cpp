#include "platform/data/xmla/ServerErrors.h"

namespace qel {

AutomationError ServerError(std::int32_t number, std::string description) {
    return {number, std::move(description), serverProvider};
}

bool IsLostServer(const AutomationError& error) {
    return error.Number() >= errorServerUnreachable && error.Number() <= errorServerAnswer;
}

} // namespace qel
