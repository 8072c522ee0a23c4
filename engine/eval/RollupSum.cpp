#include "engine/eval/RollupSum.h"

#include "engine/EngineError.h"
#include "engine/eval/StripSum.h"
#include "engine/storage/CodeColumn.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qel::engine {

namespace {

/// More pairs of ranges than this are not worth a lookup each.
constexpr std::size_t mostPairs = 64;

/// One question to the rollups. A rollup answers for one set of codes in up to two key columns; what has none
/// as it is asked for is asked for range by range.
class RollupSum {
public:
    RollupSum(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure)
        : facts_(facts), rollups_(*facts.Rollups()), restrictions_(restrictions), measure_(measure) {}

    bool Run(FactSum& total);

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
    void Add(FactSum sum);
    void AddRows(const Rollup& rollup);
    void AddStrips(const Pair& pair);
    void AddScan(const Pair& pair, CodeRanges time);

    const FactTable& facts_;
    const RollupTable& rollups_;
    std::span<const Restriction> restrictions_;
    std::size_t measure_;
    std::array<const Restriction*, 2> keys_{};
    const Restriction* time_ = nullptr;
    std::vector<Restriction> tests_; ///< of the word and the time
    std::vector<Pair> pairs_;
    FactSum total_;
};

bool RollupSum::Run(FactSum& total) {
    if (!Sort() || (!FindWhole() && !FindPairs())) {
        return false;
    }
    for (const Pair& pair : pairs_) {
        if (pair.rollup == nullptr) {
            AddScan(pair, time_ == nullptr ? CodeRanges() : time_->codes);
        } else if (pair.rollup->strips == 0) {
            AddRows(*pair.rollup);
        } else {
            AddStrips(pair);
        }
    }
    total = total_;
    return true;
}

bool RollupSum::Sort() {
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

const Rollup* RollupSum::Find(const KeyRange& first, const KeyRange& second) const {
    RollupKey key;
    if (keys_[0] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[0]->keyColumn), first);
    }
    if (keys_[1] != nullptr) {
        key.Add(static_cast<std::uint16_t>(keys_[1]->keyColumn), second);
    }
    return rollups_.Find(key);
}

bool RollupSum::FindWhole() {
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

bool RollupSum::FindPairs() {
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

void RollupSum::Add(FactSum sum) {
    // Unsigned: a file that was tampered with may overflow, and must not be undefined.
    total_.sum = static_cast<std::int64_t>(static_cast<std::uint64_t>(total_.sum) +
                                           static_cast<std::uint64_t>(sum.sum));
    total_.rows += sum.rows;
}

void RollupSum::AddRows(const Rollup& rollup) {
    const Projection& projection = rollups_.Rows();
    RowRange rows{rollup.start, rollup.start + rollup.rows};
    if (rows.last < rows.first || rows.last > projection.RowCount()) {
        throw EngineError(ErrorKind::DamagedFile, "cube file: a rollup lies outside its section");
    }
    // The rows ascend by the word's leading column.
    if (!rollups_.WordColumns().empty()) {
        const std::size_t lead = rollups_.WordColumns().front().column;
        for (const Restriction& test : tests_) {
            if (test.keyColumn != lead) {
                continue;
            }
            const KeyColumn& column = facts_.KeyColumns()[lead];
            const CodeColumn codes(projection.Slot(column.slot, rows), column);
            const std::size_t begin = codes.LowerBound(0, rows.Count(), test.codes.front().first);
            const std::size_t end = codes.LowerBound(begin, rows.Count(), test.codes.back().last);
            rows = {rows.first + begin, rows.first + end};
        }
    }
    Add(SumRows(facts_, projection, rows, tests_, measure_));
}

void RollupSum::AddStrips(const Pair& pair) {
    const auto granules = rollups_.Granules();
    const KeyRange always{granules.front(), granules.back()};
    std::vector<KeyRange> edges; // of time, that no whole granule covers
    StripSum strips(facts_, *pair.rollup, tests_, measure_);
    for (const KeyRange range : time_ == nullptr ? CodeRanges(&always, 1) : time_->codes) {
        const auto first = std::lower_bound(granules.begin(), granules.end(), range.first);
        const auto last = std::upper_bound(granules.begin(), granules.end(), range.last) - 1;
        if (first >= last) {
            edges.push_back(range);
            continue;
        }
        if (range.first < *first) {
            edges.push_back({range.first, *first});
        }
        if (*last < range.last) {
            edges.push_back({*last, range.last});
        }
        Add(strips.Sum(static_cast<std::uint32_t>(first - granules.begin()),
                       static_cast<std::uint32_t>(last - granules.begin())));
    }
    if (!edges.empty()) {
        AddScan(pair, edges);
    }
}

void RollupSum::AddScan(const Pair& pair, CodeRanges time) {
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
    Add(ScanFacts(facts_, restrictions, measure_));
}

} // namespace

bool SumRollups(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure,
                FactSum& total) {
    return RollupSum(facts, restrictions, measure).Run(total);
}

} // namespace qel::engine
