#include "engine/eval/RollupPlan.h"

#include "engine/EngineError.h"
#include "engine/storage/CodeColumn.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qel::engine {

namespace {

/// More pairs of ranges than this are not worth a lookup each.
constexpr std::size_t mostPairs = 64;

KeyRange Between(std::uint32_t one, std::uint32_t other) {
    return {std::min(one, other), std::max(one, other)};
}

/// One question to the rollups. A rollup answers for one set of codes in up to two key columns; what has none
/// as it is asked for is asked for range by range.
class RollupPlan {
public:
    RollupPlan(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
               StripEnds ends, FactReading& reading)
        : facts_(facts), rollups_(*facts.Rollups()), restrictions_(restrictions), measure_(measure),
          ends_(ends), reading_(reading) {}

    bool Make();

private:
    struct Pair {
        const Rollup* rollup; ///< null when there is none
        CodeRanges first, second;
    };

    /// Sorts the restrictions into keys, the word's and the time's. False when there are more keys than a
    /// rollup has.
    bool Sort();
    /// What a key is restricted to; of a key that there is not, one range that nothing is done with.
    CodeRanges CodesOf(std::size_t key) const {
        static constexpr KeyRange none{};
        return keys_[key] == nullptr ? CodeRanges(&none, 1) : keys_[key]->codes;
    }
    const Rollup* Find(const KeyRange& first, const KeyRange& second) const;
    bool FindWhole();
    bool FindPairs();
    void AddRows(const Rollup& rollup);
    void AddStrips(const Pair& pair);
    /// The whole granules that are read for a range of time; none when reading facts alone is less.
    KeyRange GranulesFor(KeyRange time) const;
    std::vector<Restriction> RestrictionsOf(const Pair& pair, CodeRanges time) const;

    const FactTable& facts_;
    const RollupTable& rollups_;
    std::span<const Restriction> restrictions_;
    std::size_t measure_;
    StripEnds ends_;
    std::array<const Restriction*, 2> keys_{};
    const Restriction* time_ = nullptr;
    std::vector<Restriction> tests_; ///< of the word and the time
    std::vector<Pair> pairs_;
    FactReading& reading_;
};

bool RollupPlan::Make() {
    if (!Sort() || (!FindWhole() && !FindPairs())) {
        return false;
    }
    for (const Pair& pair : pairs_) {
        if (pair.rollup == nullptr) {
            reading_.AddScan(RestrictionsOf(pair, time_ == nullptr ? CodeRanges() : time_->codes));
        } else if (pair.rollup->strips == 0) {
            AddRows(*pair.rollup);
        } else {
            AddStrips(pair);
        }
    }
    return true;
}

bool RollupPlan::Sort() {
    const auto words = rollups_.WordColumns();
    tests_.reserve(restrictions_.size());
    for (const Restriction& restriction : restrictions_) {
        const bool isTime = rollups_.TimeColumn() == restriction.keyColumn;
        const bool isWord = std::any_of(words.begin(), words.end(), [&](const RollupTable::WordColumn& word) {
            return word.column == restriction.keyColumn;
        });
        if (isTime || isWord) {
            time_ = isTime ? &restriction : time_;
            tests_.push_back(restriction);
        } else if (keys_[1] == nullptr) {
            (keys_[0] == nullptr ? keys_[0] : keys_[1]) = &restriction;
        } else {
            return false;
        }
    }
    return true;
}

const Rollup* RollupPlan::Find(const KeyRange& first, const KeyRange& second) const {
    RollupKey key;
    if (keys_[0] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[0]->keyColumn), first);
    }
    if (keys_[1] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[1]->keyColumn), second);
    }
    return rollups_.Find(key);
}

bool RollupPlan::FindWhole() {
    const auto setOf = [&](CodeRanges codes) {
        return codes.size() == 1 ? std::optional(codes.front()) : rollups_.Groups().Find(codes);
    };
    const std::optional<KeyRange> first = setOf(CodesOf(0));
    const std::optional<KeyRange> second = setOf(CodesOf(1));
    const Rollup* const rollup = first && second ? Find(*first, *second) : nullptr;
    if (rollup != nullptr) {
        pairs_.push_back({rollup, CodesOf(0), CodesOf(1)});
    }
    return rollup != nullptr;
}

