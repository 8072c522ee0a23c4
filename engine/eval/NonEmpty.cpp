#include "engine/eval/NonEmpty.h"

#include "engine/eval/FactScan.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// With more combinations, one scan per combination is not worth it.
constexpr std::size_t combinationLimit = 64;

/// A key column that the axis's members restrict, and which of its codes occur in the facts.
struct AxisColumn {
    std::size_t keyColumn = 0;
    std::vector<std::size_t> places; ///< positions of its hierarchies in the axis's tuples
    std::vector<std::uint8_t> marks;
    std::vector<std::uint32_t> marksBefore; ///< prefix counts: marked codes below each code

    bool HasMark(CodeRanges codes) const {
        return std::any_of(codes.begin(), codes.end(), [&](KeyRange range) {
            return marksBefore[range.last] > marksBefore[range.first];
        });
    }
};

/// Tests the positions of an axis for one combination of the other axes.
class Presence {
public:
    Presence(const MemberSpace& space, const TupleSet& axis) : space_(space), axis_(axis) {
        for (std::size_t place = 0; place < axis.dimensionality.size(); ++place) {
            const auto keyColumn = space.KeyColumn(axis.dimensionality[place]);
            if (!keyColumn) {
                continue;
            }
            auto column = std::find_if(columns_.begin(), columns_.end(), [&](const AxisColumn& known) {
                return known.keyColumn == *keyColumn;
            });
            if (column == columns_.end()) {
                columns_.push_back({*keyColumn, {}, {}, {}});
                column = columns_.end() - 1;
            }
            column->places.push_back(place);
        }
    }

    /// Marks the codes that occur in the cell's facts.
    void Scan(const FactCell& cell) {
        const FactTable& facts = space_.GetCube().Facts();
        restrictions_ = cell.restrictions;
        hasFacts_ = AnyFact(facts, restrictions_);
        for (AxisColumn& column : columns_) {
            const std::size_t codes = facts.KeyColumns()[column.keyColumn].codes;
            column.marks.assign(codes, 0);
            column.marksBefore.assign(codes + 1, 0);
            if (!hasFacts_) {
                continue;
            }
            MarkCodes(facts, restrictions_, column.keyColumn, column.marks);
            for (std::size_t code = 0; code < codes; ++code) {
                column.marksBefore[code + 1] = column.marksBefore[code] + column.marks[code];
            }
        }
    }

    bool HasFacts(std::size_t position) {
        if (!hasFacts_) {
            return false;
        }
        cell_.Clear();
        cell_.restrictions = restrictions_;
        for (const AxisColumn& column : columns_) {
            FactCell own;
            for (const std::size_t place : column.places) {
                const MemberRef member{axis_.dimensionality[place], axis_.At(position)[place]};
                own.Restrict(column.keyColumn, space_.Codes(member));
                cell_.Restrict(column.keyColumn, space_.Codes(member));
            }
            if (!column.HasMark(own.restrictions.front().codes)) {
                return false;
            }
        }
        // With one column the marks suffice. With several, each may have facts although no fact has both
        // codes.
        return columns_.size() < 2 || AnyFact(space_.GetCube().Facts(), cell_.restrictions);
    }

private:
    const MemberSpace& space_;
    const TupleSet& axis_;
    std::vector<AxisColumn> columns_;
    std::vector<Restriction> restrictions_;
    FactCell cell_;
    bool hasFacts_ = false;
};

/// Calls visit() for every combination of the sets' tuples, with the evaluator positioned on it; stops when
/// it returns false.
template <class Visit>
bool ForEachCombination(Evaluator& evaluator, std::span<const TupleSet* const> sets, const Visit& visit) {
    if (sets.empty()) {
        return visit();
    }
    for (std::size_t i = 0; i < sets.front()->Count(); ++i) {
        const Evaluator::Position position(evaluator, sets.front()->dimensionality, sets.front()->At(i));
        if (!ForEachCombination(evaluator, sets.subspan(1), visit)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool RemoveEmptyPositions(Evaluator& evaluator, std::span<const TupleSet* const> others, TupleSet& axis) {
    std::size_t combinations = 1;
    for (const TupleSet* other : others) {
        if (other->Count() > combinationLimit || (combinations *= other->Count()) > combinationLimit) {
            return false;
        }
    }
    if (std::any_of(axis.ids.begin(), axis.ids.end(), IsCalculated)) {
        return false;
    }
    std::vector<bool> isKept(axis.Count());
    Presence presence(evaluator.Space(), axis);
    if (axis.Count() == 0) {
        return true;
    }
    const Evaluator::Position anyOfAxis(evaluator, axis.dimensionality,
                                        axis.At(0)); // any position without calculated members will do
    std::size_t scans = 0;
    const auto mark = [&](const FactCell& cell) {
        if (++scans > combinationLimit) {
            return;
        }
        presence.Scan(cell);
        for (std::size_t i = 0; i < isKept.size(); ++i) {
            isKept[i] = isKept[i] || presence.HasFacts(i);
        }
    };
    const bool readsFacts = ForEachCombination(evaluator, others, [&] {
        return evaluator.ReadsFacts(axis.dimensionality, mark) && scans <= combinationLimit;
    });
    if (!readsFacts) {
        return false;
    }
    TupleSet kept{axis.dimensionality, {}};
    for (std::size_t i = 0; i < isKept.size(); ++i) {
        if (isKept[i]) {
            kept.Append(axis.At(i));
        }
    }
    axis.ids = std::move(kept.ids);
    return true;
}

} // namespace qel::engine
