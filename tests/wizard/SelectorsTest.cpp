#include "platform/value/Conversion.h"
#include "tests/wizard/TestBench.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/frmFuncQelWiz.h"

#include <gmock/gmock.h>

// The function wizard's choices, and the formula and value that result from them.

namespace qel::test {
namespace {

using namespace FunctionForm;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(ObsSelector, ListsTheMembersOfANumberAndALevel) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_THAT(dialog.Items(ComOBSNum), ElementsAre("OBS", "Segments"));
        EXPECT_THAT(dialog.Items(ComObsX), ElementsAre("1 - Whole group", "2 - Wholesale", "3 - Stores",
                                                       "4 - Online", "5 - Shared services"));
        EXPECT_THAT(dialog.Items(ComLevel), ElementsAre("All", "Cost centres", "OBS levels"));
        dialog.Choose(ComLevel, "Cost centres");
        const auto allCentres = dialog.Items(ComOBSData).size();
        EXPECT_FALSE(dialog.IsEnabled(ComLevelObs));
        dialog.Choose(ComObsX, "4 - Online");
        EXPECT_LT(dialog.Items(ComOBSData).size(), allCentres) << "those with data under the number";
        dialog.Choose(ComLevel, "OBS levels");
        EXPECT_THAT(dialog.Items(ComLevelObs), ElementsAre("Level1", "Level2", "Level3"));
        dialog.Choose(ComObsX, "1 - Whole group");
        EXPECT_THAT(dialog.Items(ComOBSData), ElementsAre("North", "Centre", "South & Negev", "Head office"));
        dialog.Choose(ComLevelObs, "Level2");
        const auto members = dialog.Items(ComOBSData);
        EXPECT_THAT(members, ::testing::Not(::testing::Contains("North")));
        dialog.Choose(ComOBSNum, "Segments");
        EXPECT_THAT(dialog.Items(ComObsX), ::testing::Not(::testing::Contains("1 - Whole group")));
        EXPECT_EQ(dialog.Text(ComLevelObs), "Level2") << "the level stays";
        dialog.Choose(ComLevel, "All");
        EXPECT_THAT(dialog.Items(ComOBSData), IsEmpty());
        EXPECT_FALSE(dialog.IsEnabled(ComAddOBS));
    });
}

TEST(ObsSelector, AddsAndRemovesMembers) {
    TestBench bench(OddFile());
    const std::string text = bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Choose(ComLevelObs, "Level2");
        const auto members = dialog.Items(ComOBSData);
        ASSERT_EQ(members.size(), 7U);
        dialog.Choose(ComOBSData, "Say");
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "20.25");
        for (const char* member : {"Main", "Karmi", "Main", "Say", "חו", "Eilat"}) {
            dialog.Choose(ComOBSData, member);
            dialog.Press(ComAddOBS);
        }
        EXPECT_THAT(dialog.Items(ListObs),
                    ElementsAre("Main", "Karmi'el", "Say \"]\" & go", "חו\"ל", "Eilat"));
        EXPECT_THAT(bench.TakeMessages(), IsEmpty()) << "a member twice is one";
        EXPECT_EQ(dialog.Text(LabelFirst), "The value is that of the first member.");
        dialog.Choose(ComOBSData, "Arad");
        dialog.Press(ComAddOBS);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre("One function takes at most five OBS members."));
        dialog.Choose(ListObs, "Eilat");
        dialog.Press(ComRemoveObs);
        dialog.Choose(ListObs, "Karmi");
        dialog.Press(ComRemoveObs);
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "1800.15") << "the first member's, of both parents";
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(text, HasSubstr(R"({"Level2"},{"Main", "Say )"
                                "\xC2\xA0]\xC2\xA0 & go\", \"חו\xC2\xA0ל\"},"))
        << "quotes would end the formula's texts";
    EXPECT_EQ(bench.Evaluate("=QelF1(" + text + ")"), "1800.15");
}

TEST(ObsSelector, OffersNoLevelsOfANumberWithoutData) {
    TestBench bench(OddFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(dialog.Items(ComLevelObs), ElementsAre("Level1", "Level2"));
        dialog.Choose(ComObsX, "2");
        EXPECT_THAT(dialog.Items(ComLevelObs), IsEmpty());
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Press(CmdOK);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre("Choose an OBS member or the OBS level All."));
        EXPECT_FALSE(dialog.IsHidden());
    });
}

