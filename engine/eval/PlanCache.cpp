#include "qel/engine/PlanCache.h"

#include "engine/eval/StatementPlan.h"

#include <xxhash.h>

#include <functional>
#include <utility>

namespace qel::engine {

PlanCache::~PlanCache() = default;

PlanCache::View PlanCache::MakeKey(const Cube& cube, std::string_view statement) {
    const std::uint64_t hash = XXH3_64bits(statement.data(), statement.size());
    return {&cube, statement, hash ^ std::hash<const Cube*>()(&cube)};
}

Cellset PlanCache::Run(const Cube& cube, std::string_view statement) {
    const View key = MakeKey(cube, statement);
    if (const std::shared_ptr<const StatementPlan> plan = Find(key)) {
        return plan->Run();
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

std::shared_ptr<const StatementPlan> PlanCache::Find(const View& key) {
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

void PlanCache::Keep(const View& key, std::shared_ptr<const StatementPlan> plan) {
    constexpr std::size_t perEntry = 128; // overhead of the hash table
    const std::size_t bytes = key.statement.size() + plan->Bytes() + perEntry;
    if (bytes > mostBytes_ / 2) {
        return;
    }
    Generation evicted; // freed after the lock is released
    const std::lock_guard lock(mutex_);
    if (recent_.bytes + bytes > mostBytes_ / 2) {
        evicted = std::exchange(older_, std::exchange(recent_, Generation{}));
    }
    if (recent_.plans.emplace(Key{key.cube, std::string(key.statement), key.hash}, std::move(plan)).second) {
        recent_.bytes += bytes;
    }
}

} // namespace qel::engine
