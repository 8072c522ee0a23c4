#pragma once

#include "wizard/WizardContext.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// The words of the question, by their numbers among the component's strings.
struct CallQuestionTexts {
    std::int32_t caption, question;
};

/// Asks which of several calls in a formula is meant. Nullopt when the person cancels.
std::optional<std::size_t> AskWhichCall(const WizardContext& context, const CallQuestionTexts& texts,
                                        const std::vector<std::string>& calls);

} // namespace qel
