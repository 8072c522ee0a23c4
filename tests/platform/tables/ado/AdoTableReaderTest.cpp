#include "platform/tables/ado/AdoTableReader.h"

#include "lang/ModLangFrm.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/NamedClass.h"
#include "tests/helpers/automation/RecordsetDouble.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The content of a saved recordset, and how it was opened.
struct SavedTable {
    Rowset table;
    std::vector<std::string> calls;
    std::optional<ScriptedFailure> openFailure;
};

ComPointer<IDispatch> MakeRecordset(const std::shared_ptr<SavedTable>& saved) {
    return MakeObject([&](DispatchDouble& recordset) {
        DefineRows(recordset, RecordsetOf(saved->table));
        recordset.Method(L"Open", [saved](const Inputs& inputs) {
            saved->calls.push_back(fmt::format("open|{}|{}|{}|{}|{}", TextAt(inputs, 0), TextAt(inputs, 1),
                                               NumberAt(inputs, 2), NumberAt(inputs, 3),
                                               NumberAt(inputs, 4)));
            if (saved->openFailure) {
                throw ScriptedFailure(*saved->openFailure);
            }
        });
        recordset.Method(L"Close", [saved](const Inputs&) { saved->calls.emplace_back("close"); });
    });
}

struct AdoTableReaderTest : ::testing::Test {
    const Apartment apartment;
    const std::shared_ptr<SavedTable> saved = std::make_shared<SavedTable>();
    const NamedClass recordsets{L"ADODB.Recordset", [saved = saved] { return MakeRecordset(saved); }};
    std::optional<NamedClass> provider{std::in_place, L"MSPersist",
                                       [saved = saved] { return MakeRecordset(saved); }};
    windows::AdoTableReader reader;
    test::StoreBench bench;
};

TEST_F(AdoTableReaderTest, ReadsTheSuitesTextsInTheLanguageOfItsSettings) {
    const TemporaryFolder folder;
    const auto path = folder.Write("Lang.rs", "in any form that the provider reads");
    saved->table = {.fields = {"lId", "sId", "sText"},
                    .rows = {{std::int32_t{0}, std::int32_t{1473}, "Select Cube"},
                             {std::int16_t{1}, 1473.0, "בחר \"קוביה\""},
                             {std::int32_t{1}, std::int32_t{1474}, Null{}}}};
    bench.store.componentFolder = PathToUtf8(path.parent_path());
    bench.profiles.value = "1";
    ModLangFrm::LanguageState language{bench.store, reader};
    ModLangFrm::InitLanguage(language);
    EXPECT_THAT(saved->calls,
                ElementsAre("open|" + PathToUtf8(path) + "|Provider=MSPersist|-1|-1|-1", "close"));
    EXPECT_EQ(ModLangFrm::GetLangString(language, 1473), "בחר \"קוביה\"");
    EXPECT_EQ(ModLangFrm::GetLangString(language, 1474), "") << "Null";
    EXPECT_EQ(ModLangFrm::GetLangString(language, 1475), "1475") << "no row";
    EXPECT_TRUE(bench.messages.shown.empty());
}

TEST_F(AdoTableReaderTest, NamesTheFileThatCannotBeRead) {
    const auto faultOfReading = [&]() -> std::string {
        try {
            reader.Read("C:\\א\\Lang.rs");
        } catch (const AutomationError& error) {
            return std::to_string(error.Number()) + " " + error.Description();
        }
        return "read";
    };
    saved->openFailure =
        ScriptedFailure{E_FAIL, "Recordset cannot be created from the specified source.", "ADODB"};
    EXPECT_EQ(faultOfReading(),
              "-2147467259 'C:\\א\\Lang.rs' cannot be read: Recordset cannot be created from the "
              "specified source.");
    provider.reset();
    EXPECT_EQ(faultOfReading(),
              "3706 'C:\\א\\Lang.rs' cannot be read: the provider MSPersist is not installed");
}

} // namespace
} // namespace qel::test
