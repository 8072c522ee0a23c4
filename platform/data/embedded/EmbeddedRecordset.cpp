#include "platform/data/embedded/EmbeddedRecordset.h"

#include "platform/data/InMemoryRecordset.h"
#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/FlattenedRows.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/RunStatement.h"

namespace qel {

namespace {

Rowset Run(const std::string& statement, const std::shared_ptr<Connection>& connection) {
    const auto cube = EmbeddedConnection::CubeOf(connection);
    return TranslatingErrors([&] { return Flatten(*cube, engine::RunStatement(*cube, statement)); });
}

} // namespace

std::unique_ptr<Recordset> MakeEmbeddedRecordset(std::optional<Rowset> rows) {
    return std::make_unique<InMemoryRecordset>(embeddedProvider, &Run, std::move(rows));
}

} // namespace qel
