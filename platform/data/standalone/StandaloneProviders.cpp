#include "platform/data/standalone/StandaloneProviders.h"

#include "platform/data/ConnectionText.h"
#include "platform/data/xmla/ServerSettings.h"
#include "platform/value/AutomationError.h"

namespace qel {

namespace {

/// False too for a text that cannot be read, of which the embedded engine tells why.
bool NamesServerCube(const std::string& connectionText) {
    try {
        return IsServerAddress(ParseConnectionText(connectionText).dataSource);
    } catch (const AutomationError&) {
        return false;
    }
}

} // namespace

StandaloneProviders::StandaloneProviders()
    : servers_(ReadServerOptions(ServerSettingsFile())),
      resolving_([this](const std::string& connectionText) -> DataAccess& {
          if (NamesServerCube(connectionText)) {
              return servers_;
          }
          return embedded_;
      }) {}

} // namespace qel
