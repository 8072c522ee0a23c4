#include "tests/wizard/TestBench.h"
#include "wizard/FunctionFormDesign.h"

#include <gmock/gmock.h>

#include <algorithm>

// The dialog itself: settings, opening, choosing a cube, checks, and the three ways to close it.

namespace qel::test {
namespace {

using namespace FunctionForm;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Checks that each control was last filled after the ones before it.
void ExpectFilledInOrder(DialogDouble& dialog, const std::vector<std::string>& order) {
    const auto filled = dialog.TakeFilled();
    auto last = filled.rend();
    for (const std::string& control : order) {
        const auto place = std::find(filled.rbegin(), filled.rend(), control);
        ASSERT_NE(place, filled.rend()) << control << " is not filled";
        EXPECT_LT(place, last) << control << " is filled too early";
        last = place;
    }
}

TEST(FunctionWizard, OpensOnTheRememberedCubeInTheOrderOfItsLoading) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_EQ(dialog.Text(txtCubeFile), LedgerFile());
        EXPECT_THAT(dialog.Items(cboDatabaseList), ElementsAre("LedgerFNC", "LedgerHebrewFNC"));
        EXPECT_EQ(dialog.Text(cboDatabaseList), "LedgerFNC") << "the first one";
        EXPECT_THAT(dialog.Items(ChcMeasure), ElementsAre("Amount", "Quantity", "Lines"));
        EXPECT_THAT(dialog.Items(ComFirma),
                    ElementsAre("All", "10 - Arava Trading Ltd", "20 - Arava Stores Ltd",
                                "30 - Arava Holdings & Services Ltd"));
        EXPECT_EQ(dialog.Text(TxtDateFrom) + " " + dialog.Text(TxtDateTo), "01/01/2023 01/12/2025");
        EXPECT_EQ(dialog.Caption(), "Function QEL");
        EXPECT_EQ(dialog.Text(CmdCubeFile) + "|" + dialog.Text(ComAddOBS), "Select Cube|Select OBS");
        EXPECT_THAT(dialog.Text(LabelVersion), ::testing::MatchesRegex("OrmFuncQel4 17\\.[0-9]+\\.[0-9]+"));
        EXPECT_TRUE(dialog.IsEnabled(Command1) && dialog.IsEnabled(ChcMeasure) &&
                    dialog.IsEnabled(TxtDateFrom));
        EXPECT_FALSE(dialog.IsEnabled(ListAccount) || dialog.IsEnabled(ComActMember) ||
                     dialog.IsEnabled(ComMember) || dialog.IsEnabled(ComOBSData))
            << "what nothing was chosen for";
        ExpectFilledInOrder(dialog, {txtCubeFile, cboDatabaseList, TxtDateFrom, ChcMeasure, ComOBSNum,
                                     ComMoneySet, ComAccX, ListAccount, ComActMember});
    });
}

TEST(FunctionWizard, FillsTheMeasuresBeforeTheDatesOfAChosenFile) {
    TestBench bench;
    bench.toolkit.chosenFile = LedgerFile();
    bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_FALSE(dialog.IsEnabled(ChcMeasure));
        EXPECT_TRUE(dialog.IsEnabled(CmdCubeFile) && dialog.IsEnabled(CmdCancel) && dialog.IsEnabled(CmdOK));
        dialog.TakeFilled();
        dialog.Press(CmdCubeFile);
        EXPECT_EQ(dialog.AskedForFile().title, "OrmFuncQel4 - Open a file");
        EXPECT_EQ(dialog.AskedForFile().filter, "Cub files(*.cub)|*.cub");
        ExpectFilledInOrder(dialog, {txtCubeFile, cboDatabaseList, ChcMeasure, TxtDateFrom, ComOBSNum,
                                     ComMoneySet, ComAccX, ListAccount, ComActMember});
        EXPECT_TRUE(dialog.IsEnabled(ChcMeasure));
        dialog.chosenFile.clear();
        dialog.Press(CmdCubeFile);
        EXPECT_EQ(dialog.Text(txtCubeFile), LedgerFile()) << "no file changes nothing";
        EXPECT_THAT(dialog.TakeFilled(), IsEmpty());
    });
}

