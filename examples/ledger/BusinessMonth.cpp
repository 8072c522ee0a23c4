#include "examples/ledger/BusinessMonth.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace qel::ledger {
namespace {

std::string_view BusinessLineOf(const Site& site) {
    if (site.use == SiteUse::WebShop) {
        return "E";
    }
    if (site.firm == "10") {
        return "W";
    }
    return site.firm == "20" ? "S" : "G";
}

} // namespace

std::chrono::year_month_day BusinessMonth::Day(unsigned first, unsigned last) const {
    const std::chrono::day wanted{static_cast<unsigned>(random.Between(first, last))};
    return month / std::min(wanted, LastDay().day());
}

std::int64_t BusinessMonth::Around(std::int64_t shekels, std::int64_t permille) const {
    const std::int64_t cents = shekels * 100;
    return cents + cents * random.Between(-permille, permille) / 1000 + random.Between(0, 99);
}

std::int64_t BusinessMonth::Turnover(std::int64_t shekels) const {
    // Seasons: spring holidays, a quiet summer, the autumn holidays and the end of the year.
    constexpr std::array<std::int64_t, 12> season{900, 870, 1060, 1110, 960, 930,
                                                  970, 990, 1160, 940,  980, 1130};
    const auto thisMonth = season[static_cast<unsigned>(month.month()) - 1];
    return Around(shekels * thisMonth / 1000 * (1000 + 5 * index) / 1000, 60);
}

std::int64_t BusinessMonth::Risen(std::int64_t shekels) const {
    return shekels * 100 * (1000 + 35 * (index / 12)) / 1000;
}

Analysis OfficeOf(std::string_view firm) {
    const std::string_view site = firm == "10" ? "231" : firm == "20" ? "131" : "432";
    return At(FindSite(site), "903");
}

Analysis At(const Site& site, std::string_view activity) {
    const auto centres = CostCentres();
    const auto first = std::find_if(centres.begin(), centres.end(),
                                    [&](const CostCentre& centre) { return centre.site == site.code; });
    if (first == centres.end()) {
        throw std::out_of_range("A site has no cost centre.");
    }
    return {activity, first->code, site.code, BusinessLineOf(site)};
}

std::string_view ActivityOf(std::size_t product, std::size_t channel) {
    static constexpr std::array<std::array<std::string_view, 8>, 3> codes{{
        {"101", "102", "103", "104", "105", "106", "107", "108"},
        {"201", "202", "203", "204", "205", "206", "207", "208"},
        {"301", "302", "303", "304", "305", "306", "307", "308"},
    }};
    return codes[channel][product];
}

} // namespace qel::ledger
