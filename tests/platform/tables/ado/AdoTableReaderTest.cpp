#include "platform/tables/ado/AdoTableReader.h"

#include "lang/ModLangFrm.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/VariantConversion.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/DispatchDouble.h"
#include "tests/helpers/automation/NamedClass.h"
#include "tests/helpers/doubles/StoreDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Inputs = std::vector<const VARIANT*>;

/// What a saved recordset holds, and how it was opened.
struct SavedTable {
    std::vector<std::string> columns;
    std::vector<std::vector<Variant>> rows;
    std::size_t current = 0;
    std::vector<std::string> calls;
    std::optional<ScriptedFailure> openFailure;
};

ComPointer<IDispatch> MakeFields(const std::shared_ptr<SavedTable>& table) {
    auto fields = MakeDouble();
    fields->Define(L"Count", [table](const Inputs&) {
        return windows::ToAutomation(static_cast<std::int32_t>(table->columns.size()));
    });
    fields->Define(L"Item", [table](const Inputs& inputs) {
        const auto column =
            static_cast<std::size_t>(windows::FromAutomation(*inputs.at(0)).As<std::int32_t>());
        auto field = MakeDouble();
        field->Define(L"Name", [table, column](const Inputs&) { return Text(table->columns[column]); });
        field->Define(L"Value", [table, column](const Inputs&) {
            return windows::ToAutomation(table->rows.at(table->current).at(column));
        });
        return ObjectValue(ComPointer<IDispatch>(field.Get()));
    });
    return ComPointer<IDispatch>(fields.Get());
}

ComPointer<IDispatch> MakeRecordset(const std::shared_ptr<SavedTable>& table) {
    auto recordset = MakeDouble();
    recordset->Define(L"Open", [table](const Inputs& inputs) {
        std::string call = "open";
        for (const VARIANT* input : inputs) {
            const Variant value = windows::FromAutomation(*input);
            call += "|" + (value.Is<std::string>() ? value.As<std::string>()
                                                   : std::to_string(value.As<std::int32_t>()));
        }
        table->calls.push_back(call);
        if (table->openFailure) {
            throw *table->openFailure;
        }
        return OwnedVariant();
    });
    recordset->Define(L"Close", [table](const Inputs&) {
        table->calls.emplace_back("close");
        return OwnedVariant();
    });
    recordset->Define(L"EOF", [table](const Inputs&) {
        return windows::ToAutomation(table->current >= table->rows.size());
    });
    recordset->Define(L"MoveNext", [table](const Inputs&) {
        ++table->current;
        return OwnedVariant();
    });
    recordset->Define(L"Fields", [table](const Inputs&) { return ObjectValue(MakeFields(table)); });
    return ComPointer<IDispatch>(recordset.Get());
}

struct AdoTableReaderTest : ::testing::Test {
    const Apartment apartment;
    const std::shared_ptr<SavedTable> saved = std::make_shared<SavedTable>();
    const NamedClass recordsets{L"ADODB.Recordset", [saved = saved] { return MakeRecordset(saved); }};
    std::optional<NamedClass> provider{std::in_place, L"MSPersist",
                                       [saved = saved] { return MakeRecordset(saved); }};
    windows::AdoTableReader reader;
    qel::testing::StoreBench bench;
};

TEST_F(AdoTableReaderTest, ReadsTheSuitesTextsInTheLanguageOfItsSettings) {
    const TemporaryFolder folder;
    const auto path = folder.Write("Lang.rs", "in any form that the provider reads");
    saved->columns = {"lId", "sId", "sText"};
    saved->rows = {{std::int32_t{0}, std::int32_t{1473}, "Select Cube"},
                   {std::int16_t{1}, 1473.0, "בחר \"קוביה\""},
                   {std::int32_t{1}, std::int32_t{1474}, Null{}}};
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