TEST(FunctionWizard, OpensEmptyWithoutACubeToRemember) {
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"", {}},
        {"x", {}},
        {"/gone/old.cub", {"/gone/old.cub File Not Found"}},
        {UnlistedFile(), {"Not valid cube"}},
    };
    for (const auto& [remembered, messages] : cases) {
        TestBench bench;
        bench.Remember(remembered);
        bench.ShowFormGetVal([](DialogDouble& dialog) {
            EXPECT_EQ(dialog.Text(txtCubeFile), "");
            EXPECT_FALSE(dialog.IsEnabled(Command1));
        });
        EXPECT_EQ(bench.TakeMessages(), messages);
        if (remembered != UnlistedFile()) {
            EXPECT_THAT(bench.Rows("DataTbl"), IsEmpty()) << "the local database is created: " << remembered;
        }
    }
}

TEST(FunctionWizard, RejectsAFileWithoutListedCubesAndFallsBackToTheRememberedOne) {
    TestBench bench(LedgerFile());
    const auto plain = bench.folder.Write("plain.cub", "no cube");
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.chosenFile = plain.string();
        dialog.Press(CmdCubeFile);
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre(HasSubstr("Function : CmdCubeFile_Click\r\nModule : frmFuncQelWiz")));
        EXPECT_FALSE(dialog.IsEnabled(ChcMeasure)) << "nothing of the cube before is left to choose from";
        EXPECT_THAT(dialog.Items(ComFirma), IsEmpty());
        dialog.Press(CmdOK);
        EXPECT_THAT(bench.TakeMessages(), ElementsAre("Choose a Cube Name and a Cube File"));
        EXPECT_FALSE(dialog.IsHidden());
        dialog.chosenFile = LedgerFile();
        dialog.Press(CmdCubeFile);
        EXPECT_TRUE(dialog.IsEnabled(ChcMeasure)) << "the dialog stayed usable";
        dialog.chosenFile = UnlistedFile();
        dialog.Press(CmdCubeFile);
        EXPECT_EQ(bench.TakeShown(), (std::vector<ShownMessage>{{48, "", "Not valid cube"}}));
        EXPECT_EQ(dialog.Text(txtCubeFile), LedgerFile());
        EXPECT_TRUE(dialog.IsEnabled(ChcMeasure));
    });
}

TEST(FunctionWizard, ReportsDatesThatCannotBeReadAndLetsAnotherCubeBeChosen) {
    TestBench bench(OddFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        EXPECT_THAT(dialog.Items(cboDatabaseList),
                    ElementsAre("Oddfnc", "NoGroupsFNC", "FlatFNC", "NoDateFNC"))
            << "FNC ends the names of listed cubes, in any letter case";
        for (const char* cube : {"FlatFNC", "NoDateFNC"}) {
            dialog.Choose(cboDatabaseList, cube);
            const auto messages = bench.TakeMessages();
            ASSERT_FALSE(messages.empty()) << cube;
            EXPECT_THAT(messages.front(),
                        HasSubstr("\r\n\r\nError with the date in the Cube\r\nContinue with another "
                                  "cube\r\n\r\nFunction : SetDate\r\nModule : frmFuncQelWiz"))
                << cube;
            EXPECT_EQ(dialog.Text(TxtDateFrom), "") << cube;
        }
        dialog.Choose(cboDatabaseList, "Oddfnc");
        EXPECT_EQ(dialog.Text(TxtDateFrom), "01/01/2024");
        EXPECT_TRUE(dialog.IsEnabled(ChcMeasure));
        EXPECT_THAT(bench.TakeMessages(), IsEmpty());
    });
}

TEST(FunctionWizard, ChecksTheCubeFileBeforeItHandsBack) {
    TestBench bench;
    const auto none = "Choose a Cube Name and a Cube File", invalid = "Unvalid Name for File Cube";
    std::filesystem::create_directory(bench.folder.Path("folder.cub"));
    const std::pair<std::string, const char*> cases[] = {
        {"", none},
        {"  ", invalid}, // the text as it stands
        {LedgerFile() + " ", invalid},
        {bench.folder.Write("a.txt", "").string(), invalid},
        {bench.folder.Write("capitals.CUB", "").string(), invalid},
        {bench.folder.Path("none.cub").string(), invalid},
        {bench.folder.Path("folder.cub").string(), invalid},
    };
    for (const auto& [path, message] : cases) {
        for (const char* button : {CmdOK, Command2}) {
            bench.ShowFormGetVal([&, &cubeFile = path](DialogDouble& dialog) {
                static_cast<Dialog&>(dialog).SetText(txtCubeFile, cubeFile);
                dialog.Press(button);
                EXPECT_FALSE(dialog.IsHidden()) << cubeFile;
            });
            EXPECT_EQ(bench.TakeShown(), (std::vector<ShownMessage>{{48, "OrmFuncQel4", message}})) << path;
        }
    }
}

