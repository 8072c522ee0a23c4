#include "engine/eval/PlanCache.h"

#include "engine/eval/StatementPlan.h"

#include <cstring>
#include <utility>

namespace qel::engine {

namespace {

/// The cubes of one file may be asked the same.
std::string KeyOf(const Cube& cube, const std::string& statement) {
    const Cube* const address = &cube;
    std::string key(sizeof address, '\0');
    std::memcpy(key.data(), &address, sizeof address);
    return key += statement;
}

} // namespace

PlanCache::~PlanCache() = default;

Cellset PlanCache::Run(const Cube& cube, const std::string& statement) {
    const std::string key = KeyOf(cube, statement);
    if (const std::shared_ptr<const StatementPlan> plan = Find(key)) {
        return plan->Run(cube);
    }
    PlannedAnswer answer = RunAndPlan(cube, statement);
    if (answer.plan) {
        Keep(key, std::move(answer.plan));
    }
    return std::move(answer.cellset);
}

std::size_t PlanCache::Count() const {
    const std::lock_guard lock(mutex_);
    return recent_.plans.size() + older_.plans.size();
}

std::shared_ptr<const StatementPlan> PlanCache::Find(const std::string& key) {
    std::shared_ptr<const StatementPlan> plan;
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = recent_.plans.find(key); found != recent_.plans.end()) {
            return found->second;
        }
        const auto found = older_.plans.find(key);
        if (found == older_.plans.end()) {
            return nullptr;
        }
        plan = std::move(found->second);
        older_.plans.erase(found);
    }
    Keep(key, plan);
    return plan;
}

void PlanCache::Keep(const std::string& key, std::shared_ptr<const StatementPlan> plan) {
    constexpr std::size_t perEntry = 128; // of the table itself
    const std::size_t bytes = key.size() + plan->Bytes() + perEntry;
    const std::lock_guard lock(mutex_);
    if (recent_.bytes + bytes > mostBytes_ / 2) {
        older_ = std::exchange(recent_, Generation{});
    }
    if (recent_.plans.emplace(key, std::move(plan)).second) {
        recent_.bytes += bytes;
    }
}

} // namespace qel::engine
