#include "cube/MemberListing.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"

namespace qel::ModSetCube {

namespace {

constexpr const char* cubeProvider = "MSOLAP";

/// Closes a connection in whatever state it is; one that is closed already says so, which is no failure here.
void CloseIgnoringState(Connection& connection) {
    try {
        connection.Close();
    } catch (const AutomationError&) { // NOLINT(bugprone-empty-catch): it is opened again next
    }
}

/// The listing's cube, over the thread's connection. The Date table is not touched: it belongs to value
/// calls.
void EnsureListingConnection(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                             const OpenedCube& wanted) {
    auto& connection = thread.CubeConnection;
    if (!connection || connection->Provider() != cubeProvider) {
        thread.provider = nullptr; // so that a new connection takes its place
    } else if (connection->State() != stateOpen) {
        CloseIgnoringState(*connection);
    } else if (opened == wanted && thread.connected == wanted) {
        return;
    } else {
        connection->Close();
    }
    OpenThreadConnection(thread, providers, wanted);
    opened = wanted;
}

/// The first field that holds a value with a text, of whatever type, in some row; `fieldCount` when none
/// does.
std::int32_t FirstFilledField(Recordset& rows, std::int32_t fieldCount) {
    for (std::int32_t field = 0; field < fieldCount; ++field) {
        for (rows.MoveFirst(); !rows.AtEnd(); rows.MoveNext()) {
            const Variant value = rows.FieldValue(field);
            if (!value.Is<Null>() && !ToText(value, {}).empty()) {
                return field;
            }
        }
    }
    return fieldCount;
}

} // namespace

std::unique_ptr<Cellset> ListMembersCellset(const Providers& providers, const std::string& cubeFile,
                                            const MemberListing& listing) {
    const auto own = providers.Connect(ComposeConnectionText(cubeFile, listing.cubeName));
    const std::string statement = ComposeListing(listing);
    providers.Sending(statement);
    auto cellset = own.provider.CreateCellset();
    cellset->Open(statement, own.connection);
    return cellset;
}

void OpenMemberRecordset(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                         Recordset& recordset, const std::string& cubeFile, const MemberListing& listing) {
    EnsureListingConnection(thread, providers, opened, {cubeFile, listing.cubeName});
    const std::string statement = ComposeListing(listing);
    providers.Sending(statement);
    recordset.Open(statement, thread.CubeConnection, optionsUnspecified, optionsUnspecified,
                   optionsUnspecified);
}

std::int16_t CountObsLevels(const Providers& providers, const std::string& cubeName,
                            const std::string& cubeFile, const std::string& obsNumber,
                            const std::string& obsMember) {
    const auto own = providers.Connect(ComposeConnectionText(cubeFile, cubeName));
    const std::string statement = ComposeObsLevelsStatement(cubeName, obsNumber, obsMember);
    providers.Sending(statement);
    const auto rows = own.provider.CreateRecordset();
    rows->Open(statement, own.connection, optionsUnspecified, optionsUnspecified, optionsUnspecified);
    std::int32_t levels = 0;
    if (!rows->AtEnd()) {
        const std::int32_t levelFields = rows->FieldCount() - 1; // the measure is the last field
        levels = levelFields - FirstFilledField(*rows, levelFields);
    }
    rows->Close();
    own.connection->Close();
    return static_cast<std::int16_t>(levels);
}

} // namespace qel::ModSetCube
