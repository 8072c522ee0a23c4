#pragma once

#include "tests/helpers/automation/DispatchDouble.h"

#include <memory>
#include <string>
#include <vector>

namespace qel::test {

/// A spreadsheet's sheet for automation clients: Application, Cells, Range, Offset, Value, NumberFormat,
/// Formula and what belongs to editing one; Evaluate knows references such as A1:B2. It records what is
/// written; the application's property Log returns the lines.
class SheetObject {
public:
    SheetObject();

    ComPointer<IDispatch> Application() const;
    ComPointer<IDispatch> Cell(std::int32_t row, std::int32_t column) const;
    /// Sets the active cell, which is R3C2 by default.
    void Activate(std::int32_t row, std::int32_t column) const;
    void Put(std::int32_t row, std::int32_t column, const std::string& value) const;
    /// Makes every write fail with 1004 and this text.
    void Protect(const std::string& message) const;
    /// From now on arrays spill, and ranges have Formula2.
    void SpillArrays() const;
    /// Empty for an empty cell.
    std::string Formula(std::int32_t row, std::int32_t column) const;
    const std::vector<std::string>& Log() const;

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace qel::test
