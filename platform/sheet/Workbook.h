#pragma once

#include "platform/value/Variant.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// The port through which a command adds a sheet of its own to the workbook.

namespace qel {

/// How cells are shown. A cell with the format Text keeps its text, whatever it begins with.
struct CellFormat {
    enum class Kind : std::uint8_t { Text, Number, Day, Month };
    Kind kind = Kind::Text;
    int decimals = 0; ///< of a number
};

/// A cell above the table.
struct HeadingCell {
    enum class Kind : std::uint8_t {
        Value,
        Name,       ///< of the value below
        Remark,     ///< may run over the empty cells beside it
        SumOfColumn ///< a formula: the sum of the table's column below
    };
    Variant value = {};
    CellFormat format = {};
    Kind kind = Kind::Value;
    bool isBold = false;
};

struct SheetColumn {
    std::string caption;
    CellFormat format = {};
};

/// A sheet with a heading and a table below it, whose captions can be filtered and stay in sight.
struct TableSheet {
    std::string name;
    bool isRightToLeft = false;
    std::vector<std::vector<HeadingCell>> heading = {}; ///< rows from the top
    std::vector<SheetColumn> columns = {};
    /// Each as long as `columns`: texts, numbers and dates. Empty and Null are empty cells.
    std::vector<std::vector<Variant>> rows = {};
};

/// The person stopped a long action.
class ActionStopped : public std::exception {
public:
    const char* what() const noexcept override { return "The action was stopped."; }
};

/// While one lives, the person sees how far an action has come. Only Esc is taken.
class LongAction {
public:
    virtual ~LongAction() = default;
    /// Raises ActionStopped after Esc.
    virtual void Report(double share) = 0;
};

class Workbook {
public:
    virtual ~Workbook() = default;
    virtual std::vector<std::string> SheetNames() const = 0;
    virtual std::string ActiveSheetName() const = 0;
    /// Neither protected nor opened to be read alone.
    virtual bool CanAddSheet() const = 0;
    /// The same, and the arguments of formulas in the active sheet can be read: a spreadsheet may have to
    /// change a cell for that, which a protected sheet does not allow.
    virtual bool CanReadArguments() const = 0;
    /// The rows of a sheet.
    virtual std::uint64_t SheetRows() const = 0;
    virtual std::unique_ptr<LongAction> BeginAction(const std::string& text) = 0;
    /// Puts the sheet behind the active one and shows it; one step to undo. An exception of `progress` leaves
    /// no sheet. Raises AutomationError with the spreadsheet's description.
    virtual void AddSheet(const TableSheet& sheet, const std::function<void(double share)>& progress) = 0;
};

} // namespace qel
