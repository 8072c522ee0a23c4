#include "platform/value/Conversion.h"
#include "tests/helpers/Day.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/wizard/TestBench.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/Selection.h"

#include <gmock/gmock.h>

// What the function wizard saves and restores.

namespace qel::test {
namespace {

using namespace FunctionForm;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Selection LedgerSelection() {
    return {LedgerFile(),
            "LedgerFNC",
            "OBS",
            "3",
            "Level1",
            {"South & Negev", "North"},
            "903",
            "SuperSum2",
            "41",
            "4115",
            "Quantity",
            "USD",
            "P",
            "R",
            "10",
            "0",
            test::Day(2023, 2, 1),
            test::Day(2024, 6, 30)};
}

TEST(Selection, IsARowWithAColumnForEveryArgument) {
    const TableRow row = RowOf(LedgerSelection());
    std::vector<std::string> texts;
    for (const Variant& value : row) {
        texts.push_back(ToText(value, Locale()));
    }
    EXPECT_THAT(texts, ElementsAre(LedgerFile(), "LedgerFNC", "OBS", "3", "Level1", "South & Negev\tNorth",
                                   "903", "SuperSum2", "41", "4115", "Quantity", "USD", "P", "R", "10", "0",
                                   "01/02/2023", "30/06/2024"));
    EXPECT_EQ(SelectionOf(row, Locale()), LedgerSelection());
    EXPECT_EQ(SelectionOf(TableRow(18, Variant(Null{})), Locale()), Selection()) << "a row of nothing";
    EXPECT_EQ(test::ErrorOf([&] { SelectionOf(TableRow(17), Locale()); }), ErrorNumber::SubscriptOutOfRange);
}

/// Chooses what LedgerSelection holds.
void ChooseLedgerSelection(DialogDouble& dialog) {
    dialog.Choose(ComObsX, "3 - ");
    dialog.Choose(ComLevel, "OBS levels");
    dialog.Choose(ComLevelObs, "Level1");
    for (const char* member : {"South", "North"}) {
        dialog.Choose(ComOBSData, member);
        dialog.Press(ComAddOBS);
    }
    dialog.Tick(ChekAct, true);
    dialog.Find(ComActMember, "903");
    for (const auto& [control, item] :
         std::initializer_list<std::pair<const char*, const char*>>{{ComAccX, "SuperSum2"},
                                                                    {ComMember, "41 - "},
                                                                    {ChcMeasure, "Quantity"},
                                                                    {ComMoneySet, "USD"},
                                                                    {ComPlbs, "P - "},
                                                                    {ComRh, "R - "},
                                                                    {ComFirma, "10 - "},
                                                                    {ComOB, "0 - "}}) {
        dialog.Choose(control, item);
    }
    dialog.Tick(CheckAcc, true);
    dialog.Find(ListAccount, "4115");
    dialog.Type(TxtDateFrom, "01/02/2023");
    dialog.Type(TxtDateTo, "30/06/2024");
}

TEST(SavedSelection, IsRestoredOnTheNextOpening) {
    TestBench bench;
    bench.toolkit.chosenFile = LedgerFile();
    std::size_t accounts = 0;
    const std::string first = bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Press(CmdCubeFile);
        ChooseLedgerSelection(dialog);
        accounts = dialog.Rows(ListAccount).RowCount();
        dialog.Press(CmdOK);
    });
    ASSERT_THAT(bench.TakeMessages(), IsEmpty());
    ASSERT_THAT(bench.Rows("DataTbl"), ::testing::SizeIs(1));
    EXPECT_EQ(SelectionOf(bench.Rows("DataTbl").at(0), bench.locale), LedgerSelection());
    EXPECT_EQ(bench.RememberedFile(), LedgerFile());
    const std::string second = bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_EQ(dialog.Rows(ListAccount).RowCount(), accounts) << "those of the restored firm";
        EXPECT_THAT(dialog.Items(ListObs), ElementsAre("South & Negev", "North"));
        EXPECT_TRUE(dialog.IsChecked(CheckAcc) && dialog.IsEnabled(ListAccount) &&
                    dialog.IsEnabled(ComMember));
        EXPECT_EQ(dialog.Text(TxtDateTo), "30/06/2024");
        dialog.Press(CmdOK);
    });
    EXPECT_EQ(second, first);
    EXPECT_THAT(bench.Rows("DataTbl"), ::testing::SizeIs(1)) << "only the last selection is kept";
}

TEST(SavedSelection, OpensTheCubeOfTheFileThatItWasMadeFor) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([](DialogDouble& dialog) {
        dialog.Choose(cboDatabaseList, "LedgerHebrewFNC");
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Choose(ComOBSData, "צפון");
        dialog.Press(CmdOK);
    });
    bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_EQ(dialog.Text(cboDatabaseList), "LedgerHebrewFNC");
        EXPECT_EQ(dialog.Text(ComOBSData), "צפון");
        EXPECT_EQ(dialog.Text(TxtDateTo), "31/12/2025") << "a cube of days";
    });
}

