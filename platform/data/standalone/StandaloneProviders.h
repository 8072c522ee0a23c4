#pragma once

#include "platform/data/ResolvingDataAccess.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/xmla/XmlaDataAccess.h"

namespace qel {

/// The data providers of a door where the machine has none of its own: the embedded engine for files, XMLA
/// for the addresses of servers, with the user's settings for them. One object serves any number of threads.
class StandaloneProviders {
public:
    StandaloneProviders();
    ~StandaloneProviders() = default;
    StandaloneProviders(const StandaloneProviders&) = delete;
    StandaloneProviders& operator=(const StandaloneProviders&) = delete;

    DataAccess& Objects() { return resolving_; }

private:
    EmbeddedDataAccess embedded_;
    XmlaDataAccess servers_;
    ResolvingDataAccess resolving_;
};

} // namespace qel
