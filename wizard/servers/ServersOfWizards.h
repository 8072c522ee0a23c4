#pragma once

#include "cube/ThreadState.h"
#include "lang/ModLangFrm.h"
#include "platform/data/waiting/WaitingDataAccess.h"
#include "platform/data/xmla/ServerAddress.h"
#include "platform/dialog/DialogToolkit.h"
#include "platform/value/AutomationError.h"
#include "wizard/WizardServers.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace qel {

class RequestEnd;

/// How a door reaches servers for its wizards.
struct WizardServerDoor {
    /// Asks the person about a server that is not known. Called in the dialogs' thread before anything is
    /// sent.
    std::function<void(const ServerAddress& address)> ask;
    /// The provider, which never shows anything. Its requests end when the flag is set.
    std::function<std::unique_ptr<DataAccess>(const std::shared_ptr<const std::atomic<bool>>& isStopped)>
        make;
    /// What the dialogs share with the cells of their thread, which may be calculated while a box is shown.
    std::function<ModSetCube::ThreadState&()> thread;
};

/// The servers as the wizards ask them. Each request runs on a thread of its own. The program waits for it a
/// moment, then with a box in front of the wizard, which can cancel the request.
/// Used by the thread of the dialogs alone.
class ServersOfWizards : public WizardServers {
public:
    /// Toolkit and language outlive it.
    ServersOfWizards(WizardServerDoor door, DialogToolkit& toolkit,
                     const ModLangFrm::LanguageState& language);
    ~ServersOfWizards() override = default;
    ServersOfWizards(const ServersOfWizards&) = delete;
    ServersOfWizards& operator=(const ServersOfWizards&) = delete;

    DataAccess& Access() { return access_; }
    void BeginAction() override;
    void EndAction() override { --actions_; }

private:
    DataAccess& Servers();
    /// Raises AutomationError while a request runs.
    void RequireIdle() const;
    void AskWhetherAllowed(const std::string& connectionText);
    void Run(const std::function<void()>& request);
    void RunBesideDialogs(const std::function<void()>& request);
    void ShowBoxUntil(RequestEnd& end);

    WizardServerDoor door_;
    DialogToolkit& toolkit_;
    const ModLangFrm::LanguageState& language_;
    std::shared_ptr<std::atomic<bool>> isStopped_ = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<DataAccess> servers_; ///< made at the first request
    WaitingDataAccess access_;
    std::string server_;                  ///< the one whose connection was opened last
    bool isRunning_ = false;              ///< a request
    int actions_ = 0;                     ///< how deep they are nested
    std::chrono::milliseconds waited_{};  ///< in the action, without a box
    std::optional<AutomationError> lost_; ///< what ended the requests of the action
};

} // namespace qel
