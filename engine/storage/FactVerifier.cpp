#include "engine/storage/FactVerifier.h"

#include "engine/storage/CodeColumn.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace qel::engine {

namespace {

constexpr std::uint64_t blockRows = 8192;

template <class Stored>
void Widen(const std::byte* from, std::vector<std::int64_t>& to) {
    for (std::size_t i = 0; i < to.size(); ++i) {
        to[i] = std::int64_t{ReadAt<Stored>(from, i)};
    }
}

void WidenValues(const std::byte* from, std::uint8_t width, std::vector<std::int64_t>& to) {
    if (width == 1) {
        Widen<std::int8_t>(from, to);
    } else if (width == 2) {
        Widen<std::int16_t>(from, to);
    } else if (width == 4) {
        Widen<std::int32_t>(from, to);
    } else {
        Widen<std::int64_t>(from, to);
    }
}

std::uint64_t Mix(std::uint64_t hash, std::int64_t value) {
    hash = (hash ^ static_cast<std::uint64_t>(value)) * 0x9E3779B97F4A7C15U;
    return hash ^ (hash >> 29U);
}

/// Checks one sort order, block by block.
class ProjectionCheck {
public:
    ProjectionCheck(const FactTable& facts, const Projection& projection)
        : facts_(facts), projection_(projection), codes_(facts.KeyColumns().size()),
          lastCodes_(projection.SortOrder().size(), -1), magnitudes_(facts.Measures().size()) {}

    /// Returns the fault, or an empty text.
    std::string Block(RowRange rows) {
        hashes_.assign(rows.Count(), 0);
        for (std::size_t column = 0; column < codes_.size(); ++column) {
            if (!TakeCodes(column, rows)) {
                return fmt::format("key column {} has a code out of range", facts_.KeyColumns()[column].name);
            }
        }
        for (std::size_t packedColumn = 0; packedColumn < facts_.PackedColumnCount(); ++packedColumn) {
            if (projection_.HasPackedColumn(packedColumn) && !IsClean(packedColumn, rows)) {
                return "a packed column has bits of no key column";
            }
        }
        for (std::size_t measure = 0; measure < magnitudes_.size(); ++measure) {
            if (!ReadValues(measure, rows)) {
                return fmt::format("the values of measure {} are too large to be summed",
                                   facts_.Measures()[measure].name);
            }
        }
        for (const std::uint64_t hash : hashes_) {
            contents_ += hash;
        }
        return IsInOrder(rows) ? "" : "the facts are not in their order";
    }

    /// A fingerprint of each fact of the last block.
    const std::vector<std::uint64_t>& Fingerprints() const { return hashes_; }
    /// A fingerprint of the facts that does not depend on their order.
    std::uint64_t Contents() const { return contents_; }

private:
    bool TakeCodes(std::size_t column, RowRange rows) {
        const KeyColumn& key = facts_.KeyColumns()[column];
        codes_[column] = ReadCodes(facts_, projection_, column, rows);
        for (std::size_t i = 0; i < hashes_.size(); ++i) {
            hashes_[i] = Mix(hashes_[i], codes_[column][i]);
        }
        return std::all_of(codes_[column].begin(), codes_[column].end(),
                           [&key](std::uint32_t code) { return code < key.codes; });
    }

    /// Whether all unused bits of the packed column are 0.
    bool IsClean(std::size_t packedColumn, RowRange rows) const {
        std::uint32_t bits = 0;
        for (const KeyColumn& column : facts_.KeyColumns()) {
            bits |= column.packedColumn == packedColumn ? column.Mask() : 0U;
        }
        const std::byte* const packed = projection_.PackedColumn(packedColumn, rows);
        return VisitCodeType(facts_.PackedWidth(packedColumn), [&](auto type) {
            for (std::uint64_t i = 0; i < rows.Count(); ++i) {
                if ((ReadAt<decltype(type)>(packed, i) & ~bits) != 0) {
                    return false;
                }
            }
            return true;
        });
    }

