#pragma once

#include "engine/build/BadLines.h"
#include "engine/build/Definition.h"
#include "engine/build/DimensionBuilder.h"
#include "engine/build/FactColumns.h"
#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/TableReader.h"
#include "engine/storage/CubeModel.h"
#include "qel/engine/BuildCube.h"

#include <optional>
#include <vector>

namespace qel::engine {

/// Builds one cube in memory: reads its dimension tables, then its facts, then assigns the codes.
class CubeBuilder {
public:
    CubeBuilder(const Definition& definition, const CubeDefinition& cube, BadLines& badLines,
                const BuildProgress& progress);

    /// Runs the build and adds the line counts and warnings to `totals`.
    void Run(BuildTotals& totals);

    const CubeModel& Model() const { return model_; }
    const FactColumns& Facts() const { return facts_; }

private:
    KeyColumnBuilder* KeysOf(std::size_t dimension);
    void AddKeyColumns();
    void ReadDimensionTables(BuildTotals& totals);
    void ReadFactTables(BuildTotals& totals);
    /// The columns of a fact table that are kept. The first table decides which are "all".
    DetailsOfTable DetailsIn(const TableReader& reader, std::size_t file);
    void DescribeDetails();
    void NumberKeys();
    /// The cube and its fact files, for messages.
    std::string FactPlace() const;
    /// The tree in whose order a text column's codes are numbered.
    const MemberTree& MainTree(std::size_t keyColumn) const;
    void MakeModel();
    void FindWarnings(std::vector<BuildWarning>& warnings) const;
    std::vector<std::vector<std::uint16_t>> SortOrders() const;

    const Definition& definition_;
    const CubeDefinition& cube_;
    BadLines& badLines_;
    const BuildProgress& progress_;
    std::vector<KeyColumnBuilder> keyColumns_;
    std::vector<std::optional<std::uint32_t>> keyColumnOf_; ///< by dimension
    std::vector<DimensionBuilder> dimensions_;
    std::vector<DetailDefinition> details_; ///< that are kept
    FactColumns facts_;
    CubeModel model_;
};

} // namespace qel::engine