TEST(ObsSelector, ForgetsMembersOfAnotherLevel) {
    TestBench bench(LedgerFile());
    const std::string text = bench.ShowFormGetVal([](DialogDouble& dialog) {
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Press(ComAddOBS);
        dialog.Choose(ComLevel, "Cost centres");
        EXPECT_THAT(dialog.Items(ListObs), IsEmpty());
        EXPECT_EQ(dialog.Text(LabelFirst), "");
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(text, HasSubstr(R"({"Cost_Centers"},{"1110"},)"))
        << "the member that is shown need not be added";
}

TEST(ObsSelector, ListsOnlyMembersOfTheNumberAndTakesThemUpAgain) {
    TestBench bench(OddFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Choose(ComLevelObs, "Level2");
        dialog.Choose(ComOBSData, "Karmi");
        dialog.Press(ComAddOBS);
        dialog.Choose(ComObsX, "2");
        EXPECT_THAT(dialog.Items(ListObs), IsEmpty()) << "of a number without data";
        dialog.Press(CmdOK);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre("Choose an OBS member or the OBS level All."));
        dialog.Choose(ComObsX, "1");
        for (const char* kind :
             {"All", "Cost centres", "OBS levels"}) { // as the arrow keys step through them
            dialog.Choose(ComLevel, kind);
        }
        EXPECT_THAT(dialog.Items(ListObs), ElementsAre("Karmi'el"));
        EXPECT_EQ(dialog.Text(ComLevelObs) + " " + dialog.Text(ComOBSData), "Level2 Karmi'el");
        dialog.Press(CmdCancel);
    });
}

TEST(AccountSelector, ListsGroupsByLevelAndAccountsByFirm) {
    TestBench bench(LedgerFile());
    const std::string text = bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_THAT(dialog.Items(ComAccX), ElementsAre("All", "SuperSum1", "SuperSum2", "SuperSum3"));
        dialog.Choose(ComAccX, "SuperSum1");
        const auto wide = dialog.Items(ComMember).size();
        dialog.Choose(ComAccX, "SuperSum2");
        EXPECT_GT(dialog.Items(ComMember).size(), wide);
        dialog.Choose(ComMember, "41 - Sale of goods");
        dialog.Tick(CheckAcc, true);
        const ListSource& rows = dialog.Rows(ListAccount);
        const auto all = rows.RowCount();
        EXPECT_EQ(rows.Text(0, 0) + " " + rows.Text(0, 1), "1111 Land and buildings");
        dialog.Choose(ComFirma, "30 - ");
        EXPECT_LT(dialog.Rows(ListAccount).RowCount(), all);
        dialog.Choose(ComFirma, "All");
        EXPECT_EQ(dialog.Find(ListAccount, " Furniture, WHOLEsale "), 2U) << "blanks and letter case aside";
        EXPECT_EQ(dialog.Selected(ListAccount), dialog.Rows(ListAccount).Matching("4111").front());
        dialog.Choose(ComOBSNum, "Segments");
        EXPECT_EQ(dialog.Rows(ListAccount).Text(*dialog.Selected(ListAccount), 0), "4111")
            << "an account that the new list has, too, stays";
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(text, HasSubstr(R"("SuperSum2", "41", "4111", "Amount", )"));
}

TEST(AccountSelector, IsNotWholeWithoutAnAccount) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Tick(CheckAcc, true);
        for (const char* button : {Command1, CmdOK, Command2}) {
            dialog.Press(button);
            EXPECT_THAT(bench.TakeMessages(), ElementsAre(HasSubstr("Choose an account")));
        }
        EXPECT_EQ(dialog.Find(ListAccount, "no such account"), 0U);
        dialog.Press(CmdOK);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre(HasSubstr("Choose an account")));
        dialog.Tick(CheckAcc, false);
        dialog.Tick(ChekAct, true);
        dialog.Press(CmdOK);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre(HasSubstr("Choose an activity")));
        EXPECT_FALSE(dialog.IsHidden());
    });
}

TEST(Selectors, ReportListingsThatFailAndStayUsable) {
    TestBench bench(PlainBooksFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(bench.TakeMessages(), IsEmpty());
        dialog.Choose(ComLevel, "Cost");
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre(HasSubstr("Function : ComLevel_Click\r\nModule : frmFuncQelWiz")));
        dialog.Choose(ComLevel, "All");
        dialog.Tick(CheckAcc, true);
        EXPECT_EQ(dialog.Find(ListAccount, "4"), 0U);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre(::testing::Not(HasSubstr("Function : "))));
        dialog.Tick(CheckAcc, false);
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "-929.95");
    });
}

