#pragma once

#include "platform/sheet/Workbook.h"
#include "why/BesideForm.h"
#include "why/SheetCheck.h"

#include <memory>

namespace qel {

/// A document whose formulas are checked, as its spreadsheet knows it.
struct CheckPlace {
    std::shared_ptr<Workbook> book;
    CubePath fullPath;
    /// The cells: the formulas of the active sheet, or of all sheets.
    std::function<WorkbookContent(bool isWholeDocument)> read;
    SheetCheck::ReadCell readCell;
    std::function<void(const std::string& sheet, CellPlace place)> goTo;
    std::function<bool(const std::string& sheet)> isHidden; ///< so that one cannot go to its cells
    std::function<void(const std::string& text)> copy;
    LongCommand alone;
};

/// The window *Check this sheet*.
class CheckForm : public BesideForm {
public:
    CheckForm(const WizardContext& context, CheckPlace place);

    /// Raises ActionStopped when the person stops it, and what the spreadsheet raises.
    void Check();

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    bool OnLeave(std::string_view /*control*/) override { return true; }

    void Show(std::size_t formulas);
    std::string RowOf(const SheetFinding& finding) const;

    CheckPlace place_;
    std::vector<SheetFinding> findings_;
};

/// The window with what a check of the active sheet found. Null when the person stopped it or something
/// failed, which a message box said. What the context refers to outlives the form.
std::unique_ptr<CheckForm> MakeCheckForm(const WizardContext& context, const CheckPlace& place);

} // namespace qel
