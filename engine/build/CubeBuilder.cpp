#include "engine/build/CubeBuilder.h"

#include "engine/build/BuildWarnings.h"
#include "engine/build/FactSorter.h"
#include "engine/build/PackedLayout.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>
#include <string>

namespace qel::engine {

namespace {

std::uint8_t CodeWidth(std::uint32_t codes) {
    const std::uint8_t bytes = BytesFor(codes);
    return bytes == 3 ? std::uint8_t{4} : bytes;
}

} // namespace

CubeBuilder::CubeBuilder(const Definition& definition, const CubeDefinition& cube, BadLines& badLines,
                         const BuildProgress& progress, SpillStore& store)
    : definition_(definition), cube_(cube), badLines_(badLines), progress_(progress), details_(cube.details),
      store_(store), facts_(store) {
    for (const DimensionDefinition& dimension : cube.dimensions) {
        dimensions_.emplace_back(dimension);
    }
    AddKeyColumns();
    std::vector<bool> isSummed;
    for (const MeasureDefinition& measure : cube.measures) {
        isSummed.push_back(measure.column.has_value());
    }
    facts_.store.SetColumns(keyColumns_.size(), isSummed);
}

void CubeBuilder::AddKeyColumns() {
    for (const DimensionDefinition& dimension : cube_.dimensions) {
        keyColumnOf_.emplace_back();
        if (!dimension.column) {
            continue;
        }
        // A calendar numbers periods instead of texts, so it gets its own key column.
        const auto found = std::find_if(keyColumns_.begin(), keyColumns_.end(), [&](const auto& column) {
            return column.Columns() == dimension.columns &&
                   column.IsCalendar() == dimension.calendar.has_value();
        });
        keyColumnOf_.back() = static_cast<std::uint32_t>(found - keyColumns_.begin());
        if (found == keyColumns_.end()) {
            keyColumns_.emplace_back(*dimension.column, dimension.columns, dimension.calendar);
        }
    }
}

KeyColumnBuilder* CubeBuilder::KeysOf(std::size_t dimension) {
    return keyColumnOf_[dimension] ? &keyColumns_[*keyColumnOf_[dimension]] : nullptr;
}

void CubeBuilder::Run(BuildTotals& totals) {
    ReadDimensionTables(totals);
    ReadFactTables(totals);
    if (progress_) {
        progress_("Ordering the members of " + cube_.name, 0);
    }
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
        dimensions_[i].TakeValues(KeysOf(i));
        dimensions_[i].Finish();
    }
    NumberKeys();
    MakeModel();
    FindWarnings(totals.warnings);
    const RecordLayout layout(model_);
    ready_.emplace(CubeFacts{layout, MakeRecords(model_, layout, keyColumns_, facts_.store, store_), {}, {}});
    for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
        ready_->codes.push_back(CountCodes(i));
    }
    ready_->details = std::move(facts_.details);
}

void CubeBuilder::ReadDimensionTables(BuildTotals& totals) {
    std::vector<std::vector<std::string>> tableNames(keyColumns_.size());
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
        const DimensionDefinition& dimension = dimensions_[i].Definition();
        if (dimension.tables.empty()) {
            continue;
        }
        std::size_t tableOfKeys = 0;
        if (keyColumnOf_[i]) {
            auto& names = tableNames[*keyColumnOf_[i]];
            tableOfKeys = names.size();
            names.push_back(fmt::format("table of dimension {} ({})", dimension.name,
                                        definition_.tables[dimension.tables.front()].ShortName()));
        }
        for (const std::size_t table : dimension.tables) {
            TableReader reader(definition_.tables[table], badLines_, progress_);
            dimensions_[i].ReadTables(reader, KeysOf(i), tableOfKeys);
            totals.dimensionLinesSkipped += reader.LinesSkipped();
            AddTableWarnings(reader, totals.warnings);
        }
    }
    for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
        keyColumns_[i].CloseTables(std::move(tableNames[i]));
    }
}

void CubeBuilder::ReadFactTables(BuildTotals& totals) {
    for (const std::size_t table : cube_.facts) {
        TableReader reader(definition_.tables[table], badLines_, progress_);
        const std::uint64_t firstRow = facts_.store.RowCount();
        const std::vector<std::uint64_t> sumsBefore = facts_.store.Sums();
        ReadFacts(reader, cube_.measures, DetailsIn(reader, model_.sources.size()), keyColumns_, facts_);
        SourceTotals& source = model_.sources.emplace_back();
        source.file = definition_.tables[table].ShortName();
        source.linesRead = reader.LinesRead();
        source.linesSkipped = reader.LinesSkipped();
        source.linesUsed = facts_.store.RowCount() - firstRow;
        const std::vector<std::uint64_t> sums = facts_.store.Sums();
        for (std::size_t i = 0; i < sums.size(); ++i) {
            // A sum that overflows is refused when the whole measure is known.
            source.sums.push_back(static_cast<std::int64_t>(sums[i] - sumsBefore[i]));
        }
        AddTableWarnings(reader, totals.warnings);
        totals.linesRead += reader.LinesRead();
        totals.linesSkipped += reader.LinesSkipped();
        totals.linesKept += reader.LinesRead() - reader.LinesSkipped();
        if (facts_.store.RowCount() > format::mostFacts) {
            throw EngineError(ErrorKind::InvalidData,
                              fmt::format("cube {}: more than {} facts", cube_.name, format::mostFacts));
        }
    }
    facts_.store.Finish();
    for (DetailTexts& detail : facts_.details) {
        detail.numbers.Finish();
    }
}

