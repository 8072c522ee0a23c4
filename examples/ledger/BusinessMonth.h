#pragma once

#include "examples/ledger/Journal.h"
#include "examples/ledger/Organisation.h"
#include "examples/ledger/Random.h"

namespace qel::ledger {

/// What the postings of one month share.
struct BusinessMonth {
    Journal& journal;
    Random& random;
    std::chrono::year_month month;
    int index; ///< months since the ledger's first

    /// A random day of the month from `first` to `last`, at most its last day.
    std::chrono::year_month_day Day(unsigned first, unsigned last) const;
    std::chrono::year_month_day LastDay() const { return month / std::chrono::last; }
    /// The shekels in cents, varied at random by up to `permille`.
    std::int64_t Around(std::int64_t shekels, std::int64_t permille) const;
    /// The customers' purchases this month, in cents: the shekels after growth and season.
    std::int64_t Turnover(std::int64_t shekels) const;
    /// The shekels in cents after yearly rises of prices and pay.
    std::int64_t Risen(std::int64_t shekels) const;
    /// The general VAT rate: 17%, 18% from 2025 on.
    std::int64_t VatPercent() const { return month.year() >= std::chrono::year{2025} ? 18 : 17; }
    bool IsYearEnd() const { return month.month() == std::chrono::December; }
    bool IsQuarterEnd() const { return static_cast<unsigned>(month.month()) % 3 == 0; }
};

/// The analysis of lines that belong to no site: the firm's own office.
Analysis OfficeOf(std::string_view firm);
/// The analysis of a site's lines, using its first cost centre.
Analysis At(const Site& site, std::string_view activity);
/// The activity code of a product in a channel.
std::string_view ActivityOf(std::size_t product, std::size_t channel);

} // namespace qel::ledger
