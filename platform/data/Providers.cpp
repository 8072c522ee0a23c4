#include "platform/data/Providers.h"

#include <chrono>

namespace qel {

void Providers::Open(Connection& connection, const std::string& connectionText) const {
    const auto start = std::chrono::steady_clock::now();
    const auto tell = [&] { // raises what the observer raises
        if (observer != nullptr) {
            observer->OnOpening(connectionText, std::chrono::steady_clock::now() - start);
        }
    };
    try {
        connection.Open(connectionText, "", "", optionsUnspecified);
    } catch (...) {
        tell();
        throw;
    }
    tell();
}

ProviderConnection Providers::Connect(const std::string& connectionText) const {
    DataAccess& provider = For(connectionText);
    ProviderConnection opened{provider, provider.CreateConnection()};
    Open(*opened.connection, connectionText);
    return opened;
}

} // namespace qel
