#pragma once

#include "wizard/AccountSelector.h"

namespace qel {

/// The choice of one activity, if the list is used.
class ActivitySelector {
public:
    ActivitySelector(const WizardContext& context, Dialog& dialog);

    void Clear();
    void Enable(bool isEnabled);
    /// Binds the list of activities, which is read on first use. A chosen activity stays if the scope has it.
    void BindList(std::shared_ptr<const LoadedCube> cube, const ListScope& scope);

    void Read(Selection& selection) const;
    void Restore(const Selection& selection, std::vector<std::string>& dropped);
    /// The number of the text that says what is missing; nullopt when the choice is complete.
    std::optional<std::int32_t> Missing() const;

private:
    const WizardContext& context_;
    Dialog& dialog_;
    MemberList activities_;
    bool isEnabled_ = false;
};

} // namespace qel
