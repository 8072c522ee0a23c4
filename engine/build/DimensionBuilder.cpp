#include "engine/build/DimensionBuilder.h"

#include <algorithm>
#include <string>

namespace qel::engine {

namespace {

/// The table's columns of one level.
struct LevelColumns {
    std::size_t key = noColumn, name = noColumn, caption = noColumn;
};

std::size_t ColumnOrNone(const TableReader& reader, const std::string& name) {
    return name.empty() ? noColumn : reader.Column(name);
}

std::string_view FieldOrEmpty(const TableReader& reader, std::size_t column) {
    return column == noColumn ? std::string_view() : reader.Field(column);
}

/// The fields of a line that holds nothing but a value of the dimension's fact columns.
std::vector<MemberTree::LevelFields> FieldsOf(std::string_view value, const DimensionDefinition& dimension,
                                              const HierarchyDefinition& hierarchy) {
    std::vector<MemberTree::LevelFields> fields(hierarchy.levels.size());
    for (const std::string& column : dimension.keys) {
        const std::string_view part = value.substr(0, value.find(keyPartEnd));
        for (std::size_t level = 0; level < fields.size(); ++level) {
            if (hierarchy.levels[level].key == column) {
                fields[level].key = part;
            }
        }
        value.remove_prefix(std::min(value.size(), part.size() + 1));
    }
    return fields;
}

} // namespace

DimensionBuilder::DimensionBuilder(const DimensionDefinition& definition) : definition_(definition) {
    if (definition.calendar) {
        return;
    }
    for (const HierarchyDefinition& hierarchy : definition.hierarchies) {
        trees_.emplace_back(hierarchy);
    }
}

void DimensionBuilder::ReadTables(TableReader& reader, KeyColumnBuilder* keys, std::size_t tableOfKeys) {
    const std::vector<std::size_t> keyColumns = reader.Columns(definition_.keys);
    std::vector<std::vector<LevelColumns>> columns;
    for (const HierarchyDefinition& hierarchy : definition_.hierarchies) {
        columns.emplace_back();
        for (const LevelDefinition& level : hierarchy.levels) {
            columns.back().push_back({reader.Column(level.key), ColumnOrNone(reader, level.memberName),
                                      ColumnOrNone(reader, level.caption)});
        }
    }
    std::vector<MemberTree::LevelFields> fields;
    while (reader.Next()) {
        const std::string_view key = reader.Key(keyColumns);
        if (key.empty() && keys != nullptr) {
            // The table may be the fact table, where a line without this key is valid.
            continue;
        }
        std::optional<std::uint32_t> value;
        if (keys != nullptr) {
            value = keys->AddKnownValue(key, tableOfKeys);
        }
        for (std::size_t i = 0; i < trees_.size(); ++i) {
            fields.clear();
            for (const LevelColumns& level : columns[i]) {
                fields.push_back({reader.Field(level.key), FieldOrEmpty(reader, level.name),
                                  FieldOrEmpty(reader, level.caption)});
            }
            trees_[i].Add(fields, value);
        }
    }
}

void DimensionBuilder::TakeValues(const KeyColumnBuilder* keys) {
    if (definition_.calendar || !definition_.tables.empty()) {
        return;
    }
    for (MemberTree& tree : trees_) {
        for (const std::vector<std::string>& path : definition_.members) {
            std::vector<MemberTree::LevelFields> fields;
            fields.reserve(path.size());
            for (const std::string& name : path) {
                fields.push_back({name, "", ""});
            }
            tree.Add(fields, std::nullopt);
        }
        for (std::uint32_t number = 0; keys != nullptr && number < keys->Texts().Count(); ++number) {
            tree.Add(FieldsOf(keys->Texts().Text(number), definition_, tree.Definition()), number);
        }
    }
}

void DimensionBuilder::Finish() {
    for (MemberTree& tree : trees_) {
        tree.Finish();
    }
}

std::size_t DimensionBuilder::DeepestTree() const {
    const auto& hierarchies = definition_.hierarchies;
    const auto deepest =
        std::max_element(hierarchies.begin(), hierarchies.end(), [](const auto& left, const auto& right) {
            return left.levels.size() < right.levels.size();
        });
    return static_cast<std::size_t>(deepest - hierarchies.begin());
}

DimensionModel DimensionBuilder::Model(const KeyColumnBuilder* keys,
                                       std::optional<std::uint32_t> keyColumn) const {
    DimensionModel model;
    model.name = definition_.name;
    model.caption = definition_.caption;
    model.isTime = definition_.calendar.has_value();
    if (model.isTime) {
        model.hierarchies.push_back(keys->Periods().Model(definition_.hierarchies.front(),
                                                          *definition_.calendar, keyColumn.value_or(0)));
    }
    static const std::vector<std::uint32_t> noCodes;
    for (const MemberTree& tree : trees_) {
        model.hierarchies.push_back(tree.Model(keyColumn, keys == nullptr ? noCodes : keys->Codes(),
                                               keys == nullptr ? 0 : keys->CodeCount()));
    }
    return model;
}

} // namespace qel::engine
