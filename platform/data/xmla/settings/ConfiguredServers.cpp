#include "platform/data/xmla/settings/ConfiguredServers.h"

namespace qel {

XmlaDataAccess& ConfiguredServers::Access() {
    const std::scoped_lock lock(mutex_);
    if (!access_) {
        access_.emplace(read_());
    }
    return *access_;
}

} // namespace qel
