#include "engine/build/AggregateChoice.h"

#include "engine/build/AggregateLayout.h"
#include "engine/build/MemberSets.h"
#include "engine/build/Records.h"
#include "engine/storage/Format.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>
#include <set>
#include <span>
#include <utility>

namespace qel::engine {

namespace {

/// Cost of reading, in nanoseconds: per row of a run, and per binary search for a run among the rows of one
/// leading code.
constexpr double rowCost = 0.5, searchCost = 300;
/// Queries cheaper than this get no aggregate.
constexpr double leastCost = 2000;
/// Upper limit for the size of all aggregates, in bytes per fact.
constexpr double budgetPerFact = 88;
/// Bytes of an aggregate's record and its share of the lookup table.
constexpr std::uint64_t recordBytes = 60;

struct Candidate {
    ChosenAggregate aggregate;
    double cost = 0;
};

/// Prefix counts: the number of facts below each code.
std::vector<std::uint64_t> PrefixCounts(const std::vector<std::uint64_t>& factsOfCode) {
    std::vector<std::uint64_t> counts(factsOfCode.size() + 1);
    std::partial_sum(factsOfCode.begin(), factsOfCode.end(), counts.begin() + 1);
    return counts;
}

using FactCounts = std::vector<std::uint64_t>;

std::uint64_t RowsUnder(const FactCounts& counts, CodeRanges ranges) {
    std::uint64_t rows = 0;
    for (const KeyRange range : ranges) {
        rows += counts[range.last] - counts[range.first];
    }
    return rows;
}

/// A column that leads a sort order, and those of its sets that are expensive to read even from that sort
/// order.
struct Lead {
    FactCounts counts; ///< number of facts below each code
    std::vector<KeyRange> sets;
};

class AggregateChooser {
public:
    AggregateChooser(const CubeModel& model, const CodeCounts& codes,
                     const std::map<std::size_t, PairCounts>& pairs, const AggregateModel& aggregates)
        : model_(model), codes_(codes), pairs_(pairs), aggregates_(aggregates), groups_(aggregates.Groups()) {
    }

    std::vector<ChosenAggregate> Run();

private:
    void FindLeads();
    void AddSingles();
    void AddPairs(std::uint16_t lead, std::uint16_t second, const PairCounts& pairs);
    /// `factsOfCode` are the facts under the leading codes that have each code of the second column.
    void AddPairsOf(std::uint16_t lead, KeyRange leadCodes, std::uint16_t second,
                    const std::vector<KeyRange>& secondSets, const FactCounts& factsOfCode);
    std::vector<ChosenAggregate> TakeBest();
    std::uint64_t Bytes(std::uint64_t rows) const;
    /// The most that finding its facts takes where it is checked.
    std::uint64_t SearchSteps(const ChosenAggregate& aggregate) const;

