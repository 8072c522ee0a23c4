#pragma once

#include "examples/ledger/BusinessMonth.h"

// What happens in every month of the example group, one function a kind of business.

namespace qel::ledger {

/// Wholesale, stores and web shop: revenue, VAT and the cost of the goods sold.
void PostSales(const BusinessMonth& month);
/// Goods bought in shekels, dollars and euros, with freight and customs.
void PostPurchases(const BusinessMonth& month);
/// Pay and social costs of every cost centre, a bonus in December.
void PostWages(const BusinessMonth& month);
/// Rent, electricity and the like of every site.
void PostPremises(const BusinessMonth& month);
/// Marketing, fees, office, vehicles, depreciation, and what the holding charges the other firms.
void PostOverheads(const BusinessMonth& month);
/// Money received and paid, interest, VAT returns.
void PostTreasury(const BusinessMonth& month);
/// Adjusting entries of a December: accruals, bad debts and income tax.
void PostYearEnd(const BusinessMonth& month);

} // namespace qel::ledger
