#include "tests/engine/storage/SmallCube.h"

#include "engine/storage/AggregateWriter.h"
#include "qel/engine/Cube.h"

#include <algorithm>
#include <span>

namespace qel::engine {

namespace {

void AddMember(HierarchyModel& hierarchy, const char* name, const char* key, std::uint32_t parent,
               std::vector<KeyRange> ranges) {
    hierarchy.names.Add(name);
    hierarchy.captions.Add(name);
    hierarchy.keys.Add(key);
    hierarchy.parents.push_back(parent);
    hierarchy.ranges.insert(hierarchy.ranges.end(), ranges.begin(), ranges.end());
    hierarchy.rangeOffsets.push_back(static_cast<std::uint32_t>(hierarchy.ranges.size()));
}

HierarchyModel MakeAccounts() {
    HierarchyModel accounts;
    accounts.name = accounts.caption = "Tree";
    accounts.keyColumn = 0;
    accounts.levels = {{"(All)", true, 1}, {"Group", false, 1}, {"Account", false, 2}};
    AddMember(accounts, "All", "All", noMember, {{0, 2}});
    AddMember(accounts, "4]", "4]", 0, {{0, 2}});
    AddMember(accounts, "Sales", "4000", 1, {{0, 1}});
    AddMember(accounts, "sales", "4100", 1, {{1, 2}});
    accounts.firstChild = {1, 2, 4, 4, 4};
    return accounts;
}

HierarchyModel MakeFirms() {
    HierarchyModel firms;
    firms.name = firms.caption = "Firm";
    firms.keyColumn = 1;
    firms.levels = {{"Firm", false, 2}};
    AddMember(firms, "\xD7\x90", "1", noMember, {{0, 1}});
    AddMember(firms, "B", "2", noMember, {{1, 2}});
    firms.firstChild = {2, 2, 2};
    return firms;
}

} // namespace

void StoredAggregates::Write(const CubeModel& model, std::uint32_t cube, CubeFileWriter& writer) const {
    AggregateModel described = static_cast<const AggregateModel&>(*this);
    described.packedKeyCount = packedKeys.size();
    described.prefixSumCount = prefixStarts.back();
    for (const MeasureColumn& measure : model.measures) {
        described.sumWidths.push_back(measure.width == 0 ? 0 : sizeof(std::int32_t));
    }
    WriteAggregates(described, model, cube, writer, [&](format::SectionKind kind, std::size_t measure) {
        const auto append = [&](const auto& values) { writer.Append(std::as_bytes(std::span(values))); };
        switch (kind) {
        case format::SectionKind::PackedKeys:
            return append(packedKeys);
        case format::SectionKind::BucketMasks:
            return append(bucketMasks);
        case format::SectionKind::PrefixStarts:
            return append(prefixStarts);
        case format::SectionKind::PrefixCounts:
            return append(counts);
        default:
            append(sums[measure]);
        }
    });
}

SmallCube::SmallCube() {
    model.name = model.caption = "Small";
    model.dimensions = {{"Accounts", "Accounts", false, {MakeAccounts()}},
                        {"Firm", "Firm", false, {MakeFirms()}}};
    model.keyColumns = {{"account", 2, 1, 0, 0}, {"firm", 2, 1, 1, 0}};
    model.measures = {{{"Amount", "Amount", AggregateFunction::Sum, 2}, 1, 1},
                      {{"Lines", "Lines", AggregateFunction::Count, 0}, 0, 1}};
    model.rowCount = 3;
    model.calculations = {{{"[Measures].[Twice]", "2 * [Measures].[Amount]", "0.00", -1}},
                          {{"s", "[Firm].Members"}}};
    model.projections = {{{0, 1}, {0, 1, 3}}, {{1}, {0, 2, 3}}};
    keys = {{{0, 1, 1}, {0, 0, 1}}, {{1, 0, 1}, {0, 0, 1}}};
    values = {{5, -7, 9}, {-7, 5, 9}};

    aggregates.packedKeyColumns = {{1, 0, 1}};
    aggregates.timeBuckets = {0, 1};
    aggregates.records = {{{}, 2, 0, 3, 1}, {{0, AggregateKey::noColumn, {1, 2}, {}}, 0, 0, 2}};
    aggregates.rows = 2;
    aggregates.packedKeys = {0, 1, 0};
    aggregates.bucketMasks = {1, 1, 1};
    aggregates.prefixStarts = {0, 1, 2, 3};
    aggregates.sums = {{-2, 9, 7}, {}};
    aggregates.counts = {2, 1, 3};
    aggregateFirms = {0, 1};
    aggregateValues = {-7, 9};
}

SmallCube::SmallCube(std::size_t rows, const std::function<std::int8_t(std::size_t row)>& valueOf)
    : SmallCube() {
    model.rowCount = rows;
    model.projections = {{{0}, {0, rows, rows}}};
    keys = {{std::vector<std::uint8_t>(rows), std::vector<std::uint8_t>(rows)}};
    values = {std::vector<std::int8_t>(rows)};
    for (std::size_t row = 0; row < rows; ++row) {
        values[0][row] = valueOf(row);
    }
    hasAggregates = false;
}

void SmallCube::SumByAccounts() {
    aggregates.timeColumn = 0;
    aggregates.timeBuckets = {0, 1, 2};
    aggregates.records.resize(1);
    aggregates.records[0].coarserKeyCount = 0;
    aggregates.rows = 0;
    aggregates.packedKeys = {0, 1};
    aggregates.bucketMasks = {3, 2};
    aggregates.prefixStarts = {0, 2, 3};
    aggregates.sums = {{5, -2, 9}, {}};
    aggregates.counts = {1, 2, 1};
    aggregateFirms.clear();
    aggregateValues.clear();
}

void SmallCube::KeepDetails() {
    model.keepsDetails = true;
    model.sources = {{"lines.csv", 3, 3, 0, {7, 3}}};
    model.details = {{{"text", "Text", 2, 1, 4}}, {{0, 0, 2}, {2, 0, 5}}};
    detailFacts = {{0, 1, 2}, {1, 0, 2}};
    detailCodes = {0, 1, 0};
    detailOffsets = {0, 5, 9};
    detailTexts = "breadmilk";
}

void SmallCube::AddTo(CubeFileWriter& writer) const {
    const std::uint32_t cube = writer.AddCube(model);
    for (std::size_t order = 0; order < std::min(keys.size(), model.projections.size()); ++order) {
        for (std::size_t column = 0; column < keys[order].size(); ++column) {
            const auto& sortOrder = model.projections[order].sortOrder;
            if (!sortOrder.empty() && sortOrder.front() == column) {
                continue; // implied by the row number
            }
            writer.BeginPackedColumn(cube, order, column);
            writer.Append(std::as_bytes(std::span(keys[order][column])));
            writer.End();
        }
        writer.BeginValues(cube, order, 0);
        writer.Append(std::as_bytes(std::span(values[order])));
        writer.End();
    }
    const auto section = [&](format::SectionKind kind, std::size_t first, const auto& content) {
        writer.Begin({static_cast<std::uint32_t>(kind), cube, static_cast<std::uint32_t>(first), 0});
        writer.Append(std::as_bytes(std::span(content)));
        writer.End();
    };
    for (std::size_t order = 0; order < detailFacts.size(); ++order) {
        section(format::SectionKind::DetailFacts, order, detailFacts[order]);
    }
    if (model.keepsDetails) {
        section(format::SectionKind::DetailCodes, 0, detailCodes);
        section(format::SectionKind::DetailOffsets, 0, detailOffsets);
        section(format::SectionKind::DetailTexts, 0, detailTexts);
    }
    if (!hasAggregates) {
        return;
    }
    aggregates.Write(model, cube, writer);
    using format::SectionKind;
    writer.Begin({static_cast<std::uint32_t>(SectionKind::AggregatePackedColumns), cube, 0, 1});
    writer.Append(std::as_bytes(std::span(aggregateFirms)));
    writer.End();
    if (aggregates.timeColumn) {
        writer.Begin({static_cast<std::uint32_t>(SectionKind::AggregatePackedColumns), cube, 0, 0});
        writer.End();
    }
    writer.Begin({static_cast<std::uint32_t>(SectionKind::AggregateValues), cube, 0, 0});
    writer.Append(std::as_bytes(std::span(aggregateValues)));
    writer.End();
}

void SmallCube::Write(const std::filesystem::path& path) const {
    CubeFileWriter writer(path);
    AddTo(writer);
    writer.Commit();
}

} // namespace qel::engine
