#include "cli/DraftSources.h"

#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <stdexcept>

namespace qel {

namespace {

/// The names of columns where files have different ones.
const char* CommonName(ColumnRole role) {
    constexpr const char* names[] = {
        "date",       "amount", "account", "cost_centre",     "activity",  "firm",  "obs",
        "obs_number", "plbs",   "rh",      "opening_balance", "money_set", "credit"};
    return names[static_cast<std::size_t>(role)];
}

std::string NameOr(const engine::SourceProfile& file, std::optional<std::size_t> column) {
    return column ? file.columns[*column].name : "";
}

/// "obs_name" and "obs_number", which are no levels of an organisation.
bool IsOfObsNumbers(const std::string& header) { return SubjectOf(header) == SubjectOf("obs"); }

/// Running balances have no sum.
bool IsBalance(const std::string& header) {
    const auto words = SubjectOf(header);
    return std::any_of(words.begin(), words.end(),
                       [](const auto& word) { return word == "balance" || word == "יתרה"; });
}

/// The names of a table's lines: those of the key by its header, otherwise the finest names that belong to
/// none of the groups.
std::string NamesOfKey(const engine::SourceProfile& table, std::size_t key,
                       const std::vector<CodesAndNames>& groups) {
    if (const auto names = FindNames(table, key); names && !IsOfObsNumbers(table.columns[*names].name)) {
        return table.columns[*names].name;
    }
    std::string finest;
    std::size_t most = 1;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const auto& column = table.columns[i];
        const bool isOfGroup = std::any_of(groups.begin(), groups.end(),
                                           [&](const auto& group) { return group.names == column.name; });
        if (IsNameHeader(column.name) && !column.isRepeated && !isOfGroup && !IsOfObsNumbers(column.name) &&
            column.distinct > most && table.Determines(key, i)) {
            finest = column.name;
            most = column.distinct;
        }
    }
    return finest;
}

/// Of each file, on a line of its own: its columns, and which of them are dates and amounts.
std::string WhatIsThere(const std::vector<DraftTable>& tables) {
    std::string text;
    for (const auto& table : tables) {
        std::vector<std::string> names, dates, numbers;
        for (const auto& column : table.profile.columns) {
            const auto name = fmt::format("\"{}\"", column.name);
            names.push_back(name); // NOLINT(performance-inefficient-vector-operation): a few columns
            if (column.isDate) {
                dates.push_back(name);
            } else if (column.isAmount) {
                numbers.push_back(name);
            }
        }
        const auto listed = [](const auto& columns) {
            return columns.empty() ? "none" : fmt::format("{}", fmt::join(columns, ", "));
        };
        text += fmt::format("\n  {}: {} lines; columns (by its first line) {}; of dates: {}; of numbers: {}",
                            PathToUtf8(table.profile.file), table.profile.lines, listed(names), listed(dates),
                            listed(numbers));
        if (const auto& malformed = table.profile.malformed; malformed.count > 0) {
            text += fmt::format("; malformed lines: {}, first line {} ({})", malformed.count, malformed.first,
                                malformed.what);
        }
    }
    return text;
}

bool SharesSubject(const std::vector<std::string>& left, const std::vector<std::string>& right) {
    return !left.empty() && left == right;
}

/// Moves coarse columns before fine ones: the more of the others determine a column, the coarser it is.
void SortFromCoarse(const engine::SourceProfile& file, std::vector<std::size_t>& columns) {
    const auto determining = [&](std::size_t column) {
        return std::count_if(columns.begin(), columns.end(), [&](std::size_t other) {
            return other != column && file.Determines(other, column) && !file.Determines(column, other);
        });
    };
    std::vector<std::pair<std::ptrdiff_t, std::size_t>> ranked;
    ranked.reserve(columns.size());
    for (const auto column : columns) {
        ranked.emplace_back(-determining(column), column);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::transform(ranked.begin(), ranked.end(), columns.begin(),
                   [](const auto& rank) { return rank.second; });
}

} // namespace

DraftSources::DraftSources(std::vector<DraftTable> tables) : tables_(std::move(tables)) {
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        if (tables_[i].roles.Of(ColumnRole::Date) && tables_[i].roles.Of(ColumnRole::Amount)) {
            ledgers_.push_back(i);
        }
    }
    if (ledgers_.empty()) {
        throw std::runtime_error("no file has a column of dates and one of amounts, as a ledger has" +
                                 WhatIsThere(tables_));
    }
}

bool DraftSources::IsLedger(const DraftTable& table) const {
    return std::any_of(ledgers_.begin(), ledgers_.end(),
                       [&](std::size_t i) { return &tables_[i] == &table; });
}

