#pragma once

namespace qel {

/// The servers that the wizards of a door can ask. The door's providers open their addresses and wait for
/// them. A person's action may send many requests: once one of them is cancelled or gets no answer, the
/// others of the action fail at once.
class WizardServers {
public:
    virtual ~WizardServers() = default;
    /// Both are called in pairs, which may be nested; the outermost pair is the action.
    virtual void BeginAction() = 0;
    virtual void EndAction() = 0;
};

/// While one lives, requests belong to one action.
class ServerAction {
public:
    /// Null for a door without servers.
    explicit ServerAction(WizardServers* servers) : servers_(servers) {
        if (servers_ != nullptr) {
            servers_->BeginAction();
        }
    }
    ~ServerAction() {
        if (servers_ != nullptr) {
            servers_->EndAction();
        }
    }
    ServerAction(const ServerAction&) = delete;
    ServerAction& operator=(const ServerAction&) = delete;

private:
    WizardServers* servers_;
};

} // namespace qel
