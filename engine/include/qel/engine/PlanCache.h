#pragma once

#include "qel/engine/Cellset.h"
#include "qel/engine/Cube.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace qel::engine {

/// Runs statements over the cubes of one file and caches the plans of recent ones, so that repeating a
/// statement resolves no names again. Values are not cached: every run reads the facts. Plans never go stale,
/// because an open cube file does not change. Thread-safe.
class PlanCache {
public:
    /// Smaller on 32-bit systems, where several caches must leave address space for the rest of the process.
    static constexpr std::size_t defaultBytes = sizeof(void*) < 8 ? 16U << 20U : 128U << 20U;

    /// `mostBytes` limits the approximate memory of plans and their statements.
    explicit PlanCache(std::size_t mostBytes = defaultBytes);
    ~PlanCache();
    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    /// Same as RunStatement. The cube must outlive this object.
    Cellset Run(const Cube& cube, std::string_view statement);
    /// The number of cached plans.
    std::size_t Count() const;

private:
    class Plans;

    std::unique_ptr<Plans> plans_;
};

} // namespace qel::engine
