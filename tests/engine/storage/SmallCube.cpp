#include "tests/engine/storage/SmallCube.h"

#include "engine/storage/Cube.h"
#include "engine/storage/RollupWriter.h"

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

SmallCube::SmallCube() {
    model.name = model.caption = "Small";
    model.dimensions = {{"Accounts", "Accounts", false, {MakeAccounts()}},
                        {"Firm", "Firm", false, {MakeFirms()}}};
    model.keyColumns = {{"account", 2, 1, 0, 0}, {"firm", 2, 1, 1, 0}};
    model.measures = {{"Amount", "Amount", Aggregate::Sum, 2, 1, 1},
                      {"Lines", "Lines", Aggregate::Count, 0, 0, 1}};
    model.rowCount = 3;
    model.projections = {{{0, 1}, {0, 1, 3}}, {{1}, {0, 2, 3}}};
    keys = {{{0, 1, 1}, {0, 0, 1}}, {{1, 0, 1}, {0, 0, 1}}};
    values = {{5, -7, 9}, {-7, 5, 9}};

    rollups.wordColumns = {{1, 0, 1}};
    rollups.granules = {0, 1};
    rollups.records = {{{}, 2, 0, 3, 1}, {{0, RollupKey::noColumn, {1, 2}, {}}, 0, 0, 2}};
    rollups.rows = 2;
    rollups.stripWords = {0, 1, 0};
    rollups.stripPeriods = {1, 1, 1};
    rollups.stripEntries = {0, 1, 2, 3};
    rollups.sums = {{-2, 9, 7}, {}};
    rollups.counts = {2, 1, 3};
    rollupFirms = {0, 1};
    rollupValues = {-7, 9};
}

void SmallCube::SumByAccounts() {
    rollups.timeColumn = 0;
    rollups.granules = {0, 1, 2};
    rollups.records.resize(1);
    rollups.records[0].merged = 0;
    rollups.rows = 0;
    rollups.stripWords = {0, 1};
    rollups.stripPeriods = {3, 2};
    rollups.stripEntries = {0, 2, 3};
    rollups.sums = {{5, -2, 9}, {}};
    rollups.counts = {1, 2, 1};
    rollupFirms.clear();
    rollupValues.clear();
}

void SmallCube::AddTo(CubeFileWriter& writer) const {
    const std::uint32_t cube = writer.AddCube(model);
    for (std::size_t order = 0; order < std::min(keys.size(), model.projections.size()); ++order) {
        for (std::size_t column = 0; column < keys[order].size(); ++column) {
            const auto& sortOrder = model.projections[order].sortOrder;
            if (!sortOrder.empty() && sortOrder.front() == column) {
                continue; // its place says a row's leading code
            }
            writer.BeginSlots(cube, order, column);
            writer.Append(std::as_bytes(std::span(keys[order][column])));
            writer.End();
        }
        writer.BeginValues(cube, order, 0);
        writer.Append(std::as_bytes(std::span(values[order])));
        writer.End();
    }
    if (!hasRollups) {
        return;
    }
    WriteRollups(rollups, model, cube, writer);
    using format::SectionKind;
    writer.Begin({static_cast<std::uint32_t>(SectionKind::RollupSlots), cube, 0, 1});
    writer.Append(std::as_bytes(std::span(rollupFirms)));
    writer.End();
    if (rollups.timeColumn) {
        writer.Begin({static_cast<std::uint32_t>(SectionKind::RollupSlots), cube, 0, 0});
        writer.End();
    }
    writer.Begin({static_cast<std::uint32_t>(SectionKind::RollupValues), cube, 0, 0});
    writer.Append(std::as_bytes(std::span(rollupValues)));
    writer.End();
}

void SmallCube::Write(const std::filesystem::path& path) const {
    CubeFileWriter writer(path);
    AddTo(writer);
    writer.Commit();
}

} // namespace qel::engine
