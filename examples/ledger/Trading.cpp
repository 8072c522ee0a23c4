#include "examples/ledger/MonthPostings.h"

#include <fmt/format.h>

#include <array>

namespace qel::ledger {
namespace {

constexpr std::size_t productCount = 8;
constexpr std::array<std::int64_t, productCount> unitPrice{890, 64, 79, 159, 649, 95, 38, 49}; // shekels
constexpr std::array<std::int64_t, productCount> wholesaleTurnover{780'000, 430'000, 510'000, 290'000,
                                                                   700'000, 360'000, 320'000, 150'000};
constexpr std::array<std::int64_t, 3> costPercent{66, 54, 61}; // of revenue, by channel

enum Channel : std::size_t { wholesale = 0, stores = 1, online = 2 };

/// Textiles are sold by the metre, garden goods by the kilogram, everything else by the piece.
std::int64_t Quantity(std::size_t product, std::int64_t cents) {
    const std::int64_t thousandths = cents * 10 / unitPrice[product];
    return product == 1 || product == 6 ? thousandths : thousandths / 1000 * 1000;
}

std::string Account(std::string_view group, std::size_t product) {
    return fmt::format("{}{}", group, product + 1);
}

/// Posts one entry: the receivable or cash, then revenue, cost and inventory of every product, and VAT last.
struct Sale {
    const Site& site;
    Channel channel;
    std::string_view buyerAccount;
    std::int64_t vatPercent;
};

void PostProduct(const BusinessMonth& month, const Sale& sale, std::size_t product, std::int64_t net) {
    constexpr std::array<std::string_view, 3> revenueGroups{"411", "412", "413"};
    constexpr std::array<std::string_view, 3> costGroups{"511", "512", "513"};
    const Analysis analysis = At(sale.site, ActivityOf(product, sale.channel));
    const std::int64_t quantity = Quantity(product, net);
    const std::int64_t cost = net * (costPercent[sale.channel] * 10 + month.random.Between(-25, 25)) / 1000;
    month.journal.Post(Account(revenueGroups[sale.channel], product), analysis, -net, -quantity);
    month.journal.Post(Account(costGroups[sale.channel], product), analysis, cost, quantity);
    month.journal.Post(Account("231", product), analysis, -cost, -quantity);
}

void PostVatAndBuyer(const BusinessMonth& month, const Sale& sale, std::int64_t net) {
    const Analysis office = OfficeOf(sale.site.firm);
    month.journal.Post("3231", office, -net * sale.vatPercent / 100);
    month.journal.PostRest(sale.buyerAccount, office);
    month.journal.End();
}

void PostWholesale(const BusinessMonth& month) {
    for (std::size_t product = 0; product < productCount; ++product) {
        const Sale sale{FindSite("231"), wholesale, "2211", month.VatPercent()};
        month.journal.Begin({.date = month.Day(1, 31), .firm = sale.site.firm});
        const std::int64_t net = month.Turnover(wholesaleTurnover[product]);
        PostProduct(month, sale, product, net);
        PostVatAndBuyer(month, sale, net);
    }
    month.journal.Begin({.date = month.LastDay(), .firm = "10"});
    const Analysis analysis = At(FindSite("231"), "905");
    month.journal.Post("4311", analysis, month.Around(38'000, 200));
    month.journal.PostRest("2211", analysis);
    month.journal.End();
}

void PostStore(const BusinessMonth& month, const Site& store, std::size_t number) {
    // Eilat is exempt from VAT.
    const Sale sale{store, stores, number % 2 == 0 ? "2213" : "2111",
                    store.code == "313" ? 0 : month.VatPercent()};
    month.journal.Begin({.date = month.Day(20, 31), .firm = store.firm});
    std::int64_t total = 0;
    // A store sells half of the products in one month and the other half in the next.
    for (std::size_t product = (number + static_cast<std::size_t>(month.index)) % 2; product < productCount;
         product += 2) {
        const std::int64_t net = month.Turnover(store.monthlyTurnover / 4);
        PostProduct(month, sale, product, net);
        total += net;
    }
    PostVatAndBuyer(month, sale, total);
}

void PostWebShop(const BusinessMonth& month, const Site& site) {
    const Sale sale{site, online, "2213", month.VatPercent()};
    month.journal.Begin({.date = month.Day(25, 31), .firm = site.firm});
    std::int64_t total = 0;
    for (std::size_t product = 0; product < productCount; ++product) {
        // The web shop grows faster than the rest.
        const std::int64_t net = month.Turnover(site.monthlyTurnover / 8) * (1000 + 15 * month.index) / 1000;
        PostProduct(month, sale, product, net);
        total += net;
    }
    PostVatAndBuyer(month, sale, total);
}

void PostServices(const BusinessMonth& month) {
    const Site& shop = FindSite("441");
    const Analysis analysis = At(shop, "904");
    month.journal.Begin({.date = month.Day(10, 28), .firm = shop.firm});
    const std::int64_t delivery = month.Turnover(64'000), repairs = month.Around(17'500, 300),
                       warranty = month.Turnover(26'000), returned = month.Turnover(48'000);
    month.journal.Post("4211", analysis, -delivery);
    month.journal.Post("4212", analysis, -repairs);
    month.journal.Post("4213", analysis, -warranty);
    month.journal.Post("4312", analysis, returned);
    month.journal.Post("3231", analysis,
                       -(delivery + repairs + warranty - returned) * month.VatPercent() / 100);
    month.journal.PostRest("2213", OfficeOf(shop.firm));
    month.journal.End();
}

} // namespace

void PostSales(const BusinessMonth& month) {
    PostWholesale(month);
    std::size_t number = 0;
    for (const Site& site : Sites()) {
        if (site.use == SiteUse::Store) {
            PostStore(month, site, number++);
        } else if (site.use == SiteUse::WebShop) {
            PostWebShop(month, site);
        }
    }
    PostServices(month);
}

void PostPurchases(const BusinessMonth& month) {
    struct Origin {
        std::string_view moneySet, supplierAccount;
    };
    constexpr std::array<Origin, 3> origins{{{"ILS", "3211"}, {"USD", "3212"}, {"EUR", "3213"}}};
    for (const std::string_view firm : {"10", "20"}) {
        const Analysis warehouse = At(FindSite(firm == "10" ? "221" : "131"), "904");
        for (std::size_t product = 0; product < productCount; ++product) {
            const Origin& origin = origins[product % 3];
            // Both firms buy about as much as they sell, so the stock stays level.
            const std::int64_t goods =
                month.Turnover(firm == "10" ? wholesaleTurnover[product] * 67 / 100 : 265'000);
            const std::int64_t vat = origin.moneySet == "ILS" ? goods * month.VatPercent() / 100 : 0;
            month.journal.Begin({.date = month.Day(1, 25), .firm = firm, .moneySet = origin.moneySet});
            month.journal.Post(
                Account("231", product), warehouse, goods,
                Quantity(product, goods * 100 / costPercent[firm == "10" ? wholesale : stores]));
            month.journal.Post("2221", OfficeOf(firm), vat);
            month.journal.PostRest(origin.supplierAccount, OfficeOf(firm));
            month.journal.End();
        }
    }
    const Analysis port = At(FindSite("321"), "904");
    month.journal.Begin({.date = month.Day(5, 28), .firm = "10", .moneySet = "USD"});
    month.journal.Post("5211", port, month.Around(46'000, 250));
    month.journal.Post("5214", port, month.Around(5'200, 100));
    month.journal.PostRest("3212", port);
    month.journal.End();
    month.journal.Begin({.date = month.Day(5, 28), .firm = "10"});
    month.journal.Post("5212", port, month.Around(31'000, 250));
    month.journal.Post("5213", At(FindSite("221"), "904"), month.Around(22'000, 150));
    month.journal.PostRest("3211", port);
    month.journal.End();
}

} // namespace qel::ledger
