#pragma once

#include <chrono>
#include <ostream>
#include <string>

namespace qel {

/// One line on a terminal of so many columns that shows a step's share done; removed when the work ends. Does
/// nothing with 0 columns.
class ProgressBar {
public:
    ProgressBar(std::ostream& output, int columns) : output_(output), columns_(columns) {}
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// `share` is from 0 to 1.
    void Show(const std::string& step, double share);

private:
    std::ostream& output_;
    int columns_;
    std::string shown_;
    std::chrono::steady_clock::time_point lastShown_;
};

} // namespace qel
