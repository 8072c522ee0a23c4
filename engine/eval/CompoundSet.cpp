#include "engine/eval/CompoundSet.h"

#include "engine/eval/DistinctTuples.h"
#include "qel/engine/EngineError.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace qel::engine {

namespace {

using Ranges = std::vector<KeyRange>;

/// Boxes of tuples that overlap, each of which is held against all others, beyond this are refused.
constexpr std::size_t overlapLimit = 20'000;

void AppendBytes(CodeRanges ranges, std::string& text) {
    const std::size_t count = ranges.size();
    text.append(reinterpret_cast<const char*>(&count), sizeof count);
    text.append(reinterpret_cast<const char*>(ranges.data()), ranges.size_bytes());
}

/// Makes one box of those that differ in one column alone.
void MergeAlong(std::size_t column, std::vector<RegionBox>& boxes) {
    std::vector<RegionBox> merged;
    std::unordered_map<std::string, std::size_t> known;
    for (RegionBox& box : boxes) {
        std::string others(reinterpret_cast<const char*>(&box.measure), sizeof box.measure);
        for (std::size_t i = 0; i < box.codes.size(); ++i) {
            if (i != column) {
                AppendBytes(box.codes[i], others);
            }
        }
        const auto [entry, isNew] = known.emplace(std::move(others), merged.size());
        if (isNew) {
            merged.push_back(std::move(box));
        } else {
            Ranges& codes = merged[entry->second].codes[column];
            codes.insert(codes.end(), box.codes[column].begin(), box.codes[column].end());
        }
    }
    for (RegionBox& box : merged) {
        JoinRanges(box.codes[column]);
    }
    boxes = std::move(merged);
}

/// True when any two boxes have the same codes of this column, or none in common.
bool IsPartitioned(std::size_t column, const std::vector<RegionBox>& boxes) {
    std::unordered_set<std::string> known;
    Ranges all;
    for (const RegionBox& box : boxes) {
        std::string codes;
        AppendBytes(box.codes[column], codes);
        if (known.insert(std::move(codes)).second) {
            all.insert(all.end(), box.codes[column].begin(), box.codes[column].end());
        }
    }
    return JoinDisjoint(all);
}

/// Appends boxes that together are what `box` has and `other` lacks.
void AppendRest(RegionBox box, const RegionBox& other, std::vector<RegionBox>& rest) {
    bool overlap = box.measure == other.measure;
    for (std::size_t i = 0; i < box.codes.size() && overlap; ++i) {
        overlap = Intersects(box.codes[i], other.codes[i]);
    }
    if (!overlap) {
        rest.push_back(std::move(box));
        return;
    }
    for (std::size_t i = 0; i < box.codes.size(); ++i) {
        Ranges outside = Without(box.codes[i], other.codes[i]);
        Ranges inside;
        Intersect(box.codes[i], other.codes[i], inside);
        if (!outside.empty()) {
            rest.push_back(box);
            rest.back().codes[i] = std::move(outside);
        }
        box.codes[i] = std::move(inside);
    }
}

void MakeDisjoint(std::vector<RegionBox>& boxes) {
    std::vector<RegionBox> disjoint;
    for (RegionBox& box : boxes) {
        std::vector<RegionBox> pieces;
        pieces.push_back(std::move(box));
        for (std::size_t i = 0; i < disjoint.size() && !pieces.empty(); ++i) {
            std::vector<RegionBox> rest;
            for (RegionBox& piece : pieces) {
                AppendRest(std::move(piece), disjoint[i], rest);
            }
            pieces = std::move(rest);
        }
        std::move(pieces.begin(), pieces.end(), std::back_inserter(disjoint));
        if (disjoint.size() > overlapLimit) {
            throw EngineError(ErrorKind::TooLarge,
                              "the tuples of a slicer or of Aggregate overlap in too many ways");
        }
    }
    boxes = std::move(disjoint);
}

/// Makes the region of the tuples at some places.
class RegionMaker {
public:
    RegionMaker(const MemberSpace& space, const TupleSet& tuples, const std::vector<bool>& places)
        : space_(space) {
        for (std::size_t place = 0; place < places.size(); ++place) {
            if (places[place]) {
                places_.push_back(place);
                hierarchies_.push_back(tuples.dimensionality[place]);
            }
        }
        DistinctTuples calculated(hierarchies_);
        DistinctTuples stored(hierarchies_);
        std::vector<MemberId> tuple(places_.size());
        for (std::size_t i = 0; i < tuples.Count(); ++i) {
            for (std::size_t k = 0; k < places_.size(); ++k) {
                tuple[k] = tuples.At(i)[places_[k]];
            }
            const bool isStored = std::none_of(tuple.begin(), tuple.end(), IsCalculated);
            (isStored ? stored : calculated).Add(tuple);
        }
        stored_.dimensionality = hierarchies_;
        stored.AppendTo(stored_);
        region_.calculated.dimensionality = hierarchies_;
        calculated.AppendTo(region_.calculated);
    }

