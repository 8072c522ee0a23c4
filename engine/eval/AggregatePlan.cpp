#include "engine/eval/AggregatePlan.h"

#include "engine/storage/CodeColumn.h"
#include "qel/engine/EngineError.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qel::engine {

namespace {

/// With more pairs of ranges, one lookup per pair is not worth it.
constexpr std::size_t mostPairs = 64;

KeyRange Between(std::uint32_t one, std::uint32_t other) {
    return {std::min(one, other), std::max(one, other)};
}

/// Plans one query. An aggregate covers one set of codes in up to two key columns. When no aggregate covers
/// the whole sets, the query is split into pairs of ranges.
class AggregatePlan {
public:
    AggregatePlan(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                  BucketRounding rounding, FactAccessPlan& plan)
        : facts_(facts), aggregates_(*facts.Aggregates()), restrictions_(restrictions), measure_(measure),
          rounding_(rounding), plan_(plan) {}

    bool Make();

private:
    struct Pair {
        const Aggregate* aggregate; ///< null: read from facts
        CodeRanges first, second;
    };

    /// Splits the restrictions into those of the aggregate's key and the residuals. False when there are more
    /// key columns than an aggregate has.
    bool SplitRestrictions();
    /// The codes of a key column, or a dummy range when the query restricts fewer columns.
    CodeRanges CodesOf(std::size_t key) const {
        static constexpr KeyRange none{};
        return keys_[key] == nullptr ? CodeRanges(&none, 1) : keys_[key]->codes;
    }
    const Aggregate* Find(const KeyRange& first, const KeyRange& second) const;
    bool FindWhole();
    bool FindPairs();
    void AddRows(const Aggregate& aggregate);
    void AddPrefixSums(const Pair& pair);
    /// The buckets to read for a span of time; empty when reading facts alone is cheaper.
    KeyRange BucketsFor(KeyRange time) const;
    std::vector<Restriction> RestrictionsOf(const Pair& pair, CodeRanges time) const;

    const FactTable& facts_;
    const AggregateTable& aggregates_;
    std::span<const Restriction> restrictions_;
    std::size_t measure_;
    BucketRounding rounding_;
    std::array<const Restriction*, 2> keys_{};
    const Restriction* time_ = nullptr;
    std::vector<Restriction> residuals_; ///< on the packed key and the time
    std::vector<Pair> pairs_;
    FactAccessPlan& plan_;
};

bool AggregatePlan::Make() {
    if (!SplitRestrictions() || (!FindWhole() && !FindPairs())) {
        return false;
    }
    for (const Pair& pair : pairs_) {
        if (pair.aggregate == nullptr) {
            plan_.AddScan(RestrictionsOf(pair, time_ == nullptr ? CodeRanges() : time_->codes));
        } else if (pair.aggregate->keyCount == 0) {
            AddRows(*pair.aggregate);
        } else {
            AddPrefixSums(pair);
        }
    }
    return true;
}

bool AggregatePlan::SplitRestrictions() {
    const auto parts = aggregates_.PackedKeyColumns();
    residuals_.reserve(restrictions_.size());
    for (const Restriction& restriction : restrictions_) {
        const bool isTime = aggregates_.TimeColumn() == restriction.keyColumn;
        const bool isInKey =
            std::any_of(parts.begin(), parts.end(), [&](const AggregateTable::PackedKeyColumn& part) {
                return part.column == restriction.keyColumn;
            });
        if (isTime || isInKey) {
            time_ = isTime ? &restriction : time_;
            residuals_.push_back(restriction);
        } else if (keys_[1] == nullptr) {
            (keys_[0] == nullptr ? keys_[0] : keys_[1]) = &restriction;
        } else {
            return false;
        }
    }
    return true;
}

const Aggregate* AggregatePlan::Find(const KeyRange& first, const KeyRange& second) const {
    AggregateKey key;
    if (keys_[0] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[0]->keyColumn), first);
    }
    if (keys_[1] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[1]->keyColumn), second);
    }
    return aggregates_.Find(key);
}

bool AggregatePlan::FindWhole() {
    const auto setOf = [&](CodeRanges codes) {
        return codes.size() == 1 ? std::optional(codes.front()) : aggregates_.Groups().Find(codes);
    };
    const std::optional<KeyRange> first = setOf(CodesOf(0));
    const std::optional<KeyRange> second = setOf(CodesOf(1));
    const Aggregate* const aggregate = first && second ? Find(*first, *second) : nullptr;
    if (aggregate != nullptr) {
        pairs_.push_back({aggregate, CodesOf(0), CodesOf(1)});
    }
    return aggregate != nullptr;
}

