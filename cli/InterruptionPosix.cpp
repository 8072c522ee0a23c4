#include "cli/Interruption.h"

#include <csignal>
#include <stdexcept>

namespace qel {

namespace {

// A signal handler can reach nothing else.
volatile std::sig_atomic_t isRequested = 0;

void Request(int) { isRequested = 1; }

} // namespace

Interruption::Interruption()
    : formerInterrupt_(std::signal(SIGINT, Request)), formerTerminate_(std::signal(SIGTERM, Request)),
      formerHangup_(std::signal(SIGHUP, Request)) {}

Interruption::~Interruption() {
    std::signal(SIGINT, formerInterrupt_);
    std::signal(SIGTERM, formerTerminate_);
    std::signal(SIGHUP, formerHangup_);
}

void Interruption::Check(const char* message) const {
    if (isRequested != 0) {
        throw std::runtime_error(message);
    }
}

} // namespace qel
