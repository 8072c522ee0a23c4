#pragma once

#include "wizard/Selection.h"
#include "wizard/WizardContext.h"

namespace qel {

/// The choice of the first and the last date.
class DateSelector {
public:
    DateSelector(const WizardContext& context, Dialog& dialog) : context_(context), dialog_(dialog) {}

    /// Opens the thread's connection on the cube and offers its first and last date. A cube whose dates
    /// cannot be read is reported; the dates are empty then.
    void Fill(const ModSetCube::OpenedCube& cube);
    void Clear();
    void Enable(bool isEnabled);

    /// What is wrong with the dates as they stand: no dates, in the wrong order, or outside the cube; none
    /// when they are good.
    std::optional<std::string> Fault() const;
    /// Tells at once of a text that was left and is no date, or ends a range that cannot be.
    void OnLeave(std::string_view control) const;

    /// The dates as they stand; a text that is none leaves the selection's own date.
    void Read(Selection& selection) const;
    void Restore(const Selection& selection);

private:
    /// None for a text that is no date.
    std::optional<AutomationDate> DateIn(std::string_view control) const;
    std::string NoDateText(std::string_view control) const;
    void Show(AutomationDate from, AutomationDate to);

    const WizardContext& context_;
    Dialog& dialog_;
    ModSetCube::OpenedCube opened_;
};

} // namespace qel
