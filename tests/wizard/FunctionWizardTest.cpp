#include "tests/wizard/WizardBench.h"
#include "wizard/FunctionForm.h"

#include <gmock/gmock.h>

namespace qel::testing {
namespace {

using namespace FunctionForm;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Messages = std::vector<std::string>;

TEST(FunctionWizard, WritesAFormulaThatGivesTheValueTheDialogShowed) {
    WizardBench bench;
    bench.toolkit.chosenFile = LedgerFile();
    std::string shown;
    const std::string arguments = bench.ShowFormGetVal([&](DialogDouble& dialog) {
        dialog.Press(CmdCubeFile);
        for (const char* box : {cboDatabaseList, ComOBSNum, ComObsX, ComLevel, ComAccX, ChcMeasure, ComFirma,
                                ComRh, ComOB, ComPlbs, ComMoneySet}) {
            std::string line = std::string(box) + ":";
            for (const auto& item : dialog.Items(box))
                line += " [" + item + "]";
            puts(line.c_str());
        }
        puts((dialog.Text(FromDate) + " " + dialog.Text(ToDate)).c_str());
        dialog.Press(Command1);
        shown = dialog.Text(TxtCalc);
        puts(shown.c_str());
        dialog.Choose(ComLevel, "OBS");
        for (const char* box : {ComLevelObs, ComOBSData}) {
            std::string line = std::string(box) + ":";
            for (const auto& item : dialog.Items(box))
                line += " [" + item + "]";
            puts(line.c_str());
        }
        dialog.Choose(ComAccX, "SuperSum2");
        for (const char* box : {ComMember}) {
            std::string line = std::string(box) + ":";
            for (const auto& item : dialog.Items(box))
                line += " [" + item + "]";
            puts(line.c_str());
        }
        dialog.Tick(CheckAcc, true);
        printf("%zu\n", dialog.Find(ListAccount, "4"));
        puts((dialog.Rows(ListAccount).Text(0, 0) + " " + dialog.Rows(ListAccount).Text(0, 1)).c_str());
        dialog.Tick(CheckAcc, false);
        dialog.Press(Command1);
        shown = dialog.Text(TxtCalc);
        puts(shown.c_str());
        dialog.Press(CmdOK);
    });
    EXPECT_THAT(bench.TakeMessages(), IsEmpty());
    puts(arguments.c_str());
    EXPECT_THAT(bench.sheet.log,
                ElementsAre("formula R3C2 =OrmFunctionQel4.OrmQelFunction.QelF1(" + arguments + ")"));
    EXPECT_EQ(bench.Evaluate("=" + std::string("QelF1(") + arguments + ")"), shown);
}

} // namespace
} // namespace qel::testing
