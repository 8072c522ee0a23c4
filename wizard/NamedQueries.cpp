#include "wizard/NamedQueries.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "store/LocalDb.h"
#include "wizard/WizardStore.h"

namespace qel {

namespace {

/// In the order of the table's columns.
constexpr std::string NamedQuery::*columns[] = {
    &NamedQuery::cubeFile,   &NamedQuery::cubeName, &NamedQuery::dimType, &NamedQuery::levelNum,
    &NamedQuery::dataMember, &NamedQuery::firma,    &NamedQuery::obs};

} // namespace

TableRow RowOf(const NamedQuery& query) {
    TableRow row;
    for (const auto column : columns) {
        const std::string& text = query.*column;
        row.push_back(text.empty() ? Variant(Null{}) : Variant(text));
    }
    return row;
}

NamedQuery NamedQueryOf(const TableRow& row, const Locale& locale) {
    if (row.size() < std::size(columns)) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    NamedQuery query;
    for (std::size_t i = 0; i < std::size(columns); ++i) {
        query.*columns[i] = row[i].Is<Null>() ? std::string() : ToText(row[i], locale);
    }
    return query;
}

void NamedQueries::Load() {
    queries_.clear();
    if (!HasWizardDatabase(context_)) {
        return PrepareWizardDatabase(context_);
    }
    for (const TableRow& row : OpenWizardDatabase(context_)->ReadRows(QelNameTable().name)) {
        queries_.push_back(NamedQueryOf(row, context_.locale));
    }
}

void NamedQueries::Use(const NamedQuery& query) {
    auto queries = queries_;
    std::erase(queries, query);
    queries.push_back(query);
    Write(std::move(queries));
}

void NamedQueries::Remove(std::size_t index) {
    auto queries = queries_;
    queries.erase(queries.begin() + static_cast<std::ptrdiff_t>(index));
    Write(std::move(queries));
}

void NamedQueries::Write(std::vector<NamedQuery> queries) {
    std::vector<TableRow> rows;
    rows.reserve(queries.size());
    for (const NamedQuery& query : queries) {
        rows.push_back(RowOf(query));
    }
    PrepareWizardDatabase(context_);
    OpenWizardDatabase(context_)->ReplaceRows(QelNameTable().name, rows);
    queries_ = std::move(queries);
}

} // namespace qel
