#pragma once

#include "tests/helpers/automation/DispatchDouble.h"

#include <memory>
#include <string>
#include <vector>

namespace qel::test {

/// A sheet as an automation client sees the one of a spreadsheet: Application, Cells, Range, Offset, Value,
/// NumberFormat and Formula. It remembers what was written; its application tells it as Log, line by line.
class SheetObject {
public:
    SheetObject();

    ComPointer<IDispatch> Application() const;
    ComPointer<IDispatch> Cell(std::int32_t row, std::int32_t column) const;
    /// The cell that the user stands on; R3C2 unless set.
    void Activate(std::int32_t row, std::int32_t column) const;
    void Put(std::int32_t row, std::int32_t column, const std::string& value) const;
    /// Every writing fails with 1004 and this text from now on.
    void Protect(const std::string& message) const;
    /// Empty when nothing stands there.
    std::string Formula(std::int32_t row, std::int32_t column) const;
    const std::vector<std::string>& Log() const;

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace qel::test
