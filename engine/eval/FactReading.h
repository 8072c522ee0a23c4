#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/eval/FactSum.h"
#include "engine/eval/StripSum.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// What strips of rollups may be read for at the ends of a span of time.
enum class StripEnds {
    Within, ///< what lies in the span
    Nearest ///< more than that, where the facts that are too many are fewer than those that would lack
};

/// How the facts of one cell are read: from which rows and which strips of rollups. It is found once and
/// serves any number of reads, on any thread, for as long as the facts and the codes of the restrictions that
/// it was found for live. All below raise EngineError (DamagedFile).
class FactReading {
public:
    /// Of the facts under all restrictions; what they are is added below.
    FactReading(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure)
        : facts_(&facts), restrictions_(restrictions.begin(), restrictions.end()), measure_(measure) {}

    /// The rows of a run that pass all tests.
    void AddRows(const Projection& projection, RowRange run, std::span<const Restriction> tests);
    /// The facts under all restrictions, from the projection that leaves the fewest rows to be read.
    void AddScan(std::span<const Restriction> restrictions);
    /// Takes away facts, which the strips hold besides those that are asked for.
    void SubtractScan(std::span<const Restriction> restrictions);
    /// The strips' facts of the granules of time from `first` up to, without, `last`.
    void AddStrips(const StripSum& strips, std::uint32_t first, std::uint32_t last);

    /// Reads all that was added.
    FactSum Sum() const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const;

private:
    struct Rows {
        const Projection* projection;
        std::vector<RowRange> runs;
        std::vector<BlockFilter> filters;
    };
    struct Strips {
        StripSum sum;
        std::uint32_t first, last; ///< granules
    };

    Rows PlanRows(std::span<const Restriction> restrictions) const;
    FactSum SumOf(const std::vector<Rows>& rows) const;
    FactSum Subtract(FactSum total) const;

    const FactTable* facts_;
    std::vector<Restriction> restrictions_;
    std::size_t measure_;
    std::vector<Rows> rows_, subtracted_;
    std::vector<Strips> strips_;
};

/// How to read the facts under all restrictions, of which there is at most one a key column: from rollups
/// where these hold them.
FactReading PlanReading(const FactTable& facts, std::span<const Restriction> restrictions,
                        std::size_t measure, StripEnds ends = StripEnds::Nearest);

/// The facts under all restrictions: how many, and the sum of the measure.
FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

} // namespace qel::engine
