#pragma once

#include "examples/ledger/LedgerLine.h"

#include <memory>

namespace qel::ledger {

/// The size of a generated ledger.
struct WideLedgerShape {
    std::uint64_t rows = 100'000; ///< at least; the last entry is completed
    std::size_t accounts = 5'000; ///< used according to Zipf's law: a few accounts have most of the lines
    std::size_t activities = 200;
    std::size_t costCentres = 300;
    std::size_t obsLeaves = 2'000;
    std::size_t obsNumbers = 20;
    std::size_t firms = 5;
    std::size_t plbs = 4;
    std::size_t moneySets = 3;
    std::size_t months = 60; ///< starting in January of firstYear
};

/// A ledger of any size with the example group's columns and nearly its tables, made of balanced entries
/// without accounting sense. As in real books, some members are frequent and members are correlated. Lines
/// refer to the ledger.
class WideLedger {
public:
    static constexpr std::size_t obsLevels = 4;
    static constexpr int firstYear = 2020;

    explicit WideLedger(const WideLedgerShape& shape);
    ~WideLedger();
    WideLedger(const WideLedger&) = delete;
    WideLedger& operator=(const WideLedger&) = delete;

    /// The same seed gives the same lines, in date order.
    void Generate(std::uint64_t seed, const LineSink& sink) const;
    std::vector<DimensionTable> Tables() const;

private:
    struct Codes;
    WideLedgerShape shape_;
    std::unique_ptr<Codes> codes_;
};

} // namespace qel::ledger
