#pragma once

#include "examples/ledger/BusinessMonth.h"

// The postings of a month in the example group, one function per kind of business.

namespace qel::ledger {

/// Wholesale, stores and web shop: revenue, VAT and cost of goods sold.
void PostSales(const BusinessMonth& month);
/// Purchases in shekels, dollars and euros, with freight and customs.
void PostPurchases(const BusinessMonth& month);
/// Pay and social costs of every cost centre, with a bonus in December.
void PostWages(const BusinessMonth& month);
/// Rent, electricity and other running costs of every site.
void PostPremises(const BusinessMonth& month);
/// Marketing, fees, office, vehicles, depreciation, and the holding's charges to the other firms.
void PostOverheads(const BusinessMonth& month);
/// Receipts and payments, interest, VAT returns.
void PostTreasury(const BusinessMonth& month);
/// Year-end adjustments in December: accruals, bad debts and income tax.
void PostYearEnd(const BusinessMonth& month);

} // namespace qel::ledger