TEST(SavedSelection, LosesWhatTheCubeNoLongerHasWithOneMessage) {
    TestBench bench(LedgerFile());
    Selection old = LedgerSelection();
    old.obsMembers = {"North", "Atlantis"};
    old.firma = "99";
    old.account = "0000";
    old.activity = "none";
    old.summaryMember = "x";
    bench.PutRows("DataTbl", {RowOf(old)});
    const std::string text = bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre("The cube no longer has these saved choices:\r\nOBS Data: Atlantis\r\nFirma: "
                                "99\r\nSummary Group: x\r\nAccount Level: 0000\r\nActivity List: none"));
        EXPECT_THAT(dialog.Items(ListObs), ElementsAre("North"));
        EXPECT_EQ(dialog.Text(ComFirma), "All");
        EXPECT_FALSE(dialog.IsChecked(CheckAcc) || dialog.IsChecked(ChekAct));
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(text,
                HasSubstr(R"({"Level1"},{"North"},{"All"},"SuperSum2", "11", "All", "Quantity", "USD")"));
}

TEST(SavedSelection, OfAnotherFileIsNotRestored) {
    TestBench bench(OddFile());
    bench.PutRows("DataTbl", {RowOf(LedgerSelection())});
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(bench.TakeMessages(), IsEmpty());
        EXPECT_EQ(dialog.Text(cboDatabaseList), "Oddfnc");
        EXPECT_EQ(dialog.Text(ComLevel) + " " + dialog.Text(ComFirma), "All All")
            << "although both files have them";
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "1911.6");
    });
}

TEST(SavedSelection, ShowsAMemberThatWasShownAndListsOneThatWasListed) {
    for (const bool isListed : {false, true}) {
        TestBench bench(LedgerFile());
        bench.ShowFormGetVal([&](DialogDouble& dialog) {
            dialog.Choose(ComLevel, "Cost centres");
            dialog.Choose(ComOBSData, "1120");
            if (isListed) {
                dialog.Press(ComAddOBS);
            }
            dialog.Press(CmdOK);
        });
        const std::string text = bench.ShowFormGetVal([&](DialogDouble& dialog) {
            EXPECT_EQ(dialog.Items(ListObs).size(), isListed ? 1U : 0U);
            EXPECT_EQ(dialog.Text(ComOBSData).substr(0, 4), "1120");
            dialog.Choose(ComOBSData, "1110");
            EXPECT_EQ(dialog.Text(LabelFirst), isListed ? "The list is used." : "");
            dialog.Press(CmdOK);
        });
        EXPECT_THAT(text,
                    HasSubstr(isListed ? R"({"Cost_Centers"},{"1120"},)" : R"({"Cost_Centers"},{"1110"},)"));
    }
}

TEST(SavedSelection, LosesDatesThatTheCubeHasNoMore) {
    TestBench bench(LedgerFile());
    Selection old = LedgerSelection();
    old.from = test::Day(1999, 1, 1);
    old.to = test::Day(1999, 12, 31);
    bench.PutRows("DataTbl", {RowOf(old)});
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre("The cube no longer has these saved choices:\r\nFrom Date: "
                                "01/01/1999 - 31/12/1999"));
        EXPECT_EQ(dialog.Text(TxtDateFrom), "01/01/2023");
    });
}

TEST(SavedSelection, WithSignsOfFormulasComesBackAsItWas) {
    TestBench bench(OddFile());
    std::string first;
    for (int round = 0; round < 2; ++round) {
        const std::string text = bench.ShowFormGetVal([&](DialogDouble& dialog) {
            if (round == 0) {
                dialog.Choose(ComLevel, "Cost");
                dialog.Choose(ComOBSData, "1'0]");
                dialog.Choose(ComFirma, "ב\"מ");
                dialog.Choose(ComAccX, "SuperSum1");
                dialog.Tick(CheckAcc, true);
                dialog.Find(ListAccount, "4]0");
                dialog.Tick(ChekAct, true);
                dialog.Find(ComActMember, "ש\"ע");
            }
            dialog.Press(Command1);
            EXPECT_EQ(dialog.Text(TxtCalc), "1000.1");
            dialog.Press(CmdOK);
        });
        EXPECT_EQ(bench.Evaluate("=QelF1(" + text + ")"), "1000.1") << text;
        first = round == 0 ? text : first;
        EXPECT_EQ(text, first);
    }
}

TEST(SavedSelection, ThatCannotBeKeptDoesNotKeepTheFormulaBack) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        bench.folder.Write("suite/QelFunction17.mdb",
                           "this is no database, but a text long enough to be taken for one");
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(bench.TakeMessages(),
                ElementsAre(HasSubstr("Function : GoToSheet\r\nModule : frmFuncQelWiz")));
    EXPECT_EQ(bench.sheet.log.size(), 1U);
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre(HasSubstr("Function : LoadCube\r\nModule : frmFuncQelWiz")));
        EXPECT_TRUE(dialog.IsEnabled(Command1)) << "the cube is loaded anyway";
        dialog.Press(CmdCancel);
    });
}

} // namespace
} // namespace qel::test
