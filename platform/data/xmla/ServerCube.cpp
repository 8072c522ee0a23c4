#include "platform/data/xmla/ServerCube.h"

#include "text/CaseFold.h"

namespace qel {

const ServerHierarchy* ServerCube::FindHierarchy(const std::string& uniqueName) const {
    for (const auto& dimension : dimensions) {
        for (const auto& hierarchy : dimension.hierarchies) {
            if (EqualIgnoringCase(hierarchy.uniqueName, uniqueName) ||
                EqualIgnoringCase(dimension.uniqueName + ".[" + hierarchy.name + "]", uniqueName)) {
                return &hierarchy;
            }
        }
    }
    return nullptr;
}

} // namespace qel
