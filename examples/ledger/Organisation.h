#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qel::ledger {

struct NamedCode {
    std::string_view code, name, hebrewName;
};

/// The use of a site, which determines its costs.
enum class SiteUse { Store, Warehouse, Office, WebShop };

/// A leaf of the organisational breakdown structure (OBS): a site, within a kind of unit, within a region.
struct Site {
    std::string_view code; ///< three digits: region, kind of unit, running number
    std::string_view name, hebrewName;
    std::string_view firm;
    SiteUse use;
    std::int64_t monthlyTurnover; ///< whole shekels before growth and season, of stores and the web shop
};

struct CostCentre {
    std::string_view code, name, hebrewName;
    std::string_view site;
    std::int64_t monthlyPay; ///< whole shekels
};

/// A business line: a number under an OBS name. Its lines also count in the numbers of `structures`.
struct StructureLink {
    std::string_view businessLine, obsName, obsNumber, caption, hebrewCaption;
};

std::span<const NamedCode> Firms();
std::span<const NamedCode> Regions();
/// Kinds of unit. The same kind exists in several regions under the same name.
std::span<const NamedCode> UnitKinds();
std::span<const Site> Sites();
std::span<const CostCentre> CostCentres();
std::span<const NamedCode> Products();
std::span<const NamedCode> Channels();
/// Activities other than a product in a channel.
std::span<const NamedCode> GeneralActivities();
std::span<const StructureLink> Structures();

const Site& FindSite(std::string_view code);

} // namespace qel::ledger
