#pragma once

#include "platform/data/ObjectErrors.h"

#include <optional>
#include <string>
#include <utility>

namespace qel {

/// The answer that an object holds from Open to Close. Wrong uses raise 3704 and 3705.
template <class Answer>
class HeldAnswer {
public:
    explicit HeldAnswer(std::string provider, std::optional<Answer> answer = std::nullopt)
        : provider_(std::move(provider)), answer_(std::move(answer)) {}

    /// `run` gives the answer; it is not called while one is held.
    template <class Run>
    void Open(const Run& run) {
        if (answer_) {
            throw ObjectOpenError(provider_);
        }
        answer_ = run();
    }

    void Close() {
        Get();
        answer_.reset();
    }

    const Answer& Get() const {
        if (!answer_) {
            throw ObjectClosedError(provider_);
        }
        return *answer_;
    }

private:
    std::string provider_;
    std::optional<Answer> answer_;
};

} // namespace qel