TEST(FunctionWizard, TakesAPathThatWasTyped) {
    TestBench bench;
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Type(txtCubeFile, bench.folder.Path("none.cub").string());
        EXPECT_THAT(bench.TakeMessages(), IsEmpty()) << "only OK reports a missing path";
        dialog.Type(txtCubeFile, " " + LedgerFile() + " ");
        EXPECT_EQ(dialog.Text(cboDatabaseList), "LedgerFNC");
        static_cast<Dialog&>(dialog).SetText(txtCubeFile, OddFile());
        dialog.Press(CmdOK);
        EXPECT_FALSE(dialog.IsHidden()) << "Enter while typing shows first what is in the file";
        EXPECT_EQ(dialog.Text(cboDatabaseList), "Oddfnc");
    });
}

TEST(FunctionWizard, CalculatesNothingFromAPathThatIsNotTaken) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        static_cast<Dialog&>(dialog).SetText(txtCubeFile, OddFile());
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "") << "the lists were of the other file";
        EXPECT_EQ(dialog.Text(cboDatabaseList), "Oddfnc");
        dialog.Press(Command1);
        EXPECT_EQ(dialog.Text(TxtCalc), "1911.6");
    });
}

TEST(FunctionWizard, OpensAFileBeforeItClearsTheLists) {
    struct Watched : EmbeddedDataAccess {
        std::function<void()> onConnection;
        std::shared_ptr<Connection> CreateConnection() override {
            if (onConnection) {
                std::exchange(onConnection, {})();
            }
            return EmbeddedDataAccess::CreateConnection();
        }
    } dataAccess;
    TestBench bench(LedgerFile());
    OrmQelFunction object({bench.thread, dataAccess, bench.locale, &bench.services});
    std::size_t firms = 0;
    bench.toolkit.chosenFile = OddFile();
    bench.toolkit.person = [&](DialogDouble& dialog) {
        dataAccess.onConnection = [&] { firms = dialog.Items(ComFirma).size(); };
        dialog.Press(CmdCubeFile);
        EXPECT_EQ(dialog.Text(cboDatabaseList), "Oddfnc");
    };
    object.ShowFormGetVal(bench.sheet.Cell(bench.sheet.activeCell));
    EXPECT_EQ(firms, 4U) << "those of the file before";
}

TEST(FunctionWizard, KeepsTheChoicesThatAnotherCubeHasAndNamesTheOthers) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Choose(ComFirma, "20 - ");
        dialog.Choose(ComMoneySet, "USD");
        dialog.Choose(ComLevel, "OBS levels");
        dialog.Choose(ComOBSData, "South");
        dialog.Type(TxtDateFrom, "01/02/2024");
        dialog.Choose(cboDatabaseList, "LedgerHebrewFNC");
        EXPECT_THAT(bench.TakeMessages(),
                    ElementsAre("This cube does not have these choices:\r\nOBS Data: South & Negev"));
        EXPECT_EQ(dialog.Text(ComFirma).substr(0, 2), "20");
        EXPECT_EQ(dialog.Text(ComMoneySet).substr(0, 3), "USD");
        EXPECT_EQ(dialog.Text(TxtDateFrom) + " " + dialog.Text(TxtDateTo), "01/02/2024 01/12/2025");
        dialog.Choose(ComLevel, "All");
        dialog.Choose(cboDatabaseList, "LedgerFNC");
        EXPECT_EQ(dialog.Text(ComFirma).substr(0, 2), "20");
        EXPECT_EQ(dialog.Text(TxtDateTo), "01/12/2025");
    });
    EXPECT_THAT(bench.TakeMessages(), IsEmpty()) << "what was only offered is not missed";
}

TEST(FunctionWizard, PreparesItsDatabaseWheneverItOpensIt) {
    TestBench bench; // a database that is there is reported each time, with or without a cube
    bench.ShowFormGetVal([](DialogDouble&) {});
    bench.TakeMessages();
    EXPECT_EQ(bench.databaseReports, 0) << "it was created";
    bench.ShowFormGetVal([](DialogDouble&) {});
    bench.TakeMessages();
    EXPECT_EQ(bench.databaseReports, 1) << "without a cube";
    bench.Remember(LedgerFile());
    bench.ShowFormGetVal([](DialogDouble& dialog) { dialog.Press(CmdOK); });
    bench.TakeMessages();
    EXPECT_EQ(bench.databaseReports, 3) << "to restore, and to save";
    bench.ShowFormQelName([](DialogDouble&) {});
    bench.TakeMessages();
    EXPECT_EQ(bench.databaseReports, 4) << "the queries";
}

