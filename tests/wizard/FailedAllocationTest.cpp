#include "cube/MemberListing.h"
#include "function/formula/ParseFormula.h"
#include "platform/value/ValueText.h"
#include "qel/engine/Drillthrough.h"
#include "reason/RunFormula.h"
#include "reason/ValueReason.h"
#include "tests/helpers/FailEach.h"
#include "tests/wizard/WizardBench.h"

#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <filesystem>

// Every allocation of a call fails once: nothing escapes but what the call may raise, nothing leaks, and the
// next call is right.

// NOLINTBEGIN(bugprone-reserved-identifier): the leak checker's name
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

/// A failed load of SimpleIni, the library of settings, keeps a few blocks.
const char* __lsan_default_suppressions() { return "leak:libsimpleini"; }
// NOLINTEND(bugprone-reserved-identifier)

namespace qel::test {
namespace {

/// What `work` gives while an allocation fails.
template <class Work>
Outcome While(std::size_t failing, const Work& work) {
    Outcome outcome;
    const FailingAllocation failure(failing);
    try {
        outcome.shown = work();
    } catch (const std::exception&) { // bad_alloc, or the error of a call that lacked memory
        outcome.shown = "raised";
    }
    outcome.hasFailed = failing != 0 && FailingAllocation::HasFailed();
    return outcome;
}

Outcome Calculate(const std::string& formula, std::size_t failing) {
    EmbeddedDataAccess cubes;
    ModSetCube::ThreadState thread;
    Locale locale;
    OrmQelFunction function({thread, cubes, locale});
    const auto bound = BindFormula(ParseFormula(formula), locale);
    return While(failing, [&] {
        const FormulaResult result = RunFormula(function, bound);
        return ValueText(result.value) +
               (result.failure ? " " + std::to_string(result.failure->Number()) : "");
    });
}

TEST(FailedAllocation, ShowsAValueAs0) {
    const std::string formula =
        "=QelF1(\"" + PlainBooksFile() +
        "\",\"BooksFNC\",{\"OBS\"},{\"1\"},{\"All\"},{\"All\"},{\"All\"},\"All\",\"\","
        "\"4000\",\"Amount\",\"All\",\"All\",\"All\",\"All\",\"All\",\"01/01/2024\","
        "\"31/12/2024\")";
    EXPECT_EQ(Calculate(formula, 0).shown, "-1500.3");
    FailEach([&](std::size_t failing) { return Calculate(formula, failing); }, {"0 7", "raised"});
}

TEST(FailedAllocation, ShowsANameAsADash) {
    const std::string formula = "=QelName(\"" + PlainBooksFile() + "\",\"BooksFNC\",\"SuperSum1\",\"1\")";
    EXPECT_EQ(Calculate(formula, 0).shown, "Revenue");
    FailEach([&](std::size_t failing) { return Calculate(formula, failing); }, {"- 7", "raised"});
}

TEST(FailedAllocation, FailsAListing) {
    const ModSetCube::MemberListing listing{"LedgerFNC", ModSetCube::AccountsListing{"All", "OBS"}};
    const std::string& file = LedgerFile();
    FailEach(
        [&](std::size_t failing) {
            EmbeddedDataAccess cubes;
            return While(failing, [&] {
                const auto cellset = ModSetCube::ListMembersCellset(cubes, file, listing);
                return std::to_string(cellset->PositionCount(1)) + cellset->MemberAt(1, 0, 0).name;
            });
        },
        {"raised"});
}

TEST(FailedAllocation, FailsTheReasonsOfA0) {
    const std::string formula = "=QelF1(\"" + PlainBooksFile() +
                                "\",\"BooksFNC\",{\"OBS\"},{\"1\"},{\"All\"},{\"All\"},{\"All\"},"
                                "\"A level that no dimension has\",\"4000\",\"All\",\"Amount\",\"All\","
                                "\"All\",\"All\",\"All\",\"All\",\"01/01/2024\",\"31/12/2024\")";
    const auto tell = [&](std::size_t failing) {
        EmbeddedDataAccess cubes;
        Locale locale;
        ValueReasons reasons({cubes}, locale);
        const auto bound = BindFormula(ParseFormula(formula), locale);
        std::string told;
        auto outcome = While(failing, [&] {
            told = fmt::format("{}", fmt::join(ReasonTexts(reasons.Of(bound).why), "; "));
            return std::string();
        });
        outcome.shown += failing == 0 ? told : "";
        return outcome;
    };
    EXPECT_THAT(tell(0).shown, testing::HasSubstr("A level that no dimension has"));
    FailEach(tell, {"", "raised"});
}

TEST(FailedAllocation, FailsTheCopyOfALine) {
    const std::vector<engine::LineValue> line(40, std::string(40, 'x'));
    const auto copy = [&](std::size_t failing) {
        return While(failing, [&] { return std::to_string(std::vector(line).size()); });
    };
    FailEach(copy, {"raised"});
}

/// The wizard opens all the same, or reports what it lacks; nothing escapes. SimpleIni does not free the text
/// of a settings file that it cannot store.
TEST(FailedAllocation, EndsNoWizard) {
    WizardBench bench(LedgerFile());
    std::filesystem::current_path(bench.folder.Path()); // where files go whose folder is not known
    bench.folder.Write("component/readme.txt", "");     // where the suite's texts are looked for
    std::string file;
    bench.toolkit.person = [&](DialogDouble& dialog) { file = dialog.Text("txtCubeFile"); };
    const auto cell = bench.sheet.Cell(bench.sheet.activeCell);
    const auto open = [&](std::size_t failing) {
        file.clear();
        auto outcome = While(failing, [&] {
            bench.object.ShowFormGetVal(cell);
            return std::string();
        });
        outcome.shown += failing == 0 ? file : "";
        bench.TakeMessages();
        return outcome;
    };
    EXPECT_EQ(open(0).shown, LedgerFile());
    constexpr std::size_t ofSimpleIni = 3;
    FailEach(open, {""}, ofSimpleIni);
    EXPECT_EQ(bench.folder.FileCount(), 1U) << "settings.ini; no database in the current folder";
}

} // namespace
} // namespace qel::test
