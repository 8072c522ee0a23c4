#include "store/LocalDb.h"

#include "platform/value/AutomationError.h"
#include "store/ModAPI.h"
#include "support/ModError.h"

#include <cstdint>

namespace qel {

namespace {

constexpr std::int32_t pathNotFound = 76;

TableDefinition TableOf(std::string name, std::initializer_list<const char*> texts,
                        std::initializer_list<const char*> dates = {}) {
    TableDefinition table{std::move(name), {}};
    for (const char* column : texts) {
        table.columns.push_back({column, ColumnType::Text});
    }
    for (const char* column : dates) {
        table.columns.push_back({column, ColumnType::Date});
    }
    return table;
}

} // namespace

TableDefinition DataTblTable() {
    return TableOf("DataTbl",
                   {"CubeFile", "CubeName", "ObsName", "ObsNum", "ObsLevel", "ObsMember", "ActivityList",
                    "SumeryLevel", "SumeryMember", "AccountList", "Measure", "MoneySet", "Plbs", "Rh",
                    "Firma", "OpeningBalance"},
                   {"FromDate", "ToDate"});
}

TableDefinition QelNameTable() {
    return TableOf("QelName", {"CubeFile", "CubeName", "DimName", "LevelNum", "DataMember", "Firma", "Obs"});
}

std::string LocalDbConnectionText(StoreEnvironment& store) {
    const std::string file = ModAPI::QelFuncMdbFile(store, ModAPI::localDbFile);
    if (file.empty()) {
        throw AutomationError(pathNotFound, "The folder of the local database is not known");
    }
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file;
}

void CreateLocalDb(StoreEnvironment& store) {
    try {
        const auto catalog = store.database.NewCatalog();
        catalog->Create(LocalDbConnectionText(store));
        catalog->AppendTable(DataTblTable());
        catalog->AppendTable(QelNameTable());
    } catch (...) {
        ModError::ReportError(store.messages, ModError::CurrentError(), "", "", "");
    }
}

std::unique_ptr<DatabaseConnection> OpenLocalDb(StoreEnvironment& store) {
    return store.database.Open(LocalDbConnectionText(store));
}

} // namespace qel
