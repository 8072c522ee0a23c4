#include "examples/ledger/GroupLedger.h"

#include "examples/ledger/ChartOfAccounts.h"
#include "examples/ledger/MonthPostings.h"

namespace qel::ledger {
namespace {

constexpr std::chrono::year_month firstMonth = std::chrono::year{2023} / std::chrono::January;
constexpr int monthCount = 36;

struct OpeningBalance {
    std::string_view firm, account;
    std::int64_t shekels;
};

constexpr OpeningBalance openingBalances[] = {
    {"10", "1114", 1'350'000},  {"10", "1115", 820'000},    {"10", "1124", -410'000},
    {"10", "1125", -395'000},   {"10", "2121", 1'420'500},  {"10", "2211", 3'980'250},
    {"10", "2311", 1'240'000},  {"10", "2312", 690'000},    {"10", "2313", 815'000},
    {"10", "2314", 450'000},    {"10", "2315", 1'105'000},  {"10", "2316", 560'000},
    {"10", "2317", 505'000},    {"10", "2318", 235'000},    {"10", "3111", -500'000},
    {"10", "3211", -1'160'700}, {"10", "3212", -905'300},   {"10", "3213", -644'100},
    {"10", "3311", -1'800'000}, {"20", "1112", 2'760'000},  {"20", "1113", 3'105'000},
    {"20", "1122", -980'000},   {"20", "1123", -1'240'000}, {"20", "2111", 182'400},
    {"20", "2112", 14'300},     {"20", "2121", 960'750},    {"20", "2213", 1'905'600},
    {"20", "2311", 870'000},    {"20", "2312", 640'000},    {"20", "2313", 705'000},
    {"20", "2314", 590'000},    {"20", "2315", 1'020'000},  {"20", "2316", 610'000},
    {"20", "2317", 480'000},    {"20", "2318", 415'000},    {"20", "3111", -1'000'000},
    {"20", "3211", -1'340'000}, {"20", "3212", -720'000},   {"20", "3213", -510'000},
    {"20", "3312", -2'600'000}, {"30", "1111", 6'400'000},  {"30", "1116", 720'000},
    {"30", "1121", -1'150'000}, {"30", "1126", -310'000},   {"30", "1211", 540'000},
    {"30", "1212", 1'900'000},  {"30", "1213", -120'000},   {"30", "2121", 640'900},
    {"30", "2124", 1'000'000},  {"30", "3111", -2'000'000}, {"30", "3112", -1'500'000},
    {"30", "3311", -2'400'000},
};

void PostOpeningBalances(Journal& journal) {
    for (const NamedCode& firm : Firms()) {
        journal.Begin({.date = firstMonth / 1, .firm = firm.code, .openingBalance = "1"});
        for (const OpeningBalance& balance : openingBalances) {
            if (balance.firm == firm.code) {
                journal.Post(balance.account, OfficeOf(firm.code), balance.shekels * 100);
            }
        }
        journal.PostRest("3113", OfficeOf(firm.code));
        journal.End();
    }
}

DimensionTable SimpleTable(std::string file, std::span<const NamedCode> lines) {
    DimensionTable table{std::move(file), {"code", "name", "name_he"}, {}};
    for (const NamedCode& line : lines) {
        table.rows.push_back({std::string(line.code), std::string(line.name), std::string(line.hebrewName)});
    }
    return table;
}

DimensionTable Accounts() {
    DimensionTable table{"accounts.csv",
                         {"code", "name", "name_he", "kind", "group1", "group1_name", "group1_name_he",
                          "group2", "group2_name", "group2_name_he", "group3", "group3_name",
                          "group3_name_he"},
                         {}};
    for (const ChartLine& line : ChartOfAccounts()) {
        if (line.code.size() < 4) {
            continue;
        }
        std::vector<std::string> row{std::string(line.code), std::string(line.name),
                                     std::string(line.hebrewName), std::string(AccountKind(line.code))};
        for (std::size_t digits = 1; digits <= 3; ++digits) {
            const ChartLine& group = FindInChart(line.code.substr(0, digits));
            row.insert(row.end(),
                       {std::string(group.code), std::string(group.name), std::string(group.hebrewName)});
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

DimensionTable Activities() {
    DimensionTable table = SimpleTable("activities.csv", GeneralActivities());
    for (std::size_t channel = 0; channel < Channels().size(); ++channel) {
        for (std::size_t product = 0; product < Products().size(); ++product) {
            const auto join = [&](std::string_view what, std::string_view where) {
                return std::string(what) + ", " + std::string(where);
            };
            table.rows.push_back({std::string(ActivityOf(product, channel)),
                                  join(Products()[product].name, Channels()[channel].name),
                                  join(Products()[product].hebrewName, Channels()[channel].hebrewName)});
        }
    }
    return table;
}

DimensionTable Obs() {
    DimensionTable table{"obs.csv",
                         {"code", "level1", "level1_name", "level1_name_he", "level2", "level2_name",
                          "level2_name_he", "level3_name", "level3_name_he"},
                         {}};
    for (const Site& site : Sites()) {
        const NamedCode& region = Regions()[static_cast<std::size_t>(site.code[0] - '1')];
        const NamedCode& kind = UnitKinds()[static_cast<std::size_t>(site.code[1] - '1')];
        table.rows.push_back({std::string(site.code), std::string(region.code), std::string(region.name),
                              std::string(region.hebrewName), std::string(kind.code), std::string(kind.name),
                              std::string(kind.hebrewName), std::string(site.name),
                              std::string(site.hebrewName)});
    }
    return table;
}

DimensionTable CostCentreTable() {
    DimensionTable table{"cost_centres.csv", {"code", "name", "name_he"}, {}};
    for (const CostCentre& centre : CostCentres()) {
        table.rows.push_back(
            {std::string(centre.code), std::string(centre.name), std::string(centre.hebrewName)});
    }
    return table;
}

DimensionTable StructureTable() {
    DimensionTable table{"obs_numbers.csv", {"code", "obs_name", "obs_number", "name", "name_he"}, {}};
    for (const StructureLink& link : Structures()) {
        table.rows.push_back({std::string(link.businessLine), std::string(link.obsName),
                              std::string(link.obsNumber), std::string(link.caption),
                              std::string(link.hebrewCaption)});
    }
    return table;
}

} // namespace

void GenerateGroupLedger(std::uint64_t seed, const LineSink& sink) {
    Journal journal(sink);
    Random random(seed);
    PostOpeningBalances(journal);
    for (int index = 0; index < monthCount; ++index) {
        const BusinessMonth month{journal, random, firstMonth + std::chrono::months{index}, index};
        PostSales(month);
        PostPurchases(month);
        PostWages(month);
        PostPremises(month);
        PostOverheads(month);
        PostTreasury(month);
        if (month.IsYearEnd()) {
            PostYearEnd(month);
        }
    }
}

std::vector<DimensionTable> GroupTables() {
    static constexpr NamedCode plbs[] = {{"B", "Balance sheet", "מאזן"},
                                         {"P", "Profit and loss", "רווח והפסד"}};
    static constexpr NamedCode rh[] = {{"R", "Regular", "רגיל"},
                                       {"H", "Year-end adjustments", "התאמות סוף שנה"}};
    static constexpr NamedCode opening[] = {{"0", "Movements", "תנועות"},
                                            {"1", "Opening balances", "יתרות פתיחה"}};
    static constexpr NamedCode money[] = {
        {"ILS", "Shekels", "שקלים"}, {"USD", "Dollars", "דולרים"}, {"EUR", "Euros", "אירו"}};
    return {Accounts(),
            Activities(),
            CostCentreTable(),
            Obs(),
            StructureTable(),
            SimpleTable("firms.csv", Firms()),
            SimpleTable("plbs.csv", plbs),
            SimpleTable("rh.csv", rh),
            SimpleTable("opening_balance.csv", opening),
            SimpleTable("money_sets.csv", money)};
}

} // namespace qel::ledger
