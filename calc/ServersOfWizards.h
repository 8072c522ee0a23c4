#pragma once

#include "lang/ModLangFrm.h"
#include "platform/data/waiting/WaitingDataAccess.h"
#include "platform/dialog/calc/OfficeWindows.h"
#include "platform/value/AutomationError.h"
#include "wizard/WizardServers.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace qel::calc {

/// The user's servers as the wizards ask them. Each request runs on a thread of its own. The office waits for
/// it a moment, then with a box in front of the wizard, which can cancel the request. The person is asked
/// about a server that is not known before anything is sent to it.
/// Used by the thread of the user interface alone.
class ServersOfWizards : public WizardServers {
public:
    /// Both outlive it.
    ServersOfWizards(office::OfficeWindows& windows, const ModLangFrm::LanguageState& language);
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
    void RunBesideOffice(const std::function<void()>& request);
    bool IsHebrew() const { return language_.iLang == Language::Hebrew; }

    office::OfficeWindows& windows_;
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

} // namespace qel::calc
