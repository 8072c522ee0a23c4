#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/Selection.h"

namespace qel {

/// The choices of one member or all of a dimension: money set, firm, Plbs, RH, opening balance.
class OtherDimensions {
public:
    OtherDimensions(const WizardContext& context, Dialog& dialog);

    /// A dimension that the cube lacks offers only All. Raises what the provider raises.
    void Fill(const LoadedCube& cube);
    void Clear();
    void Enable(bool isEnabled);
    std::string Firma() const;
    void Read(Selection& selection) const;
    void Restore(const Selection& selection, std::vector<std::string>& dropped);

private:
    const WizardContext& context_;
    std::vector<ChoiceBox> boxes_; ///< one per line of the table in the source file
};

/// The choice of the measure.
class MeasureSelector {
public:
    MeasureSelector(const WizardContext& context, Dialog& dialog);

    /// Raises what the provider raises.
    void Fill(const LoadedCube& cube);
    void Clear() { box_.Clear(); }
    void Enable(bool isEnabled) { box_.Enable(isEnabled); }
    void Read(Selection& selection) const { selection.measure = box_.Key().value_or(""); }
    void Restore(const Selection& selection, std::vector<std::string>& dropped);

private:
    const WizardContext& context_;
    ChoiceBox box_;
};

} // namespace qel
