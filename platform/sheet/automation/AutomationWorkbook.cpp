#include "platform/sheet/automation/AutomationWorkbook.h"

#include "platform/sheet/automation/AutomationTable.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

#include <utility>

namespace qel::windows {

namespace {

/// While one lives, a property of the application is false.
class SwitchedOff {
public:
    SwitchedOff(const DispatchObject& application, const wchar_t* property)
        : application_(application), property_(property) {
        application_.Put(property_, ToAutomation(false));
    }
    ~SwitchedOff() {
        try {
            application_.Put(property_, ToAutomation(true));
        } catch (const AutomationError&) { // NOLINT(bugprone-empty-catch): the spreadsheet ends
        }
    }
    SwitchedOff(const SwitchedOff&) = delete;
    SwitchedOff& operator=(const SwitchedOff&) = delete;

private:
    const DispatchObject& application_;
    const wchar_t* property_;
};

/// Shows in the status bar how far an action has come.
class StatusBarText : public LongAction {
public:
    StatusBarText(DispatchObject application, std::string text)
        : application_(std::move(application)), text_(std::move(text)) {
        application_.Put(L"StatusBar", ToArgument(text_));
    }
    ~StatusBarText() override {
        try {
            application_.Put(L"StatusBar", ToAutomation(false)); // the spreadsheet's own texts
        } catch (const AutomationError&) { // NOLINT(bugprone-empty-catch): the spreadsheet ends
        }
    }
    StatusBarText(const StatusBarText&) = delete;
    StatusBarText& operator=(const StatusBarText&) = delete;

    void Report(double share) override {
        constexpr double hundred = 100;
        const int percent = static_cast<int>(share * hundred);
        if (percent != percent_) {
            percent_ = percent;
            application_.Put(L"StatusBar", ToArgument(fmt::format("{}  {} %", text_, percent)));
        }
        MSG key = {};
        while (::PeekMessageW(&key, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE) != FALSE) {
            if (key.message == WM_KEYDOWN && key.wParam == VK_ESCAPE) {
                throw ActionStopped();
            }
        }
    }

private:
    DispatchObject application_;
    std::string text_;
    int percent_ = -1;
};

class AutomationWorkbook : public Workbook {
public:
    explicit AutomationWorkbook(DispatchObject application)
        : application_(std::move(application)), book_(application_.Child(L"ActiveWorkbook")) {}

    std::vector<std::string> SheetNames() const override {
        const DispatchObject sheets = book_.Child(L"Sheets");
        std::vector<std::string> names;
        for (std::int32_t i = 1; i <= sheets.Number(L"Count"); ++i) {
            names.push_back(sheets.Child(L"Item", ArgumentList(i)).Text(L"Name"));
        }
        return names;
    }

    std::string ActiveSheetName() const override { return ActiveSheet().Text(L"Name"); }

    bool CanAddSheet() const override {
        return !FromAutomation(book_.Property(L"ProtectStructure").Get()).As<bool>();
    }

    bool CanReadArguments() const override { return CanAddSheet(); }

    /// A workbook of the former format has fewer.
    std::uint64_t SheetRows() const override {
        return static_cast<std::uint64_t>(
            book_.Child(L"Worksheets").Child(L"Item", ArgumentList(1)).Child(L"Rows").Number(L"Count"));
    }

    std::unique_ptr<LongAction> BeginAction(const std::string& text) override {
        return std::make_unique<StatusBarText>(application_, text);
    }

    void AddSheet(const TableSheet& table, const std::function<void(double share)>& progress) override {
        {
            const SwitchedOff drawing(application_, L"ScreenUpdating");
            const DispatchObject active = ActiveSheet();
            CallArguments place = ArgumentList(active);
            place.insert(place.begin(), MissingArgument()); // behind it, not before
            const DispatchObject sheet = book_.Child(L"Worksheets").Child(L"Add", std::move(place));
            try {
                sheet.Put(L"Name", ToArgument(table.name));
                AutomationTable(sheet, table).Write(progress);
            } catch (...) {
                Remove(sheet, active);
                throw;
            }
        }
        Freeze(static_cast<std::int32_t>(table.heading.size()) + 1);
    }

private:
    DispatchObject ActiveSheet() const { return book_.Child(L"ActiveSheet"); }

    void Remove(const DispatchObject& sheet, const DispatchObject& active) const noexcept {
        try {
            const SwitchedOff questions(application_, L"DisplayAlerts");
            sheet.Call(L"Delete");
            active.Call(L"Activate");
        } catch (const AutomationError&) { // NOLINT(bugprone-empty-catch): the workbook was closed
        }
    }

    /// The new sheet is the active one.
    void Freeze(std::int32_t rows) const {
        const DispatchObject window = application_.Child(L"ActiveWindow");
        window.Put(L"SplitColumn", ToArgument(0));
        window.Put(L"SplitRow", ToArgument(rows));
        window.Put(L"FreezePanes", ToAutomation(true));
    }

    DispatchObject application_;
    DispatchObject book_;
};

} // namespace

std::unique_ptr<Workbook> ActiveWorkbookOf(IDispatch* application) {
    return std::make_unique<AutomationWorkbook>(
        DispatchObject(ComPointer<IDispatch>(application), "Application", macroLocale));
}

} // namespace qel::windows
