#include "platform/standalone/StandaloneProviders.h"

#include "platform/AutomationError.h"
#include "platform/ConnectionText.h"
#include "platform/standalone/ServerSettings.h"

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
          if (NamesServerCube(connectionText))
              return servers_;
          return embedded_;
      }) {}

} // namespace qel
