#include "engine/export/StarSchema.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// Lower-case letters and digits of the name, '_' for everything else.
std::string PlainName(std::string_view name) {
    constexpr std::size_t longest = 24;
    std::string plain;
    for (const char character : name.substr(0, longest)) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        const bool isPlain = (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
        if (isUpper) {
            plain += static_cast<char>(character - 'A' + 'a');
        } else if (isPlain || plain.empty() || plain.back() != '_') {
            plain += isPlain ? character : '_';
        }
    }
    return plain;
}

std::string TakeName(const std::string& wanted, std::set<std::string>& taken) {
    std::string name = wanted;
    for (int number = 2; !taken.insert(name).second; ++number) {
        name = wanted + "_" + std::to_string(number);
    }
    return name;
}

} // namespace

std::string IdColumn(std::size_t level) { return "level" + std::to_string(level) + "_id"; }
std::string KeyColumnName(std::size_t level) { return "level" + std::to_string(level) + "_key"; }
std::string NameColumn(std::size_t level) { return "level" + std::to_string(level) + "_name"; }
std::string CaptionColumn(std::size_t level) { return "level" + std::to_string(level) + "_caption"; }

StarSchema MakeStarSchema(const Cube& cube, std::set<std::string>& takenTables) {
    StarSchema star;
    star.cube = &cube;
    const std::string prefix = PlainName(cube.Name());
    star.factTable = TakeName(prefix + "_facts", takenTables);
    std::set<std::string> takenColumns;
    for (const auto& column : cube.Facts().KeyColumns()) {
        star.keyColumns.push_back(TakeName(PlainName(column.name) + "_code", takenColumns));
    }
    for (const auto& measure : cube.Measures()) {
        star.measureColumns.push_back(TakeName(PlainName(measure.name), takenColumns));
    }
    for (const auto& hierarchy : cube.Hierarchies()) {
        if (!hierarchy.KeyColumn() && star.constantColumn.empty()) {
            star.constantColumn = TakeName("every_fact", takenColumns);
        }
        const std::string wanted = prefix + "_" + PlainName(hierarchy.Name());
        star.hierarchies.push_back(MakeStarTables(hierarchy, TakeName(wanted, takenTables)));
    }
    return star;
}

} // namespace qel::engine
