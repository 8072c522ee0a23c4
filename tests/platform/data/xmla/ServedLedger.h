#pragma once

#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/xmla/XmlaDataAccess.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace qel::test {

/// The example ledger as a cube file, and on a server filled from it.
struct ServedLedger {
    EmbeddedDataAccess embedded;
    XmlaDataAccess servers{
        {.rights = [](const ServerAddress&) { return ServerRights{.access = ServerAccess::Allowed}; }}};
    std::string cubeFile = Environment("QEL_CUBE"), server = Environment("QEL_SERVER");

private:
    static std::string Environment(const char* name) {
        const char* value = std::getenv(name);
        if (!value) {
            throw std::runtime_error(std::string("Run by ctest, which starts a server and sets ") + name +
                                     ".");
        }
        return value;
    }
};

} // namespace qel::test
