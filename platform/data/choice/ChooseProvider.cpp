#include "platform/data/choice/ChooseProvider.h"

#include "platform/data/ConnectionText.h"
#include "platform/value/AutomationError.h"
#include "qel/engine/CubeFile.h"
#include "text/Utf8Path.h"

namespace qel {

namespace {

/// Empty for a text that cannot be read: the provider that gets it says why.
std::string DataSourceOf(const std::string& connectionText) {
    try {
        return ParseConnectionText(connectionText).dataSource;
    } catch (const AutomationError&) {
        return {};
    }
}

} // namespace

Providers ChooseProvider(DataAccess& cubeFiles, DataAccess* servers, DataAccess* machine) {
    return Providers([&cubeFiles, servers, machine](const std::string& connectionText) -> DataAccess& {
        const std::string source = DataSourceOf(connectionText);
        if (servers != nullptr && IsServerAddress(source)) {
            return *servers;
        }
        const bool isOthers = machine != nullptr && !engine::CubeFile::HasSignature(PathFromSetting(source));
        return isOthers ? *machine : cubeFiles;
    });
}

} // namespace qel
