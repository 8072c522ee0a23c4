#pragma once

#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/ServerOptions.h"

#include <cstddef>

namespace qel {

/// The memory that what is read from one answer may take. A short answer may describe very many rows.
class AnswerBudget {
public:
    explicit AnswerBudget(std::size_t bytes = ServerLimits().answerBytes) : left_(bytes) {}

    /// Raises AutomationError when that much is not left.
    void Take(std::size_t bytes) {
        if (bytes > left_) {
            throw AnswerTooLarge();
        }
        left_ -= bytes;
    }

private:
    std::size_t left_;
};

} // namespace qel
