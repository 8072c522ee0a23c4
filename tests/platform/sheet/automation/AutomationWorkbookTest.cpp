#include "platform/sheet/automation/AutomationWorkbook.h"

#include "platform/value/AutomationDate.h"
#include "tests/helpers/automation/AutomationClient.h"
#include "tests/helpers/automation/RecordedObject.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace qel::test {
namespace {

using ::testing::ElementsAre;

constexpr const char* own = "ActiveWorkbook.Worksheets.Add(,ActiveWorkbook.ActiveSheet)";

TableSheet Table() {
    using Kind = CellFormat::Kind;
    return {.name = "Report C5",
            .isRightToLeft = true,
            .heading = {{{.value = std::string("Lines behind Report.C5"),
                          .kind = HeadingCell::Kind::Remark,
                          .isBold = true}},
                        {{.value = std::string("Amount"), .kind = HeadingCell::Kind::Name}},
                        {{}, {.format = {Kind::Number, 2}, .kind = HeadingCell::Kind::SumOfColumn}}},
            .columns = {{"Day", {Kind::Day}}, {"Amount", {Kind::Number, 2}}, {"=Text", {}}},
            .rows = {{AutomationDate{45000}, 1.5, std::string("=1+1")}, {Null{}, -2.25, Empty{}}}};
}

class AutomationWorkbook : public testing::Test {
protected:
    /// The lines without the path of the new sheet.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines = record->lines;
        for (std::string& line : lines) {
            for (auto at = line.find(own); at != std::string::npos; at = line.find(own)) {
                line.replace(at, std::string(own).size(), "new");
            }
        }
        return lines;
    }

    const Apartment apartment;
    std::shared_ptr<ObjectRecord> record = std::make_shared<ObjectRecord>();
    ComPointer<IDispatch> application = RecordedObject(record);
    std::unique_ptr<Workbook> book = windows::ActiveWorkbookOf(application.Get());
};

TEST_F(AutomationWorkbook, AddsASheetAsAMacroDoes) {
    std::vector<double> shares;
    book->AddSheet(Table(), [&](double share) { shares.push_back(share); });
    EXPECT_EQ(shares, std::vector<double>{1});
    const auto at = [](const char* first, const char* last) {
        return std::string("new.Range(new.Cells(") + first + "),new.Cells(" + last + "))";
    };
    EXPECT_THAT(
        Lines(),
        ElementsAre(
            "ScreenUpdating = False", "new.Name = Report C5", at("5,1", "6,1") + ".NumberFormat = YYYY-MM-DD",
            at("5,2", "6,2") + ".NumberFormat = #,##0.00", at("5,3", "6,3") + ".NumberFormat = @",
            at("2,1", "2,1") + ".NumberFormat = @", at("2,1", "2,1") + ".Font.Color = 6710886",
            at("2,1", "2,1") + ".Value = Amount", at("3,2", "3,2") + ".NumberFormat = #,##0.00",
            at("3,2", "3,2") + ".Formula = =SUM(B5:B6)", at("4,1", "4,3") + ".NumberFormat = @",
            at("4,1", "4,3") + ".Value = [Day|Amount|=Text]", at("4,1", "4,3") + ".Font.Bold = True",
            at("4,1", "4,3") + ".Interior.Color = 15132390",
            at("5,1", "6,3") + ".Value = [date 45000|1.5|=1+1][|-2.25|]", at("4,1", "6,3") + ".AutoFilter",
            "new.UsedRange.Columns.AutoFit", at("1,1", "1,1") + ".NumberFormat = @",
            at("1,1", "1,1") + ".Font.Bold = True", at("1,1", "1,1") + ".Value = Lines behind Report.C5",
            "new.DisplayRightToLeft = True", "new.UsedRange.ReadingOrder = -5004", "ScreenUpdating = True",
            "ActiveWindow.SplitColumn = 0", "ActiveWindow.SplitRow = 4", "ActiveWindow.FreezePanes = True"));
}

TEST_F(AutomationWorkbook, EscTakesTheSheetAwayAndOtherKeysAreLost) {
    TableSheet table = Table();
    table.rows.resize(12'000, table.rows.front());
    record->afterLine = [](const std::string& line) {
        if (line.find("5005,1") != std::string::npos) { // a block of rows
            for (const WPARAM key : {WPARAM{'A'}, WPARAM{VK_ESCAPE}}) {
                ::PostThreadMessageW(::GetCurrentThreadId(), WM_KEYDOWN, key, 1);
            }
        }
    };
    {
        MSG message = {};
        ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE); // makes the thread's queue
        const auto action = book->BeginAction("Reading");
        EXPECT_THROW(book->AddSheet(table, [&](double share) { action->Report(share); }), ActionStopped);
        EXPECT_EQ(::PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE), FALSE);
    }
    std::vector<std::string> lines = Lines();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string& line) { return line.starts_with("new.Range"); }),
                lines.end());
    EXPECT_THAT(lines,
                ElementsAre("StatusBar = Reading", "ScreenUpdating = False", "new.Name = Report C5",
                            "StatusBar = Reading  41 %", "StatusBar = Reading  83 %", "DisplayAlerts = False",
                            "new.Delete", "ActiveWorkbook.ActiveSheet.Activate", "DisplayAlerts = True",
                            "ScreenUpdating = True", "StatusBar = False"));
}

TEST_F(AutomationWorkbook, ReadsNamesAndWhetherSheetsMayBeAdded) {
    record->values = {{"ActiveWorkbook.Sheets.Count", std::int32_t{2}},
                      {"ActiveWorkbook.Sheets.Item(1).Name", std::string("דוח")},
                      {"ActiveWorkbook.Sheets.Item(2).Name", std::string("Chart1")},
                      {"ActiveWorkbook.ActiveSheet.Name", std::string("דוח")},
                      {"ActiveWorkbook.Worksheets.Item(1).Rows.Count", std::int32_t{65536}},
                      {"ActiveWorkbook.ProtectStructure", true}};
    EXPECT_THAT(book->SheetNames(), ElementsAre("דוח", "Chart1"));
    EXPECT_EQ(book->ActiveSheetName(), "דוח");
    EXPECT_FALSE(book->CanAddSheet());
    EXPECT_EQ(book->SheetRows(), 65536U);
}

} // namespace
} // namespace qel::test
