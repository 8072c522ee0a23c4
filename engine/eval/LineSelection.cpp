#include "engine/eval/LineSelection.h"

#include "engine/eval/ScanPlan.h"
#include "engine/eval/VisitBlocks.h"
#include "engine/storage/CodeColumn.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// The facts with a date from `first` up to, but not including, `last`.
FactPart WithDates(FactPart part, std::size_t dateColumn, KeyRange dates) {
    for (FactPart::Codes& codes : part.codes) {
        if (codes.keyColumn == dateColumn) {
            std::vector<KeyRange> common;
            Intersect(codes.ranges, {&dates, 1}, common);
            codes.ranges = std::move(common);
            return part;
        }
    }
    part.codes.push_back({dateColumn, {dates}});
    return part;
}

/// Selects in two steps: counts the facts by date, then gathers those of the dates that are wanted.
class LineSelector {
public:
    LineSelector(const Cube& cube, const std::vector<FactPart>& parts,
                 const std::function<void(double)>& progress)
        : facts_(cube.Facts()), parts_(parts), progress_(progress), dateColumn_(DateColumn(cube)),
          counts_(dateColumn_ ? facts_.KeyColumns()[*dateColumn_].codes : 1) {}

    SelectedLines Select(std::uint64_t first, std::uint64_t most) {
        SelectedLines selected;
        Count();
        for (const std::uint64_t count : counts_) {
            selected.total += count;
        }
        const KeyRange dates = DatesOf(first, most);
        if (dates.Count() == 0) {
            return selected;
        }
        Gather(dates);
        std::uint64_t before = 0;
        for (std::uint32_t date = 0; date < dates.first; ++date) {
            before += counts_[date];
        }
        selected.places = Ordered(first - before, most);
        return selected;
    }

private:
    using Block = std::function<void(const Projection&, RowRange, const BlockMask*)>;

    void Count() {
        for (const FactPart& part : parts_) {
            if (!dateColumn_) {
                Scan(part, [&](const Projection&, RowRange rows, const BlockMask* mask) {
                    counts_[0] += mask == nullptr ? rows.Count() : CountRows(*mask, rows.Count());
                });
                continue;
            }
            Scan(part, [&](const Projection& projection, RowRange rows, const BlockMask* mask) {
                CountDates(projection, rows, mask);
            });
        }
        Report(0.5);
    }

    void CountDates(const Projection& projection, RowRange rows, const BlockMask* mask) {
        const std::vector<std::uint32_t> dates = ReadCodes(facts_, projection, *dateColumn_, rows);
        const auto count = [&](std::size_t i) {
            if (dates[i] < counts_.size()) { // a damaged file may hold any codes
                ++counts_[dates[i]];
            }
        };
        if (mask != nullptr) {
            VisitMarked(mask->data(), rows.Count(), count);
            return;
        }
        for (std::size_t i = 0; i < dates.size(); ++i) {
            count(i);
        }
    }

    /// The dates of the facts from number `first` on.
    KeyRange DatesOf(std::uint64_t first, std::uint64_t most) const {
        KeyRange dates;
        std::uint64_t before = 0;
        for (std::uint32_t date = 0; date < counts_.size(); ++date) {
            const std::uint64_t after = before + counts_[date];
            if (after <= first) {
                dates = {date + 1, date + 1};
            } else if (before < first + std::min(most, UINT64_MAX - first)) {
                dates.last = date + 1;
            }
            before = after;
        }
        return dates;
    }

    void Gather(KeyRange dates) {
        for (std::uint32_t number = 0; number < parts_.size(); ++number) {
            const FactPart part =
                dateColumn_ ? WithDates(parts_[number], *dateColumn_, dates) : parts_[number];
            Scan(part, [&](const Projection& projection, RowRange rows, const BlockMask* mask) {
                const auto take = [&](std::size_t i) {
                    places_.push_back({&projection, number, rows.first + i});
                };
                if (mask != nullptr) {
                    VisitMarked(mask->data(), rows.Count(), take);
                    return;
                }
                for (std::size_t i = 0; i < rows.Count(); ++i) {
                    take(i);
                }
            });
        }
        Report(0.75);
    }

