#pragma once

#include "qel/engine/Cellset.h"
#include "qel/engine/Cube.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace qel::engine {

/// Runs statements over the cubes of one file and keeps the plans of those that ran last: a statement that
/// comes again has no name to look up. Values are not kept, every run reads the facts. A cube file never
/// changes, so a plan is valid for as long as the file is open. Safe for any number of threads.
class PlanCache {
public:
    /// Where addresses are short, the caches of several files must leave room for the rest of the process.
    static constexpr std::size_t usualMost = sizeof(void*) < 8 ? 16U << 20U : 128U << 20U;

    /// The plans and their statements take about `mostBytes` of memory at most.
    explicit PlanCache(std::size_t mostBytes = usualMost);
    ~PlanCache();
    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    /// As RunStatement. The cube must outlive this object.
    Cellset Run(const Cube& cube, std::string_view statement);
    /// How many plans are kept.
    std::size_t Count() const;

private:
    class Plans;

    std::unique_ptr<Plans> plans_;
};

} // namespace qel::engine
