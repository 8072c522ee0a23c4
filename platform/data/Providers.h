#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/DataObserver.h"

#include <functional>

namespace qel {

/// An open connection, and the provider that makes what is opened on it.
struct ProviderConnection {
    DataAccess& provider;
    std::shared_ptr<Connection> connection;
};

/// The providers of a door: which one opens a connection text, and who is told what they are asked. A value:
/// whoever wants to listen takes a copy and sets the observer. The providers and the observer outlive it.
class Providers {
public:
    using Choice = std::function<DataAccess&(const std::string& connectionText)>;

    /// One provider for every text.
    Providers(DataAccess& only) // NOLINT(google-explicit-constructor): one provider is a choice of providers
        : choice_([provider = &only](const std::string&) -> DataAccess& { return *provider; }) {}
    explicit Providers(Choice choice) : choice_(std::move(choice)) {}

    DataAccess& For(const std::string& connectionText) const { return choice_(connectionText); }

    /// Opens a connection that the text's provider made. Raises what the provider raises.
    void Open(Connection& connection, const std::string& connectionText) const;
    /// Opens a new one.
    ProviderConnection Connect(const std::string& connectionText) const;
    /// Tells the observer what is sent next.
    void Sending(const std::string& statement) const {
        if (observer != nullptr) {
            observer->OnStatement(statement);
        }
    }

    DataObserver* observer = nullptr;

private:
    Choice choice_;
};

} // namespace qel