    void Scan(const FactPart& part, const Block& visit) const {
        const std::vector<Restriction> restrictions = part.Restrictions();
        if (facts_.RowCount() == 0 || AnyIsEmpty(restrictions)) {
            return;
        }
        const ScanPlan plan = PlanScan(facts_, restrictions);
        const std::vector<BlockFilter> filters = MakeFilters(facts_, plan.residuals);
        for (const RowRange run : plan.rows) {
            VisitBlocks(*plan.projection, run, filters, [&](RowRange rows, const BlockMask* mask) {
                visit(*plan.projection, rows, mask);
                return true;
            });
            Report(0);
        }
    }

    /// The columns that order the facts. The number in the details stands for all but the date.
    std::vector<std::size_t> SortColumns() const {
        std::vector<std::size_t> columns;
        if (dateColumn_) {
            columns.push_back(*dateColumn_);
        }
        for (std::size_t column = 0; column < facts_.KeyColumns().size(); ++column) {
            if (facts_.Details() == nullptr && column != dateColumn_) {
                columns.push_back(column);
            }
        }
        return columns;
    }

    std::vector<LinePlace> Ordered(std::uint64_t first, std::uint64_t most) const {
        const std::vector<std::size_t> columns = SortColumns();
        const std::size_t width = columns.size() + (facts_.Details() != nullptr ? 1 : 0);
        std::vector<std::uint32_t> codes;
        codes.reserve(places_.size() * width);
        std::vector<std::size_t> order;
        for (const LinePlace& place : places_) {
            for (const std::size_t column : columns) {
                codes.push_back(CodeOf(facts_, place, column));
            }
            if (facts_.Details() != nullptr) {
                codes.push_back(FactOf(facts_, place));
            }
            order.push_back(order.size());
        }
        const auto isBefore = [&](std::size_t left, std::size_t right) {
            const auto* const a = codes.data() + left * width;
            const auto* const b = codes.data() + right * width;
            const auto [differs, other] = std::mismatch(a, a + width, b);
            return differs != a + width ? *differs < *other : left < right;
        };
        const std::size_t begin = std::min<std::uint64_t>(first, order.size());
        const std::size_t end = begin + std::min<std::uint64_t>(most, order.size() - begin);
        std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(end), order.end(),
                          isBefore);
        std::vector<LinePlace> places;
        for (std::size_t i = begin; i < end; ++i) {
            places.push_back(places_[order[i]]);
        }
        return places;
    }

    void Report(double share) const {
        if (progress_) {
            progress_(reported_ = std::max(reported_, share));
        }
    }

    const FactTable& facts_;
    const std::vector<FactPart>& parts_;
    const std::function<void(double)>& progress_;
    std::optional<std::size_t> dateColumn_;
    std::vector<std::uint64_t> counts_; ///< by date; one without dates
    std::vector<LinePlace> places_;
    mutable double reported_ = 0;
};

} // namespace

FactPart::FactPart(std::span<const Restriction> restrictions) {
    for (const Restriction& restriction : restrictions) {
        codes.push_back({restriction.keyColumn, {restriction.codes.begin(), restriction.codes.end()}});
    }
}

std::vector<Restriction> FactPart::Restrictions() const {
    std::vector<Restriction> restrictions;
    for (const Codes& column : codes) {
        restrictions.push_back({column.keyColumn, column.ranges});
    }
    return restrictions;
}

SelectedLines SelectLines(const Cube& cube, const std::vector<FactPart>& parts, std::uint64_t first,
                          std::uint64_t most, const std::function<void(double)>& progress) {
    return LineSelector(cube, parts, progress).Select(first, most);
}

std::optional<std::size_t> DateColumn(const Cube& cube) {
    for (const Hierarchy& hierarchy : cube.Hierarchies()) {
        if (cube.Dimensions()[hierarchy.DimensionIndex()].isTime && hierarchy.KeyColumn()) {
            return hierarchy.KeyColumn();
        }
    }
    return std::nullopt;
}

std::uint32_t FactOf(const FactTable& facts, const LinePlace& place) {
    const auto order = static_cast<std::size_t>(place.projection - facts.Projections().data());
    return facts.Details()->FactOf(order, place.row);
}

std::uint32_t CodeOf(const FactTable& facts, const LinePlace& place, std::size_t keyColumn) {
    const KeyColumn& column = facts.KeyColumns()[keyColumn];
    if (!place.projection->HasPackedColumn(column.packedColumn)) {
        return place.projection->LeadingKeyOf(place.row);
    }
    const RowRange row{place.row, place.row + 1};
    return CodeColumn(place.projection->PackedColumn(column.packedColumn, row), column)[0];
}

} // namespace qel::engine