DetailsOfTable CubeBuilder::DetailsIn(const TableReader& reader, std::size_t file) {
    if (file == 0 && cube_.keepsAllDetails) {
        for (const std::string& name : reader.ColumnNames()) {
            details_.push_back({name, name});
        }
    }
    DetailsOfTable details{static_cast<std::uint32_t>(file), !details_.empty(), {}};
    for (const DetailDefinition& detail : details_) {
        details.columns.push_back(reader.Column(detail.column));
    }
    while (facts_.details.size() < details_.size()) {
        facts_.details.emplace_back(store_);
    }
    return details;
}

void CubeBuilder::DescribeDetails() {
    model_.keepsDetails = !details_.empty();
    for (std::size_t i = 0; i < details_.size(); ++i) {
        const TextDictionary& texts = facts_.details[i].texts;
        DetailModel& model = model_.details.columns.emplace_back();
        model.name = details_[i].column;
        model.caption = details_[i].caption;
        model.texts = texts.Count();
        const bool areAllDifferent = texts.Count() == facts_.store.RowCount(); // and numbered like the rows
        model.codeWidth = areAllDifferent ? std::uint8_t{0} : CodeWidth(texts.Count());
        model.offsetWidth = texts.Bytes() > std::numeric_limits<std::uint32_t>::max() ? 8 : 4;
    }
    model_.details.runs = std::move(facts_.lines);
}

void CubeBuilder::NumberKeys() {
    for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
        KeyColumnBuilder& column = keyColumns_[i];
        if (column.IsCalendar()) {
            column.NumberDates(facts_.store.Counts(i), FactPlace());
        } else {
            column.NumberTexts(MainTree(i).ValuesInTreeOrder(column.Ranks()));
        }
    }
}

std::string CubeBuilder::FactPlace() const {
    std::vector<std::string> files;
    for (const std::size_t table : cube_.facts) {
        files.push_back(definition_.tables[table].ShortName());
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (model_.sources[i].linesRead == 0) {
            files[i] += fmt::format(" ({})", NoRowsText(definition_.tables[cube_.facts[i]]));
        }
    }
    return fmt::format("cube {}, facts of {}", cube_.name, fmt::join(files, ", "));
}

const MemberTree& CubeBuilder::MainTree(std::size_t keyColumn) const {
    std::size_t best = 0, tree = 0, depth = 0; // the deepest tree found so far
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
        if (keyColumnOf_[i] != keyColumn) {
            continue;
        }
        const DimensionDefinition& dimension = dimensions_[i].Definition();
        if (dimension.isMain) {
            return dimensions_[i].Tree(0);
        }
        const std::size_t deepest = dimensions_[i].DeepestTree();
        if (dimension.hierarchies[deepest].levels.size() > depth) {
            best = i;
            tree = deepest;
            depth = dimension.hierarchies[deepest].levels.size();
        }
    }
    return dimensions_[best].Tree(tree);
}

void CubeBuilder::MakeModel() {
    model_.name = cube_.name;
    model_.caption = cube_.caption;
    model_.defaultMeasure = static_cast<std::uint32_t>(cube_.defaultMeasure);
    model_.rowCount = facts_.store.RowCount();
    model_.calculations = cube_.calculations;
    for (const KeyColumnBuilder& column : keyColumns_) {
        model_.keyColumns.push_back({column.Name(), column.CodeCount()});
    }
    PackKeyColumns(model_.keyColumns);
    model_.measures = MeasureModels(cube_.measures, facts_.store, cube_.name);
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
        model_.dimensions.push_back(dimensions_[i].Model(KeysOf(i), keyColumnOf_[i]));
    }
    DescribeDetails();
    for (const auto& order : SortOrders()) {
        model_.projections.push_back(DescribeProjection(order, CountCodes(order.front())));
    }
}

void CubeBuilder::FindWarnings(std::vector<BuildWarning>& warnings) const {
    for (std::size_t i = 0; i < dimensions_.size(); ++i) {
        const auto column = keyColumnOf_[i];
        const DimensionWarnings check(cube_, dimensions_[i], column ? &keyColumns_[*column] : nullptr,
                                      warnings);
        check.AddSharedNames();
        if (column) {
            check.AddSharedValues(facts_.store, *column);
            check.AddDateOrder();
        }
    }
}

std::vector<std::uint64_t> CubeBuilder::CountCodes(std::size_t keyColumn) const {
    const KeyColumnBuilder& column = keyColumns_[keyColumn];
    const std::vector<std::uint64_t>& facts = facts_.store.Counts(keyColumn);
    std::vector<std::uint64_t> counts(column.CodeCount());
    for (std::size_t number = 0; number < facts.size(); ++number) {
        if (facts[number] != 0) {
            counts[column.Codes()[number]] += facts[number];
        }
    }
    return counts;
}

std::vector<std::vector<std::uint16_t>> CubeBuilder::SortOrders() const {
    std::vector<std::vector<std::uint16_t>> orders;
    for (const auto& columns : cube_.sortOrders) {
        orders.emplace_back();
        for (const std::string& column : columns) {
            const auto found = std::find_if(keyColumns_.begin(), keyColumns_.end(),
                                            [&column](const auto& keys) { return keys.Name() == column; });
            orders.back().push_back(static_cast<std::uint16_t>(found - keyColumns_.begin()));
        }
    }
    if (!orders.empty()) {
        return orders;
    }
    std::vector<bool> isCalendar;
    for (const KeyColumnBuilder& column : keyColumns_) {
        isCalendar.push_back(column.IsCalendar());
    }
    return ChooseSortOrders(model_.keyColumns, isCalendar);
}

} // namespace qel::engine
