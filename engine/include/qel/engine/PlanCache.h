#pragma once

#include "qel/engine/Cellset.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qel::engine {

class StatementPlan;

/// Caches plans of recent statements over the cubes of one file, so that recalculating a sheet resolves no
/// names again. Values are not cached: every run reads the facts. Plans never go stale, because an open cube
/// file does not change. Thread-safe.
class PlanCache {
public:
    /// Smaller on 32-bit systems, where several caches must leave address space for the spreadsheet.
    static constexpr std::size_t defaultBytes = sizeof(void*) < 8 ? 16U << 20U : 128U << 20U;

    /// `mostBytes` limits the approximate memory of plans and their statements.
    explicit PlanCache(std::size_t mostBytes = defaultBytes) : mostBytes_(mostBytes) {}
    ~PlanCache();
    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    /// Same as RunStatement. The cube must outlive this object.
    Cellset Run(const Cube& cube, std::string_view statement);
    /// The number of cached plans.
    std::size_t Count() const;

private:
    /// The key includes the cube, because several cubes of a file may get the same statement. It carries its
    /// hash, so a lookup hashes once.
    template <class Text>
    struct KeyOf {
        const Cube* cube;
        Text statement;
        std::uint64_t hash;
    };
    using View = KeyOf<std::string_view>;
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
    using Plans = std::unordered_map<Key, std::shared_ptr<const StatementPlan>, Hash, Equal>;
    struct Generation {
        Plans plans;
        std::size_t bytes = 0;
    };

    static View MakeKey(const Cube& cube, std::string_view statement);
    std::shared_ptr<const StatementPlan> Find(const View& key);
    void Keep(const View& key, std::shared_ptr<const StatementPlan> plan);

    std::size_t mostBytes_;
    mutable std::mutex mutex_;
    Generation recent_, older_; ///< when `recent_` fills half the memory, it replaces `older_`
};

} // namespace qel::engine
