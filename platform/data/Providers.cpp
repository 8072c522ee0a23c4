#include "platform/data/Providers.h"

namespace qel {

namespace {

/// Tells the time that passed between its making and its end, however that comes.
class TimedOpening {
public:
    TimedOpening(DataObserver* observer, const std::string& text) : observer_(observer), text_(text) {}
    ~TimedOpening() {
        if (observer_ != nullptr) {
            observer_->OnOpening(text_, std::chrono::steady_clock::now() - start_);
        }
    }
    TimedOpening(const TimedOpening&) = delete;
    TimedOpening& operator=(const TimedOpening&) = delete;

private:
    DataObserver* observer_;
    const std::string& text_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace

void Providers::Open(Connection& connection, const std::string& connectionText) const {
    const TimedOpening timed(observer, connectionText);
    connection.Open(connectionText, "", "", optionsUnspecified);
}

ProviderConnection Providers::Connect(const std::string& connectionText) const {
    DataAccess& provider = For(connectionText);
    ProviderConnection opened{provider, provider.CreateConnection()};
    Open(*opened.connection, connectionText);
    return opened;
}

} // namespace qel
