#include "wizard/NamedQueries.h"

#include "platform/data/ConnectionText.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "store/LocalDb.h"
#include "text/Utf8Path.h"
#include "wizard/WizardStore.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qel {

namespace {

/// In the order of the table's columns.
constexpr std::string NamedQuery::*columns[] = {
    &NamedQuery::cubeFile,   &NamedQuery::cubeName, &NamedQuery::dimType, &NamedQuery::levelNum,
    &NamedQuery::dataMember, &NamedQuery::firma,    &NamedQuery::obs};

constexpr char nameSeparator = '\t'; // never part of a member's key
constexpr std::size_t mostQueries = 50;

/// Where a cube is: a file's name and folder, or a server's address alone.
struct CubePlace {
    std::string file, folder;
};

CubePlace PlaceOf(const std::string& cubeFile) {
    if (IsServerAddress(cubeFile)) {
        return {WithoutPasswords(cubeFile), {}};
    }
    const auto path = PathFromSetting(cubeFile);
    return {PathToUtf8(path.filename()), PathToUtf8(path.parent_path())};
}

std::string Describe(const NamedQuery& query, const CubePlace& place) {
    return (query.name.empty() ? "" : query.name + " - ") + query.dimType + " " + query.dataMember + " - " +
           query.cubeName + ", " + place.file + (place.folder.empty() ? "" : " (" + place.folder + ")");
}

/// The UTF-8 bytes of each character.
std::vector<std::string_view> Characters(std::string_view text) {
    std::vector<std::string_view> characters;
    while (!text.empty()) {
        std::size_t end = 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
            ++end;
        }
        characters.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return characters;
}

/// At most so many characters. The end, which tells paths apart, keeps twice as many as the beginning.
std::string WithoutMiddle(const std::string& text, std::size_t most) {
    const auto characters = Characters(text);
    if (characters.size() <= most) {
        return text;
    }
    const std::size_t left = (most - 1) / 3, right = most - 1 - left;
    std::string shown;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        if (i < left || i >= characters.size() - right) {
            shown += characters[i];
        } else if (i == left) {
            shown += "…";
        }
    }
    return shown;
}

} // namespace

bool NamedQuery::operator==(const NamedQuery& other) const {
    return std::all_of(std::begin(columns), std::end(columns),
                       [&](const auto column) { return this->*column == other.*column; });
}

std::string DescriptionOf(const NamedQuery& query) { return Describe(query, PlaceOf(query.cubeFile)); }

std::string ShortDescriptionOf(const NamedQuery& query) {
    constexpr std::size_t row = 70, longestName = 20, longestFile = 30, longestAddress = 45,
                          shortestFolder = 10;
    NamedQuery shown = query;
    shown.name = WithoutMiddle(query.name, longestName);
    CubePlace place = PlaceOf(query.cubeFile);
    place.file = WithoutMiddle(place.file, IsServerAddress(query.cubeFile) ? longestAddress : longestFile);
    const std::string folder = std::exchange(place.folder, {});
    if (!folder.empty()) {
        const std::size_t taken = Characters(Describe(shown, place)).size() + std::size(" ()") - 1;
        place.folder = WithoutMiddle(folder, taken + shortestFolder < row ? row - taken : shortestFolder);
    }
    return Describe(shown, place);
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
