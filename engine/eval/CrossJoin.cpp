#include "engine/eval/SetOperations.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>

namespace qel::engine {

namespace {

/// A key column with hierarchies in the tuples of both sides: their positions in the tuples.
struct SharedColumn {
    std::size_t dimension = 0;
    std::vector<std::size_t> leftPlaces, rightPlaces;
};

/// The key columns with hierarchies on both sides; they restrict the combinations.
std::vector<SharedColumn> FindSharedColumns(const MemberSpace& space, const Dimensionality& left,
                                            const Dimensionality& right) {
    const auto dimensionOf = [&](HierarchyId hierarchy) -> std::optional<std::size_t> {
        return space.KeyColumn(hierarchy) ? std::optional(space.Stored(hierarchy).DimensionIndex())
                                          : std::nullopt;
    };
    std::vector<SharedColumn> shared;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const std::optional<std::size_t> dimension = dimensionOf(left[i]);
        const auto known = std::find_if(shared.begin(), shared.end(), [&](const SharedColumn& column) {
            return dimension && column.dimension == *dimension;
        });
        if (known != shared.end()) {
            known->leftPlaces.push_back(i);
            continue;
        }
        SharedColumn column{dimension.value_or(0), {i}, {}};
        for (std::size_t j = 0; dimension && j < right.size(); ++j) {
            if (dimensionOf(right[j]) == dimension) {
                column.rightPlaces.push_back(j);
            }
        }
        if (!column.rightPlaces.empty()) {
            shared.push_back(std::move(column));
        }
    }
    return shared;
}

/// The codes common to all of a tuple's members at these positions; nothing when all of them are calculated.
class TupleCodes {
public:
    TupleCodes(const MemberSpace& space, const TupleSet& set, const std::vector<std::size_t>& places)
        : space_(space), set_(set), places_(places) {}

    std::optional<CodeRanges> Of(std::size_t tuple) {
        std::optional<CodeRanges> codes;
        for (const std::size_t place : places_) {
            const MemberRef member{set_.dimensionality[place], set_.At(tuple)[place]};
            if (IsCalculated(member.id)) {
                continue;
            }
            if (codes) {
                std::vector<KeyRange> common;
                Intersect(*codes, space_.Codes(member), common);
                common_ = std::move(common);
                codes = CodeRanges(common_);
            } else {
                codes = space_.Codes(member);
            }
        }
        return codes;
    }

private:
    const MemberSpace& space_;
    const TupleSet& set_;
    const std::vector<std::size_t>& places_;
    std::vector<KeyRange> common_;
};

/// Finds the tuples of a set that share a code with a given set of codes, without testing all of them.
class OverlapIndex {
public:
    OverlapIndex(const MemberSpace& space, const TupleSet& set, const std::vector<std::size_t>& places) {
        TupleCodes codes(space, set, places);
        for (std::size_t tuple = 0; tuple < set.Count(); ++tuple) {
            const std::optional<CodeRanges> ranges = codes.Of(tuple);
            if (!ranges) {
                unrestricted_.push_back(tuple);
                continue;
            }
            for (const KeyRange range : *ranges) {
                entries_.push_back({range, range.last, tuple});
            }
        }
        std::sort(entries_.begin(), entries_.end(),
                  [](const Entry& a, const Entry& b) { return a.range.first < b.range.first; });
        for (std::size_t i = 1; i < entries_.size(); ++i) {
            entries_[i].furthest = std::max(entries_[i].furthest, entries_[i - 1].furthest);
        }
    }

    /// Appends the tuples' numbers in the set's order.
    void Find(CodeRanges codes, std::vector<std::size_t>& found) const {
        found = unrestricted_;
        for (const KeyRange range : codes) {
            auto entry =
                std::lower_bound(entries_.begin(), entries_.end(), range.last,
                                 [](const Entry& e, std::uint32_t code) { return e.range.first < code; });
            while (entry != entries_.begin() && (--entry)->furthest > range.first) {
                if (entry->range.last > range.first) {
                    found.push_back(entry->tuple);
                }
            }
        }
        std::sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
    }

private:
    struct Entry {
        KeyRange range;
        std::uint32_t furthest; ///< the largest end up to this range
        std::size_t tuple;
    };
    std::vector<Entry> entries_;
    std::vector<std::size_t> unrestricted_;
};

void Join(const MemberSpace& space, const TupleSet& left, const TupleSet& right, TupleSet& result) {
    const std::vector<SharedColumn> shared =
        FindSharedColumns(space, left.dimensionality, right.dimensionality);
    std::vector<std::size_t> all(right.Count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    std::vector<OverlapIndex> indexes;
    std::vector<TupleCodes> codes;
    for (const SharedColumn& column : shared) {
        indexes.emplace_back(space, right, column.rightPlaces);
        codes.emplace_back(space, left, column.leftPlaces);
    }
    std::vector<std::size_t> partners;
    std::vector<std::size_t> found;
    std::vector<std::size_t> both;
    for (std::size_t i = 0; i < left.Count(); ++i) {
        bool isRestricted = false;
        for (std::size_t k = 0; k < shared.size(); ++k) {
            const std::optional<CodeRanges> ranges = codes[k].Of(i);
            if (!ranges) {
                continue;
            }
            indexes[k].Find(*ranges, found);
            if (isRestricted) {
                both.clear();
                std::set_intersection(partners.begin(), partners.end(), found.begin(), found.end(),
                                      std::back_inserter(both));
                partners.swap(both);
            } else {
                partners.swap(found);
                isRestricted = true;
            }
        }
        for (const std::size_t partner : isRestricted ? partners : all) {
            result.Append(left.At(i));
            result.Append(right.At(partner));
        }
    }
}

} // namespace

SetPtr MakeCrossJoin(Binder& binder, std::vector<SetPart> parts) {
    Dimensionality dimensionality;
    bool isConstant = true;
    for (const SetPart& part : parts) {
        if (part.set->GetDimensionality().empty()) { // {}, so there is no combination
            return MakeSet(true, {}, [](Evaluator&, TupleSet&) {});
        }
        for (const HierarchyId hierarchy : part.set->GetDimensionality()) {
            if (std::find(dimensionality.begin(), dimensionality.end(), hierarchy) != dimensionality.end()) {
                binder.Fail(part.node, fmt::format("the hierarchy {} stands on both sides of the cross join",
                                                   binder.Space().HierarchyUniqueName(hierarchy)));
            }
            dimensionality.push_back(hierarchy);
        }
        isConstant = isConstant && part.set->IsConstant();
    }
    return MakeSet(isConstant, std::move(dimensionality),
                   [parts = std::move(parts)](Evaluator& evaluator, TupleSet& result) {
                       TupleSet joined = parts.front().set->Evaluate(evaluator);
                       for (std::size_t i = 1; i < parts.size(); ++i) {
                           const TupleSet right = parts[i].set->Evaluate(evaluator);
                           TupleSet next{joined.dimensionality, {}};
                           next.dimensionality.insert(next.dimensionality.end(), right.dimensionality.begin(),
                                                      right.dimensionality.end());
                           Join(evaluator.Space(), joined, right, next);
                           joined = std::move(next);
                       }
                       result.Append(joined);
                   });
}

} // namespace qel::engine
