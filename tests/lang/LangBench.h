#pragma once

#include "lang/ModLangFrm.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/StoreDoubles.h"

namespace qel::test {

/// Returns the table, or raises an error without one. Records the paths.
class ScriptedTables : public PersistedTableReader {
public:
    std::optional<PersistedTable> table;
    std::vector<std::string> paths;

    PersistedTable Read(const std::string& path) override {
        paths.push_back(path);
        if (!table) {
            throw AutomationError(-2147467259, "The file is damaged.", "MSPersist");
        }
        return *table;
    }
};

/// A language table like the suite's, with numbers as Longs.
inline PersistedTable TableOf(const std::vector<LangRow>& rows) {
    PersistedTable table{{"lId", "sId", "sText"}, {}};
    for (const auto& row : rows) {
        table.rows.push_back({row.language, row.number, row.text});
    }
    return table;
}

/// The language layer over doubles, with a temporary component folder.
struct LangBench {
    LangBench() { bench.store.componentFolder = PathToUtf8(folder.Path("component")); }

    void PutLangFile() const {
        std::filesystem::create_directory(folder.Path("component"));
        folder.Write("component/Lang.rs", "x");
    }

    const test::TemporaryFolder folder;
    StoreBench bench;
    ScriptedTables tables;
    ModLangFrm::LanguageState state{bench.store, tables};
};

} // namespace qel::test