    const CubeModel& model_;
    const CodeCounts& codes_;
    const std::map<std::size_t, PairCounts>& pairs_;
    const AggregateModel& aggregates_;
    const CodeGroups groups_;
    std::map<std::uint16_t, Lead> leads_;
    std::vector<Candidate> candidates_;
};

std::vector<ChosenAggregate> AggregateChooser::Run() {
    FindLeads();
    AddSingles();
    for (const std::size_t projection : CountedPairs(model_, aggregates_)) {
        const auto& order = model_.projections[projection].sortOrder;
        AddPairs(order[0], order[1], pairs_.at(projection));
    }
    return TakeBest();
}

void AggregateChooser::FindLeads() {
    for (const ProjectionModel& projection : model_.projections) {
        const std::uint16_t column = projection.sortOrder.front();
        if (!IsAggregateKey(aggregates_, column) || leads_.count(column) != 0) {
            continue;
        }
        Lead lead;
        lead.counts = PrefixCounts(codes_[column]);
        lead.sets = MemberSets(model_, groups_, column);
        std::erase_if(lead.sets, [&](const KeyRange& set) {
            return static_cast<double>(RowsUnder(lead.counts, groups_.Ranges(set))) * rowCost < leastCost;
        });
        leads_.emplace(column, std::move(lead));
    }
}

void AggregateChooser::AddSingles() {
    const auto rows = model_.rowCount;
    if (static_cast<double>(rows) * rowCost >= leastCost) {
        candidates_.push_back({{{}, {}, {}, {}, rows}, static_cast<double>(rows) * rowCost});
    }
    for (const auto& [column, lead] : leads_) {
        for (const KeyRange& set : lead.sets) {
            const std::uint64_t under = RowsUnder(lead.counts, groups_.Ranges(set));
            candidates_.push_back({{column, {}, set, {}, under}, static_cast<double>(under) * rowCost});
        }
    }
}

void AggregateChooser::AddPairs(std::uint16_t lead, std::uint16_t second, const PairCounts& pairs) {
    using Pair = PairCounts::Pair;
    const auto ownLead = leads_.find(second);
    const std::vector<KeyRange> secondSets =
        ownLead == leads_.end() ? MemberSets(model_, groups_, second) : ownLead->second.sets;
    for (const KeyRange& set : leads_[lead].sets) {
        FactCounts factsOfCode(model_.keyColumns[second].codes);
        for (const KeyRange range : groups_.Ranges(set)) {
            const std::uint64_t first = pairs.starts[range.first], last = pairs.starts[range.last];
            const RecordSource source(pairs.pairs, {{first * sizeof(Pair), (last - first) * sizeof(Pair)}});
            source.ForEach(sizeof(Pair), [&](std::span<const std::byte> bytes) {
                Pair pair;
                for (; !bytes.empty(); bytes = bytes.subspan(sizeof pair)) {
                    std::memcpy(&pair, bytes.data(), sizeof pair);
                    factsOfCode[pair.second] += pair.facts;
                }
            });
        }
        AddPairsOf(lead, set, second, secondSets, factsOfCode);
    }
}

void AggregateChooser::AddPairsOf(std::uint16_t lead, KeyRange leadCodes, std::uint16_t second,
                                  const std::vector<KeyRange>& secondSets, const FactCounts& factsOfCode) {
    const FactCounts counts = PrefixCounts(factsOfCode);
    const bool isSearchable =
        std::any_of(model_.projections.begin(), model_.projections.end(), [&](const auto& other) {
            return other.sortOrder.size() > 1 && other.sortOrder[0] == second && other.sortOrder[1] == lead;
        });
    const CodeRanges leadRanges = groups_.Ranges(leadCodes);
    const auto searchAll = [](CodeRanges outer, CodeRanges inner) {
        return static_cast<double>(CountCodes(outer) * inner.size()) * searchCost;
    };
    for (const KeyRange& set : secondSets) {
        const CodeRanges ranges = groups_.Ranges(set);
        const std::uint64_t under = RowsUnder(counts, ranges);
        const double reading = static_cast<double>(under) * rowCost;
        double cost =
            std::min(static_cast<double>(counts.back()) * rowCost, searchAll(leadRanges, ranges) + reading);
        if (isSearchable) {
            cost = std::min(cost, searchAll(ranges, leadRanges) + reading);
        }
        if (cost >= leastCost) {
            candidates_.push_back({{lead, second, leadCodes, set, under}, cost});
        }
    }
}

std::vector<ChosenAggregate> AggregateChooser::TakeBest() {
    std::stable_sort(candidates_.begin(), candidates_.end(),
                     [](const Candidate& left, const Candidate& right) { return left.cost > right.cost; });
    auto budget = static_cast<std::uint64_t>(budgetPerFact * static_cast<double>(model_.rowCount));
    std::uint64_t rowsLeft = format::mostAggregatedFacts * model_.rowCount;
    std::uint64_t stepsLeft = format::mostSearchSteps / 2 * model_.rowCount;
    std::vector<ChosenAggregate> chosen;
    for (const Candidate& candidate : candidates_) {
        const std::uint64_t bytes = Bytes(candidate.aggregate.rows);
        const std::uint64_t steps = SearchSteps(candidate.aggregate);
        if (bytes > budget || candidate.aggregate.rows > rowsLeft || steps > stepsLeft) {
            continue;
        }
        stepsLeft -= steps;
        budget -= bytes;
        rowsLeft -= candidate.aggregate.rows;
        chosen.push_back(candidate.aggregate);
    }
    return chosen;
}

std::uint64_t AggregateChooser::SearchSteps(const ChosenAggregate& aggregate) const {
    if (!aggregate.lead || !aggregate.second) {
        return 0;
    }
    std::uint64_t codes = 0;
    const CodeRanges ranges = groups_.Ranges(aggregate.leadCodes);
    for (const KeyRange range : ranges) {
        codes += range.last - range.first;
    }
    return std::min(codes * groups_.Ranges(aggregate.secondCodes).size(),
                    RowsUnder(leads_.at(*aggregate.lead).counts, ranges));
}

std::uint64_t AggregateChooser::Bytes(std::uint64_t rows) const {
    // Prefix sums number at most one per fact, and at most one per combination of codes and time bucket.
    std::uint64_t coarserCells = 0, cells = aggregates_.timeBuckets.size() - 1;
    for (const AggregateTable::PackedKeyColumn& part : aggregates_.packedKeyColumns) {
        coarserCells = cells; // without the last column of the packed key
        cells = std::min(rows + 1, cells * std::max(1U, model_.keyColumns[part.column].codes));
    }
    return recordBytes +
           std::min(rows * AggregateRowBytes(model_, aggregates_),
                    (std::min(rows, cells) + std::min(rows, coarserCells)) * PrefixSumBytes(model_));
}

} // namespace

AggregateKey ChosenAggregate::Key() const {
    AggregateKey key;
    if (lead) {
        key.Add(*lead, leadCodes);
    }
    if (second) {
        key.Add(*second, secondCodes);
    }
    return key;
}

std::vector<std::size_t> CountedPairs(const CubeModel& model, const AggregateModel& aggregates) {
    std::vector<std::size_t> counted;
    std::set<std::pair<std::uint16_t, std::uint16_t>> done;
    for (std::size_t i = 0; i < model.projections.size(); ++i) {
        const auto& order = model.projections[i].sortOrder;
        if (order.size() >= 2 && IsAggregateKey(aggregates, order[0]) &&
            IsAggregateKey(aggregates, order[1]) && done.insert(std::minmax(order[0], order[1])).second) {
            counted.push_back(i);
        }
    }
    return counted;
}

std::vector<ChosenAggregate> ChooseAggregates(const CubeModel& model, const CodeCounts& codes,
                                              const std::map<std::size_t, PairCounts>& pairs,
                                              const AggregateModel& aggregates) {
    return AggregateChooser(model, codes, pairs, aggregates).Run();
}

std::uint64_t AggregateRowBytes(const CubeModel& model, const AggregateModel& aggregates) {
    std::map<std::uint16_t, std::uint64_t> widths; // by packed column
    for (const AggregateTable::PackedKeyColumn& part : aggregates.packedKeyColumns) {
        widths[model.keyColumns[part.column].packedColumn] = model.keyColumns[part.column].width;
    }
    if (aggregates.timeColumn) {
        widths[model.keyColumns[*aggregates.timeColumn].packedColumn] =
            model.keyColumns[*aggregates.timeColumn].width;
    }
    std::uint64_t bytes = 0;
    for (const auto& [packedColumn, width] : widths) {
        bytes += width;
    }
    for (const MeasureColumn& measure : model.measures) {
        bytes += measure.width;
    }
    return bytes;
}

std::uint64_t PrefixSumBytes(const CubeModel& model) {
    constexpr std::uint64_t bytesEach = 4; // at least
    return model.measures.size() * bytesEach;
}

} // namespace qel::engine
