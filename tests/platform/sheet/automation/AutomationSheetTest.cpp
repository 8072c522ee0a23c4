#include "platform/sheet/automation/AutomationSheet.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/automation/SheetObject.h"

#include <gmock/gmock.h>

namespace qel::test {
namespace {

using ::testing::ElementsAre;

Variant TableOf(std::int32_t rows, std::int32_t columns, std::vector<Variant> elements) {
    auto array = std::make_shared<VariantArray>();
    array->bounds = {{0, rows - 1}, {0, columns - 1}};
    array->elements = std::move(elements);
    return std::shared_ptr<const VariantArray>(std::move(array));
}

TEST(AutomationSheet, ReachesCellsAsAMacroDoes) {
    const Apartment apartment;
    SheetObject sheet;
    sheet.Put(4, 3, "occupied");
    const auto cell = windows::SheetRangeOf(sheet.Cell(3, 2).Get());
    const auto application = cell->Application();
    EXPECT_EQ(cell->Row(), 3);
    EXPECT_EQ(cell->Column(), 2);
    EXPECT_TRUE(application->Cells(3, 2)->Value().Is<Empty>());
    EXPECT_EQ(cell->Offset(1, 1)->Value().As<std::string>(), "occupied");

    application->ActiveCell()->SetFormula(std::string("=QelF1(\"שלום\")"));
    const auto block = application->Range(*cell, *cell->Offset(1, 1));
    block->SetNumberFormat("@");
    // The first dimension varies fastest: labels, then values.
    block->SetFormula(
        TableOf(2, 2, {std::string("קוביה"), std::string("Cube Name"), Empty{}, std::string("LedgerFNC")}));
    EXPECT_THAT(sheet.Log(),
                ElementsAre("R3C2 formula =QelF1(\"שלום\")", "R3C2:R4C3 format @", "R3C2:R4C3 table 2 x 2",
                            "R3C2 = קוביה", "R3C3 = ", "R4C2 = Cube Name", "R4C3 = LedgerFNC"));
}

TEST(AutomationSheet, EditsTheFormulasOfOlderExcels) {
    const Apartment apartment;
    SheetObject sheet;
    sheet.Put(6, 4, "last");
    const auto cell = windows::FormulaCellOf(sheet.Cell(3, 2).Get());
    const auto block = cell->Evaluate("C5:D9").As<std::shared_ptr<const VariantArray>>();
    ASSERT_EQ(block->elements.size(), 6U) << "more are never used";
    EXPECT_EQ(block->elements[3].As<std::string>(), "last");
    EXPECT_TRUE(block->elements[2].Is<Empty>());
    cell->ReplaceFormula("=1");
    EXPECT_THAT(sheet.Log(), ElementsAre("R3C2 formula =1"));
    sheet.Protect("protected");
    EXPECT_THROW(cell->Formula(), AutomationError);
}

TEST(AutomationSheet, KeepsTheNumberAndDescriptionOfTheSheetsErrors) {
    const Apartment apartment;
    SheetObject sheet;
    sheet.Protect("The cell or chart is protected");
    const auto cell = windows::SheetRangeOf(sheet.Cell(1, 1).Get());
    try {
        cell->SetFormula(std::string("=1"));
        FAIL() << "a protected sheet was written into";
    } catch (const AutomationError& error) {
        EXPECT_EQ(error.Number(), 1004);
        EXPECT_EQ(error.Description(), "The cell or chart is protected");
        EXPECT_EQ(error.Source(), "Sheet");
    }
    EXPECT_THROW(windows::SheetRangeOf(nullptr), AutomationError);
}

} // namespace
} // namespace qel::test
