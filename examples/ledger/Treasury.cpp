#include "examples/ledger/MonthPostings.h"

#include <algorithm>
#include <array>

namespace qel::ledger {
namespace {

constexpr std::string_view bank = "2121";

/// Moves a share of an account's balance to or from the bank.
void Settle(const BusinessMonth& month, std::string_view firm, std::string_view account, std::int64_t percent,
            std::string_view moneySet = "ILS") {
    const std::int64_t amount = month.journal.Balance(firm, account) * percent / 100;
    month.journal.Begin({.date = month.Day(8, 28), .firm = firm, .moneySet = moneySet});
    month.journal.Post(account, OfficeOf(firm), -amount);
    month.journal.PostRest(bank, OfficeOf(firm));
    month.journal.End();
}

void SettleVat(const BusinessMonth& month, std::string_view firm) {
    month.journal.Begin({.date = month.LastDay(), .firm = firm});
    month.journal.Post("3231", OfficeOf(firm), -month.journal.Balance(firm, "3231"));
    month.journal.Post("2221", OfficeOf(firm), -month.journal.Balance(firm, "2221"));
    month.journal.PostRest("3232", OfficeOf(firm));
    month.journal.End();
}

void PostInterest(const BusinessMonth& month, std::string_view firm) {
    constexpr std::array<std::string_view, 2> loans{"3311", "3312"};
    for (const std::string_view loan : loans) {
        const std::int64_t owed = -month.journal.Balance(firm, loan);
        if (owed <= 0) {
            continue;
        }
        month.journal.Begin({.date = month.Day(1, 10), .firm = firm});
        month.journal.Post("7111", OfficeOf(firm), owed * 58 / 12 / 1000); // 5.8% a year
        month.journal.Post(loan, OfficeOf(firm), owed / 60);
        month.journal.PostRest(bank, OfficeOf(firm));
        month.journal.End();
    }
    month.journal.Begin({.date = month.LastDay(), .firm = firm});
    month.journal.Post("7112", OfficeOf(firm), month.Around(2'400, 200));
    month.journal.Post("7211", OfficeOf(firm), -month.Around(1'150, 300));
    month.journal.PostRest(bank, OfficeOf(firm));
    month.journal.End();
}

} // namespace

void PostTreasury(const BusinessMonth& month) {
    for (const NamedCode& firm : Firms()) {
        for (const std::string_view account : {"2111", "2211", "2213"}) {
            Settle(month, firm.code, account, 70);
        }
        for (const std::string_view account : {"3211", "3214", "3221", "3222", "3223", "3224", "3232"}) {
            Settle(month, firm.code, account, account == "3211" ? 60 : 100);
        }
        Settle(month, firm.code, "3212", 50, "USD");
        Settle(month, firm.code, "3213", 50, "EUR");
        SettleVat(month, firm.code);
        PostInterest(month, firm.code);
        if (month.IsQuarterEnd()) {
            Settle(month, firm.code, "2231", 100);
        }
    }
    // Revalues the suppliers' balances at the dollar's new rate.
    month.journal.Begin({.date = month.LastDay(), .firm = "10", .moneySet = "USD"});
    month.journal.Post("7113", OfficeOf("10"),
                       -month.journal.Balance("10", "3212") * month.random.Between(-22, 24) / 1000);
    month.journal.PostRest("3212", OfficeOf("10"));
    month.journal.End();
}

void PostYearEnd(const BusinessMonth& month) {
    for (const NamedCode& firm : Firms()) {
        const Analysis office = OfficeOf(firm.code);
        const EntryHeader header{.date = month.LastDay(), .firm = firm.code, .rh = "H"};
        month.journal.Begin(header);
        month.journal.Post("6421", office, month.Around(28'000, 100));
        month.journal.Post("6114", office, month.Around(41'000, 250));
        month.journal.Post("6221", office, month.Around(6'000, 400));
        month.journal.PostRest("3215", office);
        month.journal.End();

        month.journal.Begin(header);
        const std::int64_t owed = month.journal.Balance(firm.code, "2211");
        month.journal.Post("6324", office, owed * 12 / 1000);
        month.journal.PostRest("2215", office);
        month.journal.End();

        month.journal.Begin(header);
        const std::int64_t profit = std::max<std::int64_t>(0, -month.journal.YearResult(firm.code));
        month.journal.Post("8111", office, profit * 23 / 100);
        month.journal.PostRest("3233", office);
        month.journal.End();
    }
    month.journal.StartYear();
}

} // namespace qel::ledger
