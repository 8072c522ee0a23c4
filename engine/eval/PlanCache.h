#pragma once

#include "engine/eval/Query.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace qel::engine {

class StatementPlan;

/// Remembers the plans of the statements that were run last over the cubes of one file, so that a sheet that
/// is calculated again has no name to look up. Values are not remembered: every run reads the facts. A cube
/// file never changes, so a plan is right for as long as the file is open. Safe for any number of threads.
class PlanCache {
public:
    /// Plans, with their statements, take about so much memory at most.
    explicit PlanCache(std::size_t mostBytes = 64U << 20U) : mostBytes_(mostBytes) {}
    ~PlanCache();
    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    /// As RunStatement. The cube must outlive this object.
    Cellset Run(const Cube& cube, const std::string& statement);
    /// How many plans are remembered.
    std::size_t Count() const;

private:
    using Plans = std::unordered_map<std::string, std::shared_ptr<const StatementPlan>>;
    struct Generation {
        Plans plans;
        std::size_t bytes = 0;
    };

    std::shared_ptr<const StatementPlan> Find(const std::string& key);
    void Keep(const std::string& key, std::shared_ptr<const StatementPlan> plan);

    std::size_t mostBytes_;
    mutable std::mutex mutex_;
    Generation recent_, older_; ///< when `recent_` has half of the memory, it takes the place of `older_`
};

} // namespace qel::engine
