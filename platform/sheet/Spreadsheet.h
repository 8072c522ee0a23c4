#pragma once

#include "platform/value/Variant.h"

#include <cstdint>
#include <memory>
#include <string>

// The port through which formulas are written into a sheet: the part of the spreadsheet's object model that
// the component uses. Operations raise AutomationError with the spreadsheet's number and description.

namespace qel {

class SheetApplication;

/// A cell, or a block of cells.
class SheetRange {
public:
    virtual ~SheetRange() = default;
    virtual std::shared_ptr<SheetApplication> Application() const = 0;
    /// Of the first cell, counted from 1.
    virtual std::int32_t Row() const = 0;
    virtual std::int32_t Column() const = 0;
    virtual std::shared_ptr<SheetRange> Offset(std::int32_t rows, std::int32_t columns) const = 0;
    /// Empty for an empty cell.
    virtual Variant Value() const = 0;
    /// "@" for text.
    virtual void SetNumberFormat(const std::string& format) = 0;
    /// A text for a cell, or a two-dimensional array of variants (rows, columns) for a block.
    virtual void SetFormula(const Variant& formula) = 0;
};

/// A cell whose formula is edited.
class FormulaCell : public SheetRange {
public:
    /// As the spreadsheet stores it, beginning with "="; empty for a cell without a formula of its own.
    /// Raises for a cell that must not be changed.
    virtual std::string Formula() const = 0;
    /// The value of an expression of the cell's formula: a list of values for a reference to cells, also to
    /// one; an ErrorValue for an error. Leaves the cell as it is.
    virtual Variant Evaluate(const std::string& expression) const = 0;
    /// Whether a text that no cell holds counts as a key where the functions take lists.
    virtual bool TakesTextsAsKeys() const = 0;
    /// Takes a formula in the words of Formula().
    virtual void ReplaceFormula(const std::string& formula) = 0;
};

class SheetApplication {
public:
    virtual ~SheetApplication() = default;
    virtual std::shared_ptr<SheetRange> ActiveCell() const = 0;
    /// A cell of the active sheet; row and column are counted from 1.
    virtual std::shared_ptr<SheetRange> Cells(std::int32_t row, std::int32_t column) const = 0;
    virtual std::shared_ptr<SheetRange> Range(const SheetRange& first, const SheetRange& last) const = 0;
};

} // namespace qel
