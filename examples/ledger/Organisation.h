#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qel::ledger {

struct NamedCode {
    std::string_view code, name, hebrewName;
};

/// What a site is used for; decides which costs it has.
enum class SiteUse { Store, Warehouse, Office, WebShop };

/// A leaf of the organisational breakdown (OBS): site under kind of unit under region.
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

/// A business line is a number under an OBS name; its lines also count in the numbers of `structures`.
struct StructureLink {
    std::string_view businessLine, obsName, obsNumber, caption, hebrewCaption;
};

std::span<const NamedCode> Firms();
std::span<const NamedCode> Regions();
/// Kinds of unit; the same kind exists in several regions under the same name.
std::span<const NamedCode> UnitKinds();
std::span<const Site> Sites();
std::span<const CostCentre> CostCentres();
std::span<const NamedCode> Products();
std::span<const NamedCode> Channels();
/// Activities that are not a product in a channel.
std::span<const NamedCode> GeneralActivities();
std::span<const StructureLink> Structures();

const Site& FindSite(std::string_view code);

} // namespace qel::ledger
