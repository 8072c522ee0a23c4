#pragma once

#include <chrono>
#include <ostream>
#include <string>

namespace qel {

/// One line on a terminal that shows a step's share done; removed when the work ends. Does nothing when the
/// output is no terminal.
class ProgressBar {
public:
    ProgressBar(std::ostream& output, bool isTerminal) : output_(output), isTerminal_(isTerminal) {}
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `share` is from 0 to 1.
    void Show(const std::string& step, double share);

private:
    std::ostream& output_;
    bool isTerminal_;
    std::string shown_;
    std::chrono::steady_clock::time_point lastShown_;
};

} // namespace qel