TEST(DateSelector, TellsOfImpossibleDatesAtOnceAndHandsNoneBack) {
    const auto noData =
        "The cube has no data between these dates. It has data between: 01/01/2023 - 01/12/2025";
    const struct {
        const char *from, *to, *message, *focus; ///< the control that gets the focus back
    } cases[] = {
        {"01/01/2024", "31/02/2024", "This is not a date: 31/02/2024", TxtDateTo},
        {"soon", "31/12/2024", "This is not a date: soon", TxtDateFrom},
        {"", "31/12/2024", "This is not a date: ", TxtDateFrom},
        {"02/05/2024", "01/05/2024", "The From Date is later than the To Date.", TxtDateTo},
        {"01/01/1999", "31/12/1999", noData, TxtDateTo},
        {"01/01/2026", "31/12/2026", noData, TxtDateTo},
    };
    for (const auto& c : cases) {
        TestBench bench(LedgerFile());
        bench.ShowFormGetVal([&](DialogDouble& dialog) {
            dialog.Type(TxtDateFrom, c.from);
            if (std::string(c.focus) == TxtDateTo) {
                EXPECT_THAT(bench.TakeMessages(), IsEmpty()) << c.from;
                dialog.Type(TxtDateTo, c.to);
            }
            EXPECT_THAT(bench.TakeMessages(), ElementsAre(c.message));
            EXPECT_EQ(dialog.Focus(), c.focus) << c.message;
            dialog.Type(c.focus, dialog.Text(c.focus)); // left again on the way to the other date
            EXPECT_THAT(bench.TakeMessages(), IsEmpty()) << c.message;
            dialog.Press(CmdOK);
            EXPECT_THAT(bench.TakeMessages(), ElementsAre(c.message));
            EXPECT_FALSE(dialog.IsHidden()) << c.message;
            dialog.Press(CmdCancel);
        });
    }
}

TEST(DateSelector, KnowsTheDatesOfItsCubeWhileCellsOfOthersAreCalculated) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        bench.thread.dates = {}; // as a cell leaves them whose cube ends earlier
        dialog.Type(TxtDateTo, "01/12/2024");
        EXPECT_THAT(bench.TakeMessages(), IsEmpty());
    });
}

TEST(DateSelector, TakesShortDatesInAnyFormOfTheLocale) {
    TestBench bench(LedgerFile());
    const std::string text = bench.ShowFormGetVal([](DialogDouble& dialog) {
        dialog.Type(TxtDateFrom, " 1.4.23");
        dialog.Type(TxtDateTo, "2024-6-30");
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(text, ::testing::EndsWith(R"("01/04/2023", "30/06/2024")"));
}

TEST(Calculation, ShowsWhyThereIsNoValueAndForgetsAnOldOne) {
    TestBench bench(OddFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "1911.6");
        dialog.Choose(ChcMeasure, "Lines");
        EXPECT_EQ(dialog.Text(TxtCalc), "") << "the value was another measure's";
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "8");
        dialog.Choose(cboDatabaseList, "NoGroupsFNC");
        EXPECT_THAT(bench.TakeMessages(), ElementsAre(HasSubstr("Measure: Lines")));
        dialog.Press(Command1);
        EXPECT_THAT(dialog.Text(TxtCalc), ::testing::StartsWith("#ERR "));
        EXPECT_THAT(dialog.Text(TxtCalc), HasSubstr("SuperSumery"));
    });
}

TEST(Calculation, IsKeptOnlyForTheChoiceItWasMadeFor) {
    TestBench bench(OddFile());
    const auto resultAfter = [&](const std::function<void(DialogDouble&)>& act) {
        bench.toolkit.person = [&](DialogDouble& dialog) {
            dialog.Press(Command1);
            act(dialog);
            dialog.Press(CmdOK);
        };
        frmFuncQelWiz form({bench.thread, bench.dataAccess, bench.locale, bench.toolkit, bench.language});
        form.Show();
        return form.QelResult.Is<Null>() ? "Null" : ToText(form.QelResult, bench.locale);
    };
    EXPECT_EQ(resultAfter([](DialogDouble&) {}), "1911.6");
    EXPECT_EQ(resultAfter([](DialogDouble& dialog) { dialog.Choose(ComFirma, "10"); }), "Null");
    EXPECT_EQ(resultAfter([](DialogDouble& dialog) { dialog.Type(TxtDateFrom, "01/02/2024"); }), "Null");
}

} // namespace
} // namespace qel::test
