#include "qel/engine/PlanCache.h"

#include "engine/eval/StatementPlan.h"

#include <xxhash.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

namespace qel::engine {

namespace {

/// The same statement may run over several cubes of the file. The hash is kept: a lookup hashes no other key.
template <class Text>
struct KeyOf {
    const Cube* cube;
    Text statement;
    std::uint64_t hash;
};
using KeyView = KeyOf<std::string_view>;
using Key = KeyOf<std::string>;

struct Hash {
    using is_transparent = void;
    template <class Text>
    std::size_t operator()(const KeyOf<Text>& key) const {
        return static_cast<std::size_t>(key.hash);
    }
};

struct Equal {
    using is_transparent = void;
    template <class Left, class Right>
    bool operator()(const Left& left, const Right& right) const {
        return left.hash == right.hash && left.cube == right.cube && left.statement == right.statement;
    }
};

KeyView MakeKey(const Cube& cube, std::string_view statement) {
    const std::uint64_t hash = XXH3_64bits(statement.data(), statement.size());
    return {&cube, statement, hash ^ std::hash<const Cube*>()(&cube)};
}

} // namespace

class PlanCache::Plans {
public:
    explicit Plans(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    std::shared_ptr<const StatementPlan> Find(const KeyView& key);
    void Keep(const KeyView& key, std::shared_ptr<const StatementPlan> plan);
    std::size_t Count() const;

private:
    struct Generation {
        std::unordered_map<Key, std::shared_ptr<const StatementPlan>, Hash, Equal> plans;
        std::size_t bytes = 0;
    };

    std::size_t mostBytes_;
    mutable std::mutex mutex_;
    Generation recent_, older_; ///< when `recent_` has half of the memory, it takes the place of `older_`
};

std::shared_ptr<const StatementPlan> PlanCache::Plans::Find(const KeyView& key) {
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

void PlanCache::Plans::Keep(const KeyView& key, std::shared_ptr<const StatementPlan> plan) {
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

std::size_t PlanCache::Plans::Count() const {
    const std::lock_guard lock(mutex_);
    return recent_.plans.size() + older_.plans.size();
}

PlanCache::PlanCache(std::size_t mostBytes) : plans_(std::make_unique<Plans>(mostBytes)) {}

PlanCache::~PlanCache() = default;

Cellset PlanCache::Run(const Cube& cube, std::string_view statement) {
    const KeyView key = MakeKey(cube, statement);
    if (const std::shared_ptr<const StatementPlan> plan = plans_->Find(key)) {
        return plan->Run();
    }
    PlannedAnswer answer = RunAndPlan(cube, statement);
    if (answer.plan) {
        plans_->Keep(key, std::move(answer.plan));
    }
    return std::move(answer.cellset);
}

std::size_t PlanCache::Count() const { return plans_->Count(); }

} // namespace qel::engine