    bool ReadValues(std::size_t measure, RowRange rows) {
        const std::uint8_t width = facts_.Measures()[measure].width;
        if (width == 0) {
            return true;
        }
        values_.resize(rows.Count());
        WidenValues(projection_.Values(measure, rows), width, values_);
        constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        const auto unit = static_cast<std::uint64_t>(facts_.Measures()[measure].unit);
        std::uint64_t& sum = magnitudes_[measure];
        for (std::size_t i = 0; i < values_.size(); ++i) {
            hashes_[i] = Mix(hashes_[i], values_[i]);
            const auto bits = static_cast<std::uint64_t>(values_[i]);
            const std::uint64_t magnitude = values_[i] < 0 ? 0 - bits : bits;
            if (magnitude > most / unit - sum) {
                return false;
            }
            sum += magnitude;
        }
        return true;
    }

    bool IsInOrder(RowRange rows) {
        const auto order = projection_.SortOrder();
        for (std::size_t i = 0; i < hashes_.size(); ++i) {
            bool isDecided = false;
            for (std::size_t k = 0; k < order.size(); ++k) {
                const std::int64_t code = codes_[order[k]][i];
                if (!isDecided && code < lastCodes_[k]) {
                    return false;
                }
                isDecided = isDecided || code > lastCodes_[k];
                lastCodes_[k] = code;
            }
            const auto lead = static_cast<std::uint32_t>(lastCodes_[0]);
            const RowRange place = projection_.RowsOfLeadingKey({lead, lead + 1});
            const std::uint64_t row = rows.first + i;
            if (row < place.first || row >= place.last) {
                return false;
            }
        }
        return true;
    }

    const FactTable& facts_;
    const Projection& projection_;
    std::vector<std::vector<std::uint32_t>> codes_;
    std::vector<std::int64_t> values_, lastCodes_;
    std::vector<std::uint64_t> hashes_, magnitudes_;
    std::uint64_t contents_ = 0;
};

/// Checks that every sort order has each fact of the details once, and the same one.
class DetailCheck {
public:
    explicit DetailCheck(const FactTable& facts)
        : details_(facts.Details()), prints_(details_ != nullptr ? facts.RowCount() : 0) {}

    void BeginOrder() { isSeen_.assign(prints_.size(), false); }

    /// Whether the rows of a block, with these fingerprints, are facts that this order has not had yet.
    bool Takes(std::size_t order, std::uint64_t firstRow, const std::vector<std::uint64_t>& prints) {
        for (std::size_t i = 0; i < prints.size() && details_ != nullptr; ++i) {
            const std::uint32_t fact = details_->FactOf(order, firstRow + i);
            if (isSeen_[fact] || (order > 0 && prints_[fact] != prints[i])) {
                return false;
            }
            isSeen_[fact] = true;
            prints_[fact] = prints[i];
        }
        return true;
    }

    std::string FindFault() const { return details_ != nullptr ? details_->FindFault() : ""; }

private:
    const DetailTable* details_;
    std::vector<std::uint64_t> prints_; ///< by fact
    std::vector<bool> isSeen_;
};

} // namespace

std::string FindFactFault(const Cube& cube, const std::function<void(std::uint64_t)>& progress) {
    const FactTable& facts = cube.Facts();
    std::uint64_t contents = 0, rowsRead = 0;
    DetailCheck details(facts);
    for (std::size_t i = 0; i < facts.Projections().size(); ++i) {
        ProjectionCheck check(facts, facts.Projections()[i]);
        details.BeginOrder();
        for (std::uint64_t row = 0; row < facts.RowCount(); row += blockRows) {
            const RowRange rows{row, std::min(row + blockRows, facts.RowCount())};
            const std::string fault = check.Block(rows);
            if (!fault.empty()) {
                return fmt::format("cube {}, sort order {}: {}", cube.Name(), i + 1, fault);
            }
            if (!details.Takes(i, row, check.Fingerprints())) {
                return fmt::format("cube {}, sort order {}: the details belong to other facts", cube.Name(),
                                   i + 1);
            }
            rowsRead += rows.Count();
            if (progress) {
                progress(rowsRead);
            }
        }
        if (i > 0 && check.Contents() != contents) {
            return fmt::format("cube {}: sort orders 1 and {} hold different facts", cube.Name(), i + 1);
        }
        contents = check.Contents();
    }
    const std::string fault = details.FindFault();
    return fault.empty() ? fault : fmt::format("cube {}: {}", cube.Name(), fault);
}

} // namespace qel::engine
