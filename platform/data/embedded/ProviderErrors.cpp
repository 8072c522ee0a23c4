#include "platform/data/embedded/ProviderErrors.h"

namespace qel {

AutomationError ProviderError(std::int32_t number, std::string description) {
    return {number, std::move(description), embeddedProvider};
}

AutomationError ToAutomationError(const engine::EngineError& error) {
    return ProviderError(static_cast<std::int32_t>(error.Kind()), error.what());
}

} // namespace qel
