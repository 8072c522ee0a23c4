#include "bench/Listings.h"

#include "cube/CubeConnection.h"
#include "cube/MemberStatements.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"

#include <utility>

namespace qel::bench {
namespace {

using namespace ModSetCube;

constexpr const char* structure = "OBS"; // the OBS name of all numbers in a wide ledger
constexpr const char* number = "1";

std::vector<std::pair<std::string, ListedMembers>> Listings() {
    std::vector<std::pair<std::string, ListedMembers>> listings = {
        {"accounts by name", AccountsListing{.firma = "", .obsNumber = structure}},
        {"accounts by name of a firm", AccountsListing{.firma = "1", .obsNumber = structure}}};
    for (const char* level : {"Level1", "Level2", "Level3", "Level4"}) {
        listings.emplace_back(std::string("OBS ") + level, ObsListing{structure, level});
    }
    listings.emplace_back("OBS Level4 of a structure", ObsListing{structure, "Level4", number});
    listings.emplace_back("cost centres", ObsListing{structure, ""});
    listings.emplace_back("cost centres of a structure", ObsListing{structure, "", number});
    listings.emplace_back("activities by name", ActivitiesListing{structure});
    listings.emplace_back("activities by name of a structure", ActivitiesListing{structure, number});
    listings.emplace_back("summary groups by name", SummaryGroupsListing{"SuperSum3"});
    return listings;
}

} // namespace

std::vector<ListingTime> MeasureListings(const BenchData& data, ledger::LedgerCube cube, int rounds) {
    const std::string name = cube == ledger::LedgerCube::Months ? "LedgerFNC" : "LedgerHebrewFNC";
    EmbeddedDataAccess embedded;
    const auto connection =
        Providers(embedded).Connect(ComposeConnectionText(data.cubeFile.string(), name)).connection;
    std::vector<ListingTime> times;
    for (const auto& [what, listing] : Listings()) {
        const std::string statement = ComposeListing({name, listing});
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
