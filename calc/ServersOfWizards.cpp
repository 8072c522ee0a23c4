#include "calc/ServersOfWizards.h"

#include "calc/Raised.h"
#include "calc/ServerQuestion.h"
#include "calc/ServerWait.h"
#include "calc/ServersOfUser.h"
#include "platform/data/ConnectionText.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/dialog/calc/LaterCall.h"

#include <algorithm>
#include <com/sun/star/uno/Exception.hpp>
#include <exception>
#include <functional>
#include <future>
#include <rtl/ref.hxx>

namespace qel::calc {

namespace {

/// So long the office waits for one request without a box, which would only flash.
constexpr auto shortWait = std::chrono::milliseconds(300);
/// So long it waits for all requests of an action before it shows boxes earlier.
constexpr auto actionWait = std::chrono::milliseconds(1000);
constexpr auto shortestWait = std::chrono::milliseconds(50);

/// Says that a request has ended, as long as it lives.
class SilencedLater {
public:
    explicit SilencedLater(std::function<void()> call) : later_(new office::LaterCall(std::move(call))) {}
    ~SilencedLater() { later_->Silence(); }
    SilencedLater(const SilencedLater&) = delete;
    SilencedLater& operator=(const SilencedLater&) = delete;

    void Post(const office::Context& context) const noexcept {
        try {
            later_->Post(context);
        } catch (const com::sun::star::uno::Exception&) { // NOLINT(bugprone-empty-catch): the office ends
        }
    }

private:
    rtl::Reference<office::LaterCall> later_;
};

} // namespace

ServersOfWizards::ServersOfWizards(office::OfficeWindows& windows, const ModLangFrm::LanguageState& language)
    : windows_(windows), language_(language),
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
        servers_ = ServersOfUser(isStopped_);
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
    AskAboutServer(windows_, *KnownServersOfUser(), address, IsHebrew());
}

void ServersOfWizards::Run(const std::function<void()>& request) {
    RequireIdle();
    const ServerAction action(this);
    if (lost_) {
        throw AutomationError(*lost_);
    }
    const Raised running(isRunning_);
    try {
        RunBesideOffice(request);
    } catch (const AutomationError& error) {
        if (IsLostServer(error)) {
            lost_ = error;
        }
        throw;
    }
}

void ServersOfWizards::RunBesideOffice(const std::function<void()>& request) {
    std::optional<ServerWait> box;
    std::atomic<bool> hasEnded = false, isBoxShown = false;
    const SilencedLater end([&box] {
        if (box) {
            box->End();
        }
    });
    *isStopped_ = false;
    // Its destructor waits for the request.
    auto running = std::async(std::launch::async, [&] {
        std::exception_ptr failure;
        try {
            request();
        } catch (...) {
            failure = std::current_exception();
        }
        hasEnded = true;
        if (isBoxShown) {
            end.Post(windows_.Office());
        }
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
        try {
            box.emplace(windows_, server_, IsHebrew());
            isBoxShown = true;
            if (!hasEnded) {
                box->Show();
            }
        } catch (...) {
            *isStopped_ = true;
            throw;
        }
        if (!hasEnded) { // the person does not want to wait
            *isStopped_ = true;
        }
    }
    running.get();
}

} // namespace qel::calc
