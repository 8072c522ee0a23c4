#include "wizard/NamedQueries.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "store/LocalDb.h"
#include "text/Utf8Path.h"
#include "wizard/WizardStore.h"

#include <algorithm>

namespace qel {

namespace {

/// In the order of the table's columns.
constexpr std::string NamedQuery::*columns[] = {
    &NamedQuery::cubeFile,   &NamedQuery::cubeName, &NamedQuery::dimType, &NamedQuery::levelNum,
    &NamedQuery::dataMember, &NamedQuery::firma,    &NamedQuery::obs};

constexpr char nameSeparator = '\t'; // never part of a member's key
constexpr std::size_t mostQueries = 50;

} // namespace

bool NamedQuery::operator==(const NamedQuery& other) const {
    return std::all_of(std::begin(columns), std::end(columns),
                       [&](const auto column) { return this->*column == other.*column; });
}

std::string DescriptionOf(const NamedQuery& query) {
    const auto path = PathFromSetting(query.cubeFile);
    const std::string folder = PathToUtf8(path.parent_path());
    return (query.name.empty() ? "" : query.name + " - ") + query.dimType + " " + query.dataMember + " - " +
           query.cubeName + ", " + PathToUtf8(path.filename()) + (folder.empty() ? "" : " (" + folder + ")");
}

TableRow RowOf(const NamedQuery& query) {
    TableRow row;
    for (const auto column : columns) {
        std::string text = query.*column;
        if (column == &NamedQuery::dataMember && !query.name.empty()) {
            text += nameSeparator + query.name;
        }
        row.push_back(text.empty() ? Variant(Null{}) : Variant(std::move(text)));
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
    if (const auto end = query.dataMember.find(nameSeparator); end != std::string::npos) {
        query.name = query.dataMember.substr(end + 1);
        query.dataMember.resize(end);
    }
    return query;
}

std::optional<std::size_t> NamedQueries::Find(const NamedQuery& query) const {
    const auto found = std::find(queries_.begin(), queries_.end(), query);
    return found != queries_.end() ? std::optional(static_cast<std::size_t>(found - queries_.begin()))
                                   : std::nullopt;
}

void NamedQueries::Load() {
    queries_.clear();
    if (!HasWizardDatabase(context_)) {
        return CreateLocalDb(context_.Store());
    }
    const auto rows = OpenWizardDatabase(context_)->ReadRows(QelNameTable().name);
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) { // the table has the newest last
        queries_.push_back(NamedQueryOf(*row, context_.locale));
    }
}

void NamedQueries::Use(const NamedQuery& query) {
    auto queries = queries_;
    std::erase(queries, query);
    queries.insert(queries.begin(), query);
    queries.resize(std::min(queries.size(), mostQueries));
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
    for (auto query = queries.rbegin(); query != queries.rend(); ++query) {
        rows.push_back(RowOf(*query));
    }
    OpenWizardDatabase(context_)->ReplaceRows(QelNameTable().name, rows);
    queries_ = std::move(queries);
}

} // namespace qel