bool AggregatePlan::FindPairs() {
    const CodeRanges first = CodesOf(0), second = CodesOf(1);
    if (first.size() > mostPairs || first.size() * second.size() > mostPairs ||
        first.size() * second.size() == 1) { // FindWhole has looked for it
        return false;
    }
    pairs_.reserve(first.size() * second.size());
    bool found = false;
    for (const KeyRange& a : first) {
        for (const KeyRange& b : second) {
            const Aggregate* const aggregate = Find(a, b);
            found = found || aggregate != nullptr;
            pairs_.push_back({aggregate, CodeRanges(&a, 1), CodeRanges(&b, 1)});
        }
    }
    return found;
}

void AggregatePlan::AddRows(const Aggregate& aggregate) {
    const Projection& projection = aggregates_.Rows();
    RowRange rows{aggregate.start, aggregate.start + aggregate.rows};
    if (aggregate.rows > facts_.RowCount() || rows.last < rows.first || rows.last > projection.RowCount()) {
        throw EngineError(ErrorKind::DamagedFile, "cube file: an aggregate lies outside its section");
    }
    const auto parts = aggregates_.PackedKeyColumns();
    const Restriction* const sorted =
        parts.empty() ? nullptr : FindRestriction(residuals_, parts.back().column);
    if (sorted != nullptr) { // the rows are sorted by the last column of the packed key
        const KeyColumn& column = facts_.KeyColumns()[sorted->keyColumn];
        const CodeColumn codes(projection.PackedColumn(column.packedColumn, rows), column);
        const std::size_t begin = codes.LowerBound(0, rows.Count(), sorted->codes.front().first);
        const std::size_t end = codes.LowerBound(begin, rows.Count(), sorted->codes.back().last);
        rows = {rows.first + begin, rows.first + end};
    }
    plan_.AddRows(projection, rows, residuals_);
}

void AggregatePlan::AddPrefixSums(const Pair& pair) {
    const auto buckets = aggregates_.TimeBuckets();
    const KeyRange always{buckets.front(), buckets.back()};
    std::vector<KeyRange> lacking, surplus; // parts of the span that the buckets miss or exceed
    const PrefixSumReader prefixSums(facts_, *pair.aggregate, residuals_, measure_);
    for (const KeyRange range : time_ == nullptr ? CodeRanges(&always, 1) : time_->codes) {
        const KeyRange read = BucketsFor(range);
        if (read.Count() == 0) {
            lacking.push_back(range);
            continue;
        }
        const KeyRange whole{buckets[read.first], buckets[read.last]};
        if (range.first != whole.first) {
            (range.first < whole.first ? lacking : surplus).push_back(Between(range.first, whole.first));
        }
        if (range.last != whole.last) {
            (whole.last < range.last ? lacking : surplus).push_back(Between(range.last, whole.last));
        }
        plan_.AddPrefixSums(prefixSums, read.first, read.last);
    }
    if (!lacking.empty()) {
        JoinDisjoint(lacking);
        plan_.AddScan(RestrictionsOf(pair, lacking));
    }
    if (!surplus.empty()) {
        JoinDisjoint(surplus);
        plan_.SubtractScan(RestrictionsOf(pair, surplus));
    }
}

KeyRange AggregatePlan::BucketsFor(KeyRange time) const {
    const auto buckets = aggregates_.TimeBuckets();
    const auto boundary = [&](std::uint32_t code, bool isFirst) {
        const auto next = std::lower_bound(buckets.begin(), buckets.end(), code);
        auto chosen = next;
        if (*next != code) {
            const std::uint32_t before = code - next[-1], after = *next - code;
            const bool isNext =
                rounding_ == BucketRounding::Within || before == after ? isFirst : after < before;
            chosen -= isNext ? 0 : 1;
        }
        return static_cast<std::uint32_t>(chosen - buckets.begin());
    };
    const KeyRange read{boundary(time.first, true), boundary(time.last, false)};
    if (read.first >= read.last) {
        return {};
    }
    const std::uint32_t beside =
        Between(time.first, buckets[read.first]).Count() + Between(time.last, buckets[read.last]).Count();
    return beside < time.Count() ? read : KeyRange{};
}

std::vector<Restriction> AggregatePlan::RestrictionsOf(const Pair& pair, CodeRanges time) const {
    std::vector<Restriction> restrictions;
    restrictions.reserve(restrictions_.size());
    for (const Restriction& residual : residuals_) {
        restrictions.push_back({residual.keyColumn, time_ != nullptr && residual.keyColumn == time_->keyColumn
                                                        ? time
                                                        : residual.codes});
    }
    if (keys_[0] != nullptr) {
        restrictions.push_back({keys_[0]->keyColumn, pair.first});
    }
    if (keys_[1] != nullptr) {
        restrictions.push_back({keys_[1]->keyColumn, pair.second});
    }
    return restrictions;
}

} // namespace

bool PlanAggregates(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                    BucketRounding rounding, FactAccessPlan& plan) {
    return AggregatePlan(facts, restrictions, measure, rounding, plan).Make();
}

} // namespace qel::engine