    FactRegion Make() {
        for (const HierarchyId hierarchy : hierarchies_) {
            const std::optional<std::size_t> column = space_.KeyColumn(hierarchy);
            if (column && ColumnOf(*column) == region_.keyColumns.size()) {
                region_.keyColumns.push_back(*column);
            }
        }
        for (std::size_t i = 0; i < stored_.Count(); ++i) {
            AddBox(stored_.At(i));
        }
        bool isPartitioned = true;
        for (std::size_t column = 0; column < region_.keyColumns.size(); ++column) {
            isPartitioned = isPartitioned && IsPartitioned(column, region_.boxes);
        }
        for (std::size_t column = 0; column < region_.keyColumns.size(); ++column) {
            MergeAlong(column, region_.boxes);
        }
        if (region_.keyColumns.empty()) {
            RemoveRepeatedMeasures();
        }
        if (!isPartitioned) {
            MakeDisjoint(region_.boxes);
        }
        return std::move(region_);
    }

private:
    std::size_t ColumnOf(std::size_t keyColumn) const {
        const auto found = std::find(region_.keyColumns.begin(), region_.keyColumns.end(), keyColumn);
        return static_cast<std::size_t>(found - region_.keyColumns.begin());
    }

    void AddBox(std::span<const MemberId> tuple) {
        RegionBox box;
        box.codes.resize(region_.keyColumns.size());
        std::vector<bool> isSet(region_.keyColumns.size());
        for (std::size_t k = 0; k < tuple.size(); ++k) {
            if (space_.IsMeasures(hierarchies_[k])) {
                box.measure = tuple[k];
            }
            const std::optional<std::size_t> keyColumn = space_.KeyColumn(hierarchies_[k]);
            if (!keyColumn) {
                continue;
            }
            const std::size_t column = ColumnOf(*keyColumn);
            const CodeRanges codes = space_.Codes({hierarchies_[k], tuple[k]});
            if (isSet[column]) {
                Ranges common;
                Intersect(box.codes[column], codes, common);
                box.codes[column] = std::move(common);
            } else {
                box.codes[column].assign(codes.begin(), codes.end());
                isSet[column] = true;
            }
        }
        if (std::none_of(box.codes.begin(), box.codes.end(),
                         [](const Ranges& codes) { return codes.empty(); })) {
            region_.boxes.push_back(std::move(box));
        }
    }

    /// Without key columns boxes differ in their measures alone.
    void RemoveRepeatedMeasures() {
        std::vector<RegionBox> kept;
        for (RegionBox& box : region_.boxes) {
            const bool isKnown = std::any_of(kept.begin(), kept.end(), [&](const RegionBox& other) {
                return other.measure == box.measure;
            });
            if (!isKnown) {
                kept.push_back(std::move(box));
            }
        }
        region_.boxes = std::move(kept);
    }

    const MemberSpace& space_;
    std::vector<std::size_t> places_;
    Dimensionality hierarchies_; ///< at these places
    TupleSet stored_;
    FactRegion region_;
};

} // namespace

CompoundSet::CompoundSet(const MemberSpace& space, TupleSet tuples)
    : space_(space), tuples_(std::move(tuples)) {
    for (std::size_t place = 0; place < tuples_.dimensionality.size(); ++place) {
        MemberId common = tuples_.Count() == 0 ? noMember : tuples_.At(0)[place];
        for (std::size_t i = 1; i < tuples_.Count() && common != noMember; ++i) {
            common = tuples_.At(i)[place] == common ? common : noMember;
        }
        common_.push_back(common);
    }
}

const FactRegion& CompoundSet::Region(const std::vector<bool>& places) const {
    const auto known = regions_.find(places);
    return known != regions_.end()
               ? known->second
               : regions_.emplace(places, RegionMaker(space_, tuples_, places).Make()).first->second;
}

} // namespace qel::engine
