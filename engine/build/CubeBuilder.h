#pragma once

#include "engine/build/BadLines.h"
#include "engine/build/Definition.h"
#include "engine/build/DimensionBuilder.h"
#include "engine/build/FactColumns.h"
#include "engine/build/FactSorter.h"
#include "engine/build/FilePrint.h"
#include "engine/build/KeptFacts.h"
#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/PreviousBuild.h"
#include "engine/build/SpillStore.h"
#include "engine/build/TableReader.h"
#include "engine/storage/CubeFileWriter.h"
#include "engine/storage/CubeModel.h"
#include "qel/engine/BuildCube.h"

#include <optional>
#include <vector>

namespace qel::engine {

/// Builds one cube: reads its dimension tables, then its facts, then assigns the codes.
class CubeBuilder {
public:
    CubeBuilder(const Definition& definition, const CubeDefinition& cube, BadLines& badLines,
                const BuildProgress& progress, SpillStore& store, Continuation continuation);

    /// Runs the build and adds the line counts and warnings to `totals`.
    void Run(BuildTotals& totals);

    const CubeModel& Model() const { return model_; }
    /// For writing, which empties it.
    CubeFacts& Facts() { return *ready_; }
    /// Writes what a build that goes on from this one needs, if it is asked for.
    void WriteKept(std::uint32_t number, CubeFileWriter& writer) const;

private:
    KeyColumnBuilder* KeysOf(std::size_t dimension);
    void AddKeyColumns();
    void ReadDimensionTables(BuildTotals& totals);
    void ReadFactTables(BuildTotals& totals);
    /// Reads the prints of the fact files. Whether the facts of the build before can be taken.
    bool GoesOn();
    /// Notes how far a table was read.
    void Keep(const TableReader& reader, const ReadFile& file, std::uint64_t rows);
    void DescribeKept();
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
    /// The number of facts of each code.
    std::vector<std::uint64_t> CountCodes(std::size_t keyColumn) const;

    const Definition& definition_;
    const CubeDefinition& cube_;
    BadLines& badLines_;
    const BuildProgress& progress_;
    std::vector<KeyColumnBuilder> keyColumns_;
    std::vector<std::optional<std::uint32_t>> keyColumnOf_; ///< by dimension
    std::vector<DimensionBuilder> dimensions_;
    std::vector<DetailDefinition> details_; ///< that are kept
    SpillStore& store_;
    FactColumns facts_;
    std::optional<CubeFacts> ready_;
    Continuation continuation_;
    std::vector<ReadFile> files_; ///< the fact files, when the facts are kept
    KeptFacts kept_;
    CubeModel model_;
};

} // namespace qel::engine
