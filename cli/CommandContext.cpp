#include "cli/CommandContext.h"

#include "platform/data/ConnectionText.h"

namespace qel {

void CommandContext::AllowNamed(const std::string& cube) const {
    if (IsServerAddress(cube)) {
        servers->Answer(ParseServerAddress(cube), true);
    }
}

} // namespace qel