TEST(FunctionWizard, WritesNothingWhenItIsCanceledOrClosed) {
    TestBench bench(LedgerFile());
    bench.object.put_iShowDetail(7);
    EXPECT_EQ(bench.ShowFormGetVal([](DialogDouble& dialog) { dialog.Press(CmdCancel); }), " ");
    EXPECT_EQ(bench.ShowFormGetVal([](DialogDouble&) {}), " ") << "the close box";
    EXPECT_THAT(bench.sheet.log, IsEmpty());
    EXPECT_EQ(bench.object.get_iShowDetail(), 7);
    EXPECT_THAT(bench.Rows("DataTbl"), IsEmpty());
}

TEST(FunctionWizard, WritesATableAfterSingleCellFunction) {
    TestBench bench(LedgerFile());
    bench.ShowFormGetVal([](DialogDouble& dialog) { dialog.Press(Command2); });
    EXPECT_THAT(bench.sheet.log, ElementsAre("format R3C2:R18C3 @", "formula R3C2:R21C3"));
    EXPECT_EQ(bench.sheet.cells.at({3, 3}).As<std::string>(), LedgerFile());
    EXPECT_NE(bench.object.get_iShowDetail(), 0);
    bench.sheet = {};
    bench.ShowFormGetVal([](DialogDouble& dialog) { dialog.Press(CmdOK); });
    EXPECT_EQ(bench.sheet.log.size(), 1U);
    EXPECT_EQ(bench.object.get_iShowDetail(), 0);
}

TEST(FunctionWizard, ReportsASheetThatRefusesTheFormula) {
    TestBench bench(LedgerFile());
    bench.sheet.isProtected = true;
    EXPECT_EQ(bench.ShowFormGetVal([](DialogDouble& dialog) { dialog.Press(CmdOK); }), "");
    EXPECT_THAT(bench.TakeMessages(),
                ElementsAre("Error : 1004\r\n\r\nThe sheet is protected.\r\n\r\nFunction : "
                            "ShowformGetVal\r\nModule : OrmQelFunc\r\nSource : Excel"));
    EXPECT_EQ(bench.object.ShowFormGetVal(nullptr), "");
    EXPECT_THAT(bench.TakeMessages(), ElementsAre(HasSubstr("Error : 91"))) << "a macro that passes no cell";
}

TEST(FunctionWizard, IsHebrewAndMirroredWithTheSuitesTable) {
    for (const bool hasTable : {true, false}) { // the component's own strings do not mirror it
        TestBench bench;
        bench.BeHebrew(hasTable);
        bench.Remember(LedgerFile());
        bench.folder.Write("component/PralixHeb.chm", "");
        bench.ShowFormGetVal([&](DialogDouble& dialog) {
            EXPECT_EQ(dialog.IsRightToLeft(), hasTable);
            EXPECT_EQ(dialog.Text(CmdOK) + " " + dialog.Text(ComAddOBS), "אישור הוספת OBS") << hasTable;
            EXPECT_EQ(dialog.Caption(), "פונקציית QEL") << hasTable;
            EXPECT_EQ(dialog.Items(ComFirma).front(), "הכל") << hasTable;
            EXPECT_THAT(dialog.HelpFile(), ::testing::EndsWith("component/PralixHeb.chm")) << hasTable;
            dialog.Press(CmdOK);
        });
        EXPECT_THAT(bench.sheet.log.at(0), HasSubstr("\"All\", \"All\"")) << "formulas are in no language";
        EXPECT_EQ(bench.object.get_iLang(), 1);
    }
}

TEST(FunctionWizard, NeedsADoorWithDialogs) {
    TestBench bench;
    OrmQelFunction without({bench.thread, bench.dataAccess, bench.locale});
    EXPECT_THROW(without.ShowFormGetVal(bench.sheet.Cell({1, 1})), AutomationError);
    EXPECT_THROW(without.ShowFormQelName(bench.sheet.Cell({1, 1})), AutomationError);
}

} // namespace
} // namespace qel::test
