#pragma once

#include "batch/CallBatch.h"
#include "lines/CellCalls.h"
#include "reason/FormulaJudge.h"
#include "workbook/cells/SheetCalls.h"

#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace qel {

/// A formula that a person who reads the sheet should look at.
struct SheetFinding {
    std::string sheet;
    CellPlace place;
    std::string reason;
};

/// Evaluates the formulas of an open document and finds those whose 0 or "-" hides an error, those over
/// outdated cubes, those whose cube file is missing, and those that fail.
class SheetCheck {
public:
    /// The calls of a cell, computed by the spreadsheet itself; raises AutomationError where it cannot.
    using ReadCell = std::function<CellCalls(const std::string& sheet, CellPlace place)>;

    SheetCheck(const Providers& providers, const Locale& locale, std::int16_t language, CubePath fullPath);

    /// `read` serves cells with arguments that the content does not tell. Raises what `progress` raises.
    void Run(const WorkbookContent& content, const ReadCell& read,
             const std::function<void(double share)>& progress);

    std::size_t Formulas() const { return formulas_; }
    const std::vector<SheetFinding>& Findings() const { return findings_; }

private:
    struct Cell {
        std::string sheet;
        CellPlace place;
    };

    void CheckCell(const Cell& cell, std::span<SheetCall> calls, const ReadCell& read);
    void CheckByReading(const Cell& cell, const ReadCell& read, const std::string& unread);
    void Judge(const Cell& cell, const FormulaCall& call);
    void Find(const Cell& cell, std::string reason);
    const std::string& FullPath(const std::string& cubeFile);

    const Locale& locale_;
    std::int16_t language_;
    CubePath fullPath_;
    std::map<std::string, std::string> paths_; ///< that are known already
    batch::CallBatch batch_;
    FormulaJudge judge_;
    std::size_t formulas_ = 0;
    std::vector<SheetFinding> findings_;
};

} // namespace qel
