#include "calc/ServersOfUser.h"

#include "platform/data/xmla/XmlaDataAccess.h"
#include "platform/data/xmla/settings/ServerSettings.h"

namespace qel::calc {

const std::shared_ptr<KnownServers>& KnownServersOfUser() {
    static const auto known = std::make_shared<KnownServers>(ServerSettingsFile());
    return known;
}

std::unique_ptr<DataAccess> ServersOfUser(const std::shared_ptr<const std::atomic<bool>>& isStopped) {
    ServerOptions options = ReadServerOptions(KnownServersOfUser());
    options.isStopped = isStopped;
    return std::make_unique<XmlaDataAccess>(std::move(options));
}

} // namespace qel::calc
