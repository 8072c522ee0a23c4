#include "engine/build/CubeBuilder.h"

#include "engine/build/BuildWarnings.h"
#include "engine/build/FactSorter.h"
#include "engine/build/PackedLayout.h"
#include "engine/build/Records.h"
#include "engine/storage/Format.h"
#include "qel/engine/EngineError.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <utility>

namespace qel::engine {

namespace {

std::uint8_t CodeWidth(std::uint32_t codes) {
    const std::uint8_t bytes = BytesFor(codes);
    return bytes == 3 ? std::uint8_t{4} : bytes;
}

} // namespace

CubeBuilder::CubeBuilder(const Definition& definition, const CubeDefinition& cube, BadLines& badLines,
                         const BuildProgress& progress, SpillStore& store, Continuation continuation)
    : definition_(definition), cube_(cube), badLines_(badLines), progress_(progress), details_(cube.details),
      store_(store), facts_(store), continuation_(std::move(continuation)) {
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
    totals.obstacle = totals.obstacle.empty() ? continuation_.obstacle : totals.obstacle;
    const RecordLayout layout(model_);
    DescribeKept();
    ready_.emplace(CubeFacts{
        layout, MakeRecords(model_, layout, keyColumns_, facts_.store, continuation_.keeps, store_), {}, {}});
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
    const bool goesOn = GoesOn();
    for (std::size_t i = 0; i < cube_.facts.size(); ++i) {
        const std::size_t table = cube_.facts[i];
        TableReader reader(definition_.tables[table], badLines_, progress_);
        const std::uint64_t firstRow = facts_.store.RowCount();
        const std::vector<std::uint64_t> sumsBefore = facts_.store.Sums();
        if (goesOn) {
            const KeptTable& before = continuation_.previous->Facts().tables[i];
            continuation_.previous->AddRows(before.rows, keyColumns_, facts_.store);
            reader.ContinueAt(before.file.size, before.nextLine, before.rows);
            totals.linesTaken += before.rows;
        }
        ReadFacts(reader, cube_.measures, DetailsIn(reader, model_.sources.size()), keyColumns_, facts_);
        SourceTotals& source = model_.sources.emplace_back();
        source.file = definition_.tables[table].ShortName();
        source.linesRead = reader.LinesRead();
        source.linesSkipped = reader.LinesSkipped();
        source.linesUsed = facts_.store.RowCount() - firstRow;
        const std::vector<std::uint64_t> sums = facts_.store.Sums();
        for (std::size_t measure = 0; measure < sums.size(); ++measure) {
            // A sum that overflows is refused when the whole measure is known.
            source.sums.push_back(static_cast<std::int64_t>(sums[measure] - sumsBefore[measure]));
        }
        if (continuation_.keeps) {
            Keep(reader, files_[i], source.linesUsed);
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
    continuation_.previous.reset();
    facts_.store.Finish();
    for (DetailTexts& detail : facts_.details) {
        detail.numbers.Finish();
    }
}

bool CubeBuilder::GoesOn() {
    std::string& obstacle = continuation_.obstacle;
    if (!continuation_.keeps) {
        return false;
    }
    const KeptFacts* const before = continuation_.previous ? &continuation_.previous->Facts() : nullptr;
    const bool fits = before != nullptr && before->tables.size() == cube_.facts.size() &&
                      before->texts.size() == keyColumns_.size() &&
                      before->isSummed.size() == cube_.measures.size();
    for (std::size_t i = 0; i < cube_.facts.size(); ++i) {
        const TableDefinition& table = definition_.tables[cube_.facts[i]];
        files_.push_back(TakePrint(table.file, fits ? before->tables[i].file.size : 0));
        const ReadFile& file = files_.back();
        if (!fits || !obstacle.empty()) {
            continue;
        }
        if (file.beginning != before->tables[i].file || !file.beginsWithLines) {
            obstacle = fmt::format("{} does not begin with the {} bytes that the previous build read",
                                   table.ShortName(), before->tables[i].file.size);
        }
        // The currency of the first amount decides which others are refused.
        const bool hasCurrency = std::any_of(before->currencies.begin(), before->currencies.end(),
                                             [](std::uint8_t currency) { return currency != 0; });
        if (hasCurrency && i + 1 < cube_.facts.size() && !(file.all == before->tables[i].file)) {
            obstacle =
                fmt::format("the amounts have currencies, and {}, which is not the last fact file, has "
                            "new lines",
                            table.ShortName());
        }
    }
    if (!fits || !obstacle.empty()) {
        return false;
    }
    if (!continuation_.previous->AreTaken(keyColumns_)) {
        obstacle = "the facts have a value that its table no longer lists";
        return false;
    }
    facts_.currencies = before->currencies;
    return true;
}

void CubeBuilder::Keep(const TableReader& reader, const ReadFile& file, std::uint64_t rows) {
    kept_.tables.push_back({file.all, reader.Records().Number(), rows});
    continuation_.keeps =
        reader.LinesSkipped() == 0 && reader.Records().IsComplete() && IsAsRead(reader.Table().file, file);
}

void CubeBuilder::DescribeKept() {
    if (!continuation_.keeps) {
        return;
    }
    kept_.definition = continuation_.definition;
    kept_.currencies = facts_.currencies;
    for (const MeasureDefinition& measure : cube_.measures) {
        kept_.isSummed.push_back(measure.column.has_value());
    }
    for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
        auto& texts = kept_.texts.emplace_back();
        const std::vector<std::uint64_t>& counts = facts_.store.Counts(i);
        for (std::uint32_t number = 0; number < counts.size(); ++number) {
            texts.push_back(counts[number] != 0
                                ? std::optional(std::string(keyColumns_[i].Texts().Text(number)))
                                : std::nullopt);
        }
    }
}

void CubeBuilder::WriteKept(std::uint32_t number, CubeFileWriter& writer) const {
    if (!continuation_.keeps) {
        return;
    }
    const auto begin = [&](format::SectionKind kind) {
        writer.Begin({static_cast<std::uint32_t>(kind), number, 0, 0});
    };
    begin(format::SectionKind::KeptDescription);
    writer.Append(kept_.Describe().Bytes());
    writer.End();
    begin(format::SectionKind::KeptFacts);
    RecordSource(facts_.store.Blocks()).ForEach(1, [&](std::span<const std::byte> bytes) {
        writer.Append(bytes);
    });
    writer.End();
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