bool RollupPlan::FindPairs() {
    const CodeRanges first = CodesOf(0), second = CodesOf(1);
    if (first.size() > mostPairs || first.size() * second.size() > mostPairs ||
        first.size() * second.size() == 1) { // which was looked for as a whole
        return false;
    }
    pairs_.reserve(first.size() * second.size());
    bool found = false;
    for (const KeyRange& a : first) {
        for (const KeyRange& b : second) {
            const Rollup* const rollup = Find(a, b);
            found = found || rollup != nullptr;
            pairs_.push_back({rollup, CodeRanges(&a, 1), CodeRanges(&b, 1)});
        }
    }
    return found;
}

void RollupPlan::AddRows(const Rollup& rollup) {
    const Projection& projection = rollups_.Rows();
    RowRange rows{rollup.start, rollup.start + rollup.rows};
    if (rollup.rows > facts_.RowCount() || rows.last < rows.first || rows.last > projection.RowCount()) {
        throw EngineError(ErrorKind::DamagedFile, "cube file: a rollup lies outside its section");
    }
    const auto words = rollups_.WordColumns();
    const Restriction* const sorted = words.empty() ? nullptr : FindRestriction(tests_, words.back().column);
    if (sorted != nullptr) { // the rows ascend by the word's last column
        const KeyColumn& column = facts_.KeyColumns()[sorted->keyColumn];
        const CodeColumn codes(projection.Slot(column.slot, rows), column);
        const std::size_t begin = codes.LowerBound(0, rows.Count(), sorted->codes.front().first);
        const std::size_t end = codes.LowerBound(begin, rows.Count(), sorted->codes.back().last);
        rows = {rows.first + begin, rows.first + end};
    }
    reading_.AddRows(projection, rows, tests_);
}

void RollupPlan::AddStrips(const Pair& pair) {
    const auto granules = rollups_.Granules();
    const KeyRange always{granules.front(), granules.back()};
    std::vector<KeyRange> lacking, surplus; // times beside the whole granules
    const StripSum strips(facts_, *pair.rollup, tests_, measure_);
    for (const KeyRange range : time_ == nullptr ? CodeRanges(&always, 1) : time_->codes) {
        const KeyRange read = GranulesFor(range);
        if (read.Count() == 0) {
            lacking.push_back(range);
            continue;
        }
        const KeyRange whole{granules[read.first], granules[read.last]};
        if (range.first != whole.first) {
            (range.first < whole.first ? lacking : surplus).push_back(Between(range.first, whole.first));
        }
        if (range.last != whole.last) {
            (whole.last < range.last ? lacking : surplus).push_back(Between(range.last, whole.last));
        }
        reading_.AddStrips(strips, read.first, read.last);
    }
    if (!lacking.empty()) {
        JoinDisjoint(lacking);
        reading_.AddScan(RestrictionsOf(pair, lacking));
    }
    if (!surplus.empty()) {
        JoinDisjoint(surplus);
        reading_.SubtractScan(RestrictionsOf(pair, surplus));
    }
}

KeyRange RollupPlan::GranulesFor(KeyRange time) const {
    const auto granules = rollups_.Granules();
    const auto boundary = [&](std::uint32_t code, bool isFirst) {
        const auto next = std::lower_bound(granules.begin(), granules.end(), code);
        auto chosen = next;
        if (*next != code) {
            const std::uint32_t before = code - next[-1], after = *next - code;
            const bool isNext = ends_ == StripEnds::Within || before == after ? isFirst : after < before;
            chosen -= isNext ? 0 : 1;
        }
        return static_cast<std::uint32_t>(chosen - granules.begin());
    };
    const KeyRange read{boundary(time.first, true), boundary(time.last, false)};
    if (read.first >= read.last) {
        return {};
    }
    const std::uint32_t beside =
        Between(time.first, granules[read.first]).Count() + Between(time.last, granules[read.last]).Count();
    return beside < time.Count() ? read : KeyRange{};
}

std::vector<Restriction> RollupPlan::RestrictionsOf(const Pair& pair, CodeRanges time) const {
    std::vector<Restriction> restrictions;
    restrictions.reserve(restrictions_.size());
    for (const Restriction& test : tests_) {
        restrictions.push_back(
            {test.keyColumn, time_ != nullptr && test.keyColumn == time_->keyColumn ? time : test.codes});
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

bool PlanRollups(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                 StripEnds ends, FactReading& reading) {
    return RollupPlan(facts, restrictions, measure, ends, reading).Make();
}

} // namespace qel::engine