std::vector<std::string> DraftSources::LedgerNames() const {
    std::vector<std::string> names;
    for (const auto ledger : ledgers_) {
        names.push_back(tables_[ledger].name);
    }
    return names;
}

std::string DraftSources::ColumnName(ColumnRole role, std::size_t column) const {
    return ledgers_.size() > 1 ? CommonName(role) : FirstLedger().profile.columns[column].name;
}

std::vector<std::pair<std::string, std::string>> DraftSources::Renamed(const DraftTable& ledger) const {
    std::vector<std::pair<std::string, std::string>> renamed;
    for (const auto& found : ledger.roles.columns) {
        const bool isUsed =
            ledgers_.size() > 1 && HasRole(found.role) && ledger.roles.Of(found.role) == found.column;
        const auto& name = ledger.profile.columns[found.column].name;
        if (isUsed && name != CommonName(found.role)) {
            renamed.emplace_back(CommonName(found.role), name);
        }
        const auto names = FindNames(ledger.profile, found.column);
        if (isUsed && names && NamesAreInAll(found.role)) {
            renamed.emplace_back(std::string(CommonName(found.role)) + "_name",
                                 ledger.profile.columns[*names].name);
        }
    }
    return renamed;
}

bool DraftSources::HasRole(ColumnRole role) const {
    return std::all_of(ledgers_.begin(), ledgers_.end(),
                       [&](std::size_t ledger) { return tables_[ledger].roles.Of(role).has_value(); });
}

bool DraftSources::NamesAreInAll(ColumnRole role) const {
    return std::all_of(ledgers_.begin(), ledgers_.end(), [&](std::size_t ledger) {
        const auto column = tables_[ledger].roles.Of(role);
        return column && FindNames(tables_[ledger].profile, *column);
    });
}

DraftAttribute DraftSources::AttributeOf(ColumnRole role) const {
    DraftAttribute attribute;
    if (!HasRole(role)) {
        return attribute;
    }
    const auto& ledger = FirstLedger();
    const auto column = *ledger.roles.Of(role);
    const auto name = ColumnName(role, column);
    if (const auto joined = FindTable(column)) {
        return InTable(name, column, *joined);
    }
    attribute.columns = {name};
    attribute.key.codes = name;
    if (NamesAreInAll(role)) {
        attribute.key.names =
            ledgers_.size() > 1 ? name + "_name" : NameOr(ledger.profile, FindNames(ledger.profile, column));
    }
    if (const auto names = FindNames(ledger.profile, column); names && !attribute.key.names.empty()) {
        attribute.hasManyNames = !ledger.profile.Determines(column, *names);
    }
    if (role == ColumnRole::Account && ledgers_.size() == 1) {
        attribute.groups = GroupsOf(ledger, column);
    }
    if (!attribute.key.names.empty() || !attribute.groups.empty()) {
        attribute.tables = LedgerNames();
    }
    return attribute;
}

DraftAttribute DraftSources::ObsAttribute() const {
    const auto& ledger = FirstLedger();
    auto columns = ledger.roles.AllOf(ColumnRole::Obs);
    if (columns.empty()) {
        const auto centres = AttributeOf(ColumnRole::CostCentre);
        return centres.groups.empty() ? DraftAttribute() : centres;
    }
    if (columns.size() <= 1 || ledgers_.size() > 1) {
        return AttributeOf(ColumnRole::Obs);
    }
    SortFromCoarse(ledger.profile, columns);
    DraftAttribute attribute;
    for (const auto column : columns) {
        attribute.columns.push_back(ledger.profile.columns[column].name);
        attribute.groups.push_back(
            {attribute.columns.back(), NameOr(ledger.profile, FindNames(ledger.profile, column))});
    }
    const bool hasNames = std::any_of(attribute.groups.begin(), attribute.groups.end(),
                                      [](const auto& group) { return !group.names.empty(); });
    attribute.key = attribute.groups.back();
    attribute.groups.pop_back();
    if (hasNames) {
        attribute.tables = LedgerNames();
    }
    return attribute;
}

std::optional<DraftSources::Joined> DraftSources::FindTable(std::size_t column) const {
    constexpr double nearlyAll = 0.95;
    const auto& ledger = FirstLedger().profile;
    const auto subject = SubjectOf(ledger.columns[column].name);
    std::optional<Joined> best;
    int most = 2; // a table of few values that another column has by chance scores less
    for (std::size_t t = 0; t < tables_.size(); ++t) {
        const auto& table = tables_[t];
        for (std::size_t key = 0; !IsLedger(table) && key < table.profile.columns.size(); ++key) {
            const auto& candidate = table.profile.columns[key];
            if (candidate.isRepeated || ledger.ShareIn(column, table.profile, key) < nearlyAll) {
                continue;
            }
            const int score = (SharesSubject(SubjectOf(table.name), subject) ? 4 : 0) +
                              (SharesSubject(SubjectOf(candidate.name), subject) ? 2 : 0) +
                              (candidate.isUnique ? 2 : 0) + (key == 0 ? 1 : 0);
            if (score > most) {
                best = Joined{t, key};
                most = score;
            }
        }
    }
    return best;
}

