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

/// Remembers the plans of the statements that were run last over the cubes of one file, so that a sheet that
/// is calculated again has no name to look up. Values are not remembered: every run reads the facts. A cube
/// file never changes, so a plan is right for as long as the file is open. Safe for any number of threads.
class PlanCache {
public:
    /// Where addresses are short, several cubes' plans must leave room for the spreadsheet.
    static constexpr std::size_t usualMost = sizeof(void*) < 8 ? 16U << 20U : 128U << 20U;

    /// Plans, with their statements, take about so much memory at most.
    explicit PlanCache(std::size_t mostBytes = usualMost) : mostBytes_(mostBytes) {}
    ~PlanCache();
    PlanCache(const PlanCache&) = delete;
    PlanCache& operator=(const PlanCache&) = delete;

    /// As RunStatement. The cube must outlive this object.
    Cellset Run(const Cube& cube, std::string_view statement);
    /// How many plans are remembered.
    std::size_t Count() const;

private:
    /// The cubes of one file may be asked the same. A key knows its hash: looking for one hashes no other.
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
    Generation recent_, older_; ///< when `recent_` has half of the memory, it takes the place of `older_`
};

} // namespace qel::engine
