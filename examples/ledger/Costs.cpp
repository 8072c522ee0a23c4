#include "examples/ledger/MonthPostings.h"

#include <array>

namespace qel::ledger {
namespace {

struct Cost {
    std::string_view account;
    std::int64_t shekels;  ///< per month
    std::int64_t permille; ///< random variation per month
};

Analysis Of(const CostCentre& centre) {
    Analysis analysis = At(FindSite(centre.site), "906");
    analysis.costCentre = centre.code;
    return analysis;
}

void PostWagesOf(const BusinessMonth& month, std::string_view firm) {
    month.journal.Begin({.date = month.LastDay(), .firm = firm});
    std::int64_t gross = 0, social = 0;
    for (const CostCentre& centre : CostCentres()) {
        const Site& site = FindSite(centre.site);
        if (site.firm != firm) {
            continue;
        }
        const Analysis analysis = Of(centre);
        const std::int64_t pay = month.Risen(centre.monthlyPay);
        const std::int64_t extra =
            pay * month.random.Between(20, 90) / 1000; // commission in stores, overtime elsewhere
        const std::int64_t charges = (pay + extra) * 192 / 1000;
        month.journal.Post("6111", analysis, pay);
        month.journal.Post(site.use == SiteUse::Store ? "6113" : "6112", analysis, extra);
        month.journal.Post(month.index % 2 == 0 ? "6121" : "6122", analysis, charges);
        gross += pay + extra;
        social += charges;
        if (month.IsYearEnd()) {
            const std::int64_t bonus = pay * 40 / 100;
            month.journal.Post("6115", analysis, bonus);
            gross += bonus;
        }
    }
    const Analysis office = OfficeOf(firm);
    month.journal.Post("3222", office, -gross * 14 / 100);
    month.journal.Post("3223", office, -(gross * 6 / 100 + social * 35 / 100));
    month.journal.Post("3224", office, -(gross * 7 / 100 + social * 55 / 100));
    month.journal.PostRest("3221", office);
    month.journal.End();
}

void PostSite(const BusinessMonth& month, const Site& site) {
    static constexpr Cost storeCosts[] = {{"6211", 17'500, 0},
                                          {"6215", 3'100, 0},
                                          {"6221", 4'300, 300},
                                          {"6223", 3'900, 0},
                                          {"6224", 2'100, 80}};
    static constexpr Cost warehouseCosts[] = {{"6212", 31'000, 0},
                                              {"6221", 6'800, 250},
                                              {"6223", 7'700, 0},
                                              {"6225", 5'400, 50},
                                              {"6222", 900, 400}};
    static constexpr Cost officeCosts[] = {
        {"6213", 9'800, 0}, {"6221", 1'700, 250}, {"6223", 1'600, 0}, {"6224", 1'900, 80}};
    const std::span<const Cost> costs = site.use == SiteUse::Store ? std::span<const Cost>(storeCosts)
                                        : site.use == SiteUse::Warehouse
                                            ? std::span<const Cost>(warehouseCosts)
                                            : std::span<const Cost>(officeCosts);
    const Analysis analysis = At(site, "902");
    month.journal.Begin({.date = month.Day(1, 5), .firm = site.firm});
    for (const Cost& cost : costs) {
        // Larger stores cost more.
        const std::int64_t shekels =
            site.use == SiteUse::Store ? cost.shekels * site.monthlyTurnover / 250'000 : cost.shekels;
        month.journal.Post(cost.account, analysis, month.Around(month.Risen(shekels) / 100, cost.permille));
    }
    month.journal.PostRest("3214", OfficeOf(site.firm));
    month.journal.End();
}

struct Overhead {
    std::string_view site, activity;
    Cost cost;
};

void PostBoughtServices(const BusinessMonth& month) {
    static constexpr Overhead overheads[] = {
        {"231", "905", {"6313", 21'000, 500}}, {"231", "904", {"6431", 14'500, 200}},
        {"231", "904", {"6432", 18'700, 0}},   {"221", "904", {"6433", 4'100, 600}},
        {"231", "901", {"6411", 3'600, 100}},  {"131", "905", {"6311", 43'000, 300}},
        {"131", "905", {"6314", 12'500, 700}}, {"131", "903", {"6321", 41'000, 100}},
        {"441", "905", {"6312", 39'000, 250}}, {"441", "904", {"6322", 8'200, 150}},
        {"441", "904", {"6323", 33'500, 120}}, {"131", "901", {"6411", 5'900, 100}},
        {"331", "901", {"6412", 1'100, 500}},  {"432", "901", {"6413", 24'000, 50}},
        {"432", "901", {"6414", 15'800, 0}},   {"431", "901", {"6415", 2'900, 600}},
        {"432", "903", {"6421", 11'000, 0}},   {"431", "901", {"6422", 13'500, 700}},
        {"431", "901", {"6423", 9'000, 800}},  {"431", "901", {"6424", 12'000, 0}},
        {"432", "906", {"6426", 4'500, 900}},
    };
    for (const Overhead& overhead : overheads) {
        const Site& site = FindSite(overhead.site);
        const std::int64_t net = month.Around(overhead.cost.shekels, overhead.cost.permille);
        month.journal.Begin({.date = month.Day(3, 27), .firm = site.firm});
        month.journal.Post(overhead.cost.account, At(site, overhead.activity), net);
        month.journal.Post("2221", OfficeOf(site.firm), net * month.VatPercent() / 100);
        month.journal.PostRest("3211", OfficeOf(site.firm));
        month.journal.End();
    }
}

void PostDepreciation(const BusinessMonth& month) {
    struct Asset {
        std::string_view firm, expense, accumulated;
        std::int64_t shekels;
    };
    static constexpr Asset assets[] = {
        {"10", "6442", "1124", 9'400},  {"10", "6442", "1125", 7'100},  {"20", "6441", "1122", 16'300},
        {"20", "6441", "1123", 21'200}, {"30", "6441", "1121", 12'500}, {"30", "6442", "1126", 8'800},
        {"30", "6443", "1213", 6'200},
    };
    for (const Asset& asset : assets) {
        month.journal.Begin({.date = month.LastDay(), .firm = asset.firm});
        month.journal.Post(asset.expense, OfficeOf(asset.firm), asset.shekels * 100);
        month.journal.PostRest(asset.accumulated, OfficeOf(asset.firm));
        month.journal.End();
    }
}

void PostGroupCharge(const BusinessMonth& month, std::string_view firm, std::int64_t fee, std::int64_t rent) {
    month.journal.Begin({.date = month.LastDay(), .firm = "30"});
    month.journal.Post("4411", OfficeOf("30"), -fee);
    month.journal.Post("4412", OfficeOf("30"), -rent);
    month.journal.PostRest("2231", OfficeOf("30"));
    month.journal.End();
    month.journal.Begin({.date = month.LastDay(), .firm = firm});
    month.journal.Post("6451", OfficeOf(firm), fee);
    month.journal.Post("6214", OfficeOf(firm), rent);
    month.journal.PostRest("2231", OfficeOf(firm));
    month.journal.End();
}

} // namespace

void PostWages(const BusinessMonth& month) {
    for (const NamedCode& firm : Firms()) {
        PostWagesOf(month, firm.code);
    }
}

void PostPremises(const BusinessMonth& month) {
    for (const Site& site : Sites()) {
        PostSite(month, site);
    }
}

void PostOverheads(const BusinessMonth& month) {
    PostBoughtServices(month);
    PostDepreciation(month);
    PostGroupCharge(month, "10", month.Risen(150'000), month.Risen(35'000));
    PostGroupCharge(month, "20", month.Risen(270'000), month.Risen(60'000));
}

} // namespace qel::ledger
