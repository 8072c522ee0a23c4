#pragma once

#include "platform/data/DataObserver.h"

#include <vector>

namespace qel {

/// Writes down what providers are asked, in order.
struct Recording : DataObserver {
    std::vector<std::string> connectionTexts; ///< of every opening, failed ones included
    std::vector<std::string> statements;      ///< exactly as they were sent
    std::chrono::nanoseconds openTime{};      ///< spent opening connections

    void OnOpening(const std::string& connectionText, std::chrono::nanoseconds time) override {
        connectionTexts.push_back(connectionText);
        openTime += time;
    }
    void OnStatement(const std::string& statement) override { statements.push_back(statement); }
};

} // namespace qel
