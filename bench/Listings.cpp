#include "bench/Listings.h"

#include "cube/CubeConnection.h"
#include "cube/MemberStatements.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"

#include <utility>

namespace qel::bench {
namespace {

using ModSetCube::ComposeCellsetStatement;
using ModSetCube::MemberListing;
namespace Kind = ModSetCube::CellsetKind;

constexpr const char* structure = "OBS"; // the OBS name of all numbers in a wide ledger
constexpr const char* number = "1";

std::vector<std::pair<std::string, MemberListing>> Listings(const std::string& cube) {
    std::vector<std::pair<std::string, MemberListing>> listings;
    const auto add = [&](std::string what, MemberListing listing) {
        listings.emplace_back(std::move(what), std::move(listing));
    };
    add("accounts by name",
        {.cubeName = cube, .kind = Kind::Accounts, .argumentB = structure, .accountsMode = 1});
    add("accounts by name of a firm", {.cubeName = cube,
                                       .kind = Kind::Accounts,
                                       .argumentA = "1",
                                       .argumentB = structure,
                                       .accountsMode = 1});
    for (const char* level : {"Level1", "Level2", "Level3", "Level4"}) {
        add(std::string("OBS ") + level,
            {.cubeName = cube, .kind = Kind::ObsOrCostCenters, .argumentA = structure, .argumentB = level});
    }
    add("OBS Level4 of a structure", {.cubeName = cube,
                                      .kind = Kind::ObsOrCostCenters,
                                      .argumentA = structure,
                                      .argumentB = "Level4",
                                      .obsSubMember = number});
    add("cost centres", {.cubeName = cube, .kind = Kind::ObsOrCostCenters, .argumentA = structure});
    add("cost centres of a structure",
        {.cubeName = cube, .kind = Kind::ObsOrCostCenters, .argumentA = structure, .obsSubMember = number});
    add("activities by name", {.cubeName = cube, .kind = Kind::Activities, .argumentA = structure});
    add("activities by name of a structure",
        {.cubeName = cube, .kind = Kind::Activities, .argumentA = structure, .obsSubMember = number});
    add("summary groups by name",
        {.cubeName = cube, .kind = Kind::SummaryGroups, .summaryLevel = "SuperSum3"});
    return listings;
}

} // namespace

std::vector<ListingTime> MeasureListings(const BenchData& data, ledger::LedgerCube cube, int rounds) {
    const std::string name = cube == ledger::LedgerCube::Months ? "LedgerFNC" : "LedgerHebrewFNC";
    EmbeddedDataAccess embedded;
    const auto connection = embedded.CreateConnection();
    connection->Open(ModSetCube::ComposeConnectionText(data.cubeFile.string(), name), "", "",
                     optionsUnspecified);
    std::vector<ListingTime> times;
    for (const auto& [what, listing] : Listings(name)) {
        const std::string statement = ComposeCellsetStatement(listing).value();
        Timings timing(1);
        ListingTime& time = times.emplace_back();
        time.what = what;
        for (int round = 0; round <= rounds; ++round) {
            time.members = timing.Measure(0, [&] {
                const auto cellset = embedded.CreateCellset();
                cellset->Open(statement, connection);
                return static_cast<std::size_t>(cellset->PositionCount(1));
            });
        }
        constexpr double microsecondsEach = 1000;
        time.milliseconds = timing.Total() / microsecondsEach;
    }
    return times;
}

} // namespace qel::bench