DraftAttribute DraftSources::InTable(const std::string& column, std::size_t ledgerColumn,
                                     const Joined& joined) const {
    const auto& table = tables_[joined.table];
    const auto& columns = table.profile.columns;
    DraftAttribute attribute;
    attribute.columns = {column};
    attribute.tables = {table.name};
    attribute.groups = GroupsOf(table, joined.key);
    attribute.key = {columns[joined.key].name, NamesOfKey(table.profile, joined.key, attribute.groups)};
    attribute.lacksValues = FirstLedger().profile.ShareIn(ledgerColumn, table.profile, joined.key) < 1;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto isGroup = [&](const auto& group) { return group.codes == columns[i].name; };
        if (i != joined.key && columns[i].distinct > 0 && !columns[i].isRepeated &&
            !IsNameHeader(columns[i].name) &&
            std::none_of(attribute.groups.begin(), attribute.groups.end(), isGroup) &&
            table.profile.Determines(joined.key, i)) {
            attribute.others.push_back({columns[i].name, ""});
        }
    }
    return attribute;
}

std::vector<CodesAndNames> DraftSources::GroupsOf(const DraftTable& table, std::size_t key) const {
    const auto& columns = table.profile.columns;
    std::vector<std::size_t> groups;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const bool mayBe = i != key && !columns[i].isRepeated && !columns[i].isDate &&
                           !IsNameHeader(columns[i].name) && (!columns[i].isAmount || columns[i].isWhole) &&
                           columns[i].distinct > 1 && columns[i].distinct < columns[key].distinct;
        const bool isOther =
            IsLedger(table) && std::any_of(table.roles.columns.begin(), table.roles.columns.end(),
                                           [&](const auto& found) { return found.column == i; });
        const bool isObsNumber = IsOfObsNumbers(columns[i].name);
        if (mayBe && !isOther && !isObsNumber && table.profile.Determines(key, i)) {
            groups.push_back(i);
        }
    }
    const auto hasNames = [&](std::size_t i) { return FindNames(table.profile, i).has_value(); };
    if (std::any_of(groups.begin(), groups.end(), hasNames)) {
        std::erase_if(groups, [&](std::size_t i) { return !hasNames(i); });
    }
    SortFromCoarse(table.profile, groups);
    std::vector<CodesAndNames> named;
    named.reserve(groups.size());
    for (const auto group : groups) {
        named.push_back({columns[group].name, NameOr(table.profile, FindNames(table.profile, group))});
    }
    return named;
}

std::vector<std::size_t> DraftSources::FurtherAmounts() const {
    const auto& ledger = FirstLedger();
    std::vector<std::size_t> further;
    for (std::size_t i = 0; ledgers_.size() == 1 && i < ledger.profile.columns.size(); ++i) {
        const auto& column = ledger.profile.columns[i];
        if (column.isAmount && column.decimals > 0 && !column.isRepeated && !IsBalance(column.name) &&
            ledger.roles.Of(ColumnRole::Amount) != i && ledger.roles.Of(ColumnRole::Credit) != i) {
            further.push_back(i);
        }
    }
    return further;
}

std::vector<std::string> DraftSources::Unused() const {
    const auto& ledger = FirstLedger();
    std::vector<bool> isUsed(ledger.profile.columns.size());
    for (const auto& found : ledger.roles.columns) {
        isUsed[found.column] = HasRole(found.role);
        if (const auto names = FindNames(ledger.profile, found.column)) {
            isUsed[*names] = HasRole(found.role);
        }
    }
    for (const auto amount : FurtherAmounts()) {
        isUsed[amount] = true;
    }
    for (const auto& group : AttributeOf(ColumnRole::Account).groups) {
        for (std::size_t i = 0; i < isUsed.size(); ++i) {
            const auto& name = ledger.profile.columns[i].name;
            isUsed[i] = isUsed[i] || name == group.codes || name == group.names;
        }
    }
    std::vector<std::string> unused;
    for (std::size_t i = 0; i < isUsed.size(); ++i) {
        if (!isUsed[i] && !ledger.profile.columns[i].name.empty()) {
            unused.push_back(ledger.profile.columns[i].name);
        }
    }
    return unused;
}

} // namespace qel
