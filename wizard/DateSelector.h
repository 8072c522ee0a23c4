#pragma once

#include "wizard/Selection.h"
#include "wizard/WizardContext.h"

namespace qel {

/// The choice of the first and the last date.
class DateSelector {
public:
    DateSelector(const WizardContext& context, Dialog& dialog) : context_(context), dialog_(dialog) {}

    /// Opens the thread's connection to the cube and offers its first and last date. Unreadable dates are
    /// reported and left empty.
    void Fill(const ModSetCube::OpenedCube& cube);
    void Clear();
    void Enable(bool isEnabled);

    /// What is wrong with the dates: invalid, in the wrong order, or outside the cube; nullopt when they are
    /// valid.
    std::optional<std::string> Fault() const;
    /// Shows a message when the text that was left is not a date, or ends an invalid range.
    void OnLeave(std::string_view control);

    /// Copies the dates into the selection, except invalid ones.
    void Read(Selection& selection) const;
    /// Restores a choice; the offered dates stay, and the choice is added to `dropped`, when the cube has no
    /// data between them.
    void Restore(const Selection& selection, std::vector<std::string>& dropped);

private:
    /// Nullopt for a text that is not a date.
    std::optional<AutomationDate> DateIn(std::string_view control) const;
    std::string NoDateText(std::string_view control) const;
    void Show(AutomationDate from, AutomationDate to);

    const WizardContext& context_;
    Dialog& dialog_;
    ModSetCube::OpenedCube opened_;
    /// The cube's. Those of the thread may be another cube's as soon as a cell is calculated.
    AutomationDate first_, last_;
    std::string refused_; ///< the dates that were refused last
};

} // namespace qel
