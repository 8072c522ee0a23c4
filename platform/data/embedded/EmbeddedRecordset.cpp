#include "platform/data/embedded/EmbeddedRecordset.h"

#include "platform/data/InMemoryRecordset.h"
#include "platform/data/embedded/CellVariant.h"
#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/FlattenedRows.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/Drillthrough.h"
#include "qel/engine/RunStatement.h"

namespace qel {

namespace {

struct ToVariant {
    Variant operator()(const engine::NoLineValue& /*nothing*/) const { return Null{}; }
    Variant operator()(std::string& text) const { return std::move(text); }
    Variant operator()(const engine::CellValue& amount) const { return CellVariant(amount); }
};

Rowset RowsOf(engine::FactLines lines) {
    Rowset table{.fields = std::move(lines.columns), .rows = {}, .total = lines.total};
    for (auto& line : lines.rows) {
        auto& row = table.rows.emplace_back();
        for (engine::LineValue& value : line) {
            row.push_back(std::visit(ToVariant{}, value));
        }
        line.clear(); // a million lines are not held twice
    }
    return table;
}

Rowset Run(const std::string& statement, const std::shared_ptr<Connection>& connection,
           const Recordset::Progress& progress) {
    const auto cube = EmbeddedConnection::CubeOf(connection);
    return TranslatingErrors([&] {
        return engine::IsDrillthrough(statement) ? RowsOf(engine::RunDrillthrough(*cube, statement, progress))
                                                 : Flatten(*cube, engine::RunStatement(*cube, statement));
    });
}

} // namespace

std::unique_ptr<Recordset> MakeEmbeddedRecordset(std::optional<Rowset> rows) {
    return std::make_unique<InMemoryRecordset>(embeddedProvider, &Run, std::move(rows));
}

} // namespace qel
