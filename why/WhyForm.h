#pragma once

#include "lines/LinesOfCell.h"
#include "reason/ValueReason.h"
#include "why/BesideForm.h"
#include "why/WhyTexts.h"

#include <memory>

namespace qel {

/// A cell whose value is in doubt, as its spreadsheet knows it, and what the spreadsheet does for the window.
struct WhyPlace {
    std::shared_ptr<FormulaCell> cell; ///< null where no cell is chosen
    std::shared_ptr<Workbook> book;
    CubePath fullPath;
    std::function<void()> editFormula; ///< of the cell, with its wizard
    std::function<void(const std::string& text)> copy;
    LongCommand alone = [](const std::function<void()>& command) { command(); };
};

/// The calls of a formula, those of values first.
class DoubtedCalls {
public:
    explicit DoubtedCalls(const CellCalls& calls);

    std::size_t Count() const { return calls_.size(); }
    const FormulaCall& At(std::size_t call) const { return calls_.at(call); }
    /// With what tells it from the others.
    const std::vector<std::string>& Texts() const { return texts_; }
    /// Null for a call that gives a name.
    const CellCall* ValueAt(std::size_t call) const {
        return call < values_.size() ? &values_[call] : nullptr;
    }

private:
    std::vector<CellCall> values_;
    std::vector<FormulaCall> calls_;
    std::vector<std::string> texts_;
};

/// The window *Why this value*.
class WhyForm : public BesideForm {
public:
    WhyForm(const WizardContext& context, WhyPlace place, DoubtedCalls calls, std::size_t call);

private:
    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view /*control*/) override {}
    bool OnLeave(std::string_view /*control*/) override { return true; }

    void ShowReason();
    /// Reads the cell again, which may have changed while the window was open. Returns false, after a
    /// message, if the formula no longer has the call.
    bool ReadAgain();
    ValueReason FindReason();
    void ShowLines();
    void EditFormula();
    void Compare();
    void Copy() const;
    std::string Heading() const;

    WhyPlace place_;
    DoubtedCalls calls_;
    std::size_t call_;
    std::string sheetName_;
    std::string cellName_; ///< "Report.C5"
    ValueReasons reasons_;
    ValueReason reason_;
    WhyTexts texts_;
    std::vector<std::string> comparison_;
};

} // namespace qel
