#include "wizard/servers/ServersOfWizards.h"

#include "platform/data/ConnectionText.h"
#include "platform/data/xmla/ServerErrors.h"
#include "wizard/Raised.h"
#include "wizard/servers/RequestEnd.h"
#include "wizard/servers/ServerWait.h"

#include <algorithm>
#include <exception>
#include <future>
#include <utility>

namespace qel {

namespace {

/// How long the program waits for a request before it shows a box: for a quick one it would only flash.
constexpr auto shortWait = std::chrono::milliseconds(300);
/// After it has waited so long in one action, it shows boxes earlier.
constexpr auto actionWait = std::chrono::milliseconds(1000);
constexpr auto shortestWait = std::chrono::milliseconds(50);

/// While one lives, the thread has a connection of its own, and the one before is left alone.
class ConnectionSetAside {
public:
    explicit ConnectionSetAside(ModSetCube::ThreadState& thread)
        : thread_(thread), state_(std::exchange(thread, {})) {}
    ~ConnectionSetAside() { thread_ = std::move(state_); }
    ConnectionSetAside(const ConnectionSetAside&) = delete;
    ConnectionSetAside& operator=(const ConnectionSetAside&) = delete;

private:
    ModSetCube::ThreadState& thread_;
    ModSetCube::ThreadState state_;
};

} // namespace

ServersOfWizards::ServersOfWizards(WizardServerDoor door, DialogToolkit& toolkit,
                                   const ModLangFrm::LanguageState& language)
    : door_(std::move(door)), toolkit_(toolkit), language_(language),
      access_([this]() -> DataAccess& { return Servers(); },
              {.opening = [this](const std::string& text) { AskWhetherAllowed(text); },
               .run = [this](const std::function<void()>& request) { Run(request); }}) {}

void ServersOfWizards::BeginAction() {
    if (actions_++ == 0) {
        lost_.reset();
        waited_ = {};
    }
}

DataAccess& ServersOfWizards::Servers() {
    if (!servers_) {
        servers_ = door_.make(isStopped_);
    }
    return *servers_;
}

void ServersOfWizards::RequireIdle() const {
    if (isRunning_) { // the box belongs to the wizard of another document
        throw ServerError(errorServerUnreachable, "Another wizard waits for " + server_ + ".");
    }
}

void ServersOfWizards::AskWhetherAllowed(const std::string& connectionText) {
    RequireIdle();
    const ServerAddress address = ParseServerAddress(ParseConnectionText(connectionText).dataSource);
    server_ = address.origin;
    door_.ask(address);
}

void ServersOfWizards::Run(const std::function<void()>& request) {
    RequireIdle();
    const ServerAction action(this);
    if (lost_) {
        throw AutomationError(*lost_);
    }
    const Raised running(isRunning_);
    try {
        RunBesideDialogs(request);
    } catch (const AutomationError& error) {
        if (IsLostServer(error)) {
            lost_ = error;
        }
        throw;
    }
}

void ServersOfWizards::RunBesideDialogs(const std::function<void()>& request) {
    RequestEnd end;
    *isStopped_ = false;
    // Its destructor waits for the request.
    auto running = std::async(std::launch::async, [&] {
        std::exception_ptr failure;
        try {
            request();
        } catch (...) {
            failure = std::current_exception();
        }
        end.Come();
        if (failure) {
            std::rethrow_exception(failure);
        }
    });
    const auto began = std::chrono::steady_clock::now();
    const bool isQuick = running.wait_for(std::clamp(actionWait - waited_, shortestWait, shortWait)) ==
                         std::future_status::ready;
    waited_ +=
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - began);
    if (!isQuick) {
        ShowBoxUntil(end);
    }
    running.get();
}

void ServersOfWizards::ShowBoxUntil(RequestEnd& end) {
    try {
        ServerWait box(toolkit_, language_, server_);
        if (end.CallThen(box.Ender())) {
            const ConnectionSetAside connection(door_.thread());
            box.Show();
        }
    } catch (...) {
        *isStopped_ = true;
        throw;
    }
    if (!end.HasCome()) { // the person does not want to wait
        *isStopped_ = true;
    }
}

} // namespace qel
