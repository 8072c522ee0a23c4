#include "tests/wizard/TestBench.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/NameFormDesign.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

// What version 17.0.0 wrote serves this version: the files in first_release are its settings, the database
// with its selections, and a cube.

namespace qel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

/// The stored paths are relative ones.
class InFolder {
public:
    explicit InFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
    ~InFolder() { std::filesystem::current_path(before_); }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

TEST(FirstRelease, SettingsSelectionsAndCubesStillWork) {
    TestBench bench;
    const InFolder folder(bench.folder.Path(""));
    std::filesystem::copy(std::filesystem::path(QEL_SOURCE_DIR) / "tests/wizard/first_release", "suite");
    std::filesystem::copy_file("suite/settings.ini", "settings.ini",
                               std::filesystem::copy_options::overwrite_existing);
    const std::string text = bench.ShowFormGetVal([](DialogDouble& dialog) {
        EXPECT_EQ(dialog.Text(FunctionForm::txtCubeFile), "suite/odd.cub");
        EXPECT_THAT(dialog.Items(FunctionForm::ListObs), ElementsAre("North", "South"));
        dialog.Press(FunctionForm::Command1);
        EXPECT_EQ(dialog.Text(FunctionForm::TxtCalc), "1000.3");
        dialog.Press(FunctionForm::CmdOK);
    });
    EXPECT_EQ(text, R"("suite/odd.cub", "Oddfnc", {"OBS"},{"1"},{"Level1"},{"North", "South"},{"All"},)"
                    R"("All", "All", "4]]0", "Amount", "All", "All", "All", "All", "All", )"
                    R"("01/01/2024", "31/03/2024")");
    bench.ShowFormQelName([](DialogDouble& dialog) {
        ASSERT_THAT(dialog.Items(NameForm::ListQuery), SizeIs(1));
        dialog.Choose(NameForm::ListQuery, "SuperSum1 1 - Oddfnc");
        EXPECT_EQ(dialog.Text(NameForm::TxtName), "Revenue");
        dialog.Press(NameForm::CmdOK);
    });
    EXPECT_THAT(bench.Rows("QelName"), SizeIs(1));
}

} // namespace
} // namespace qel::test
