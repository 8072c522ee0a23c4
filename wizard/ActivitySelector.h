#pragma once

#include "wizard/AccountSelector.h"

namespace qel {

/// The choice of one activity, when the list is used.
class ActivitySelector {
public:
    ActivitySelector(const WizardContext& context, Dialog& dialog);

    void Clear();
    void Enable(bool isEnabled);
    /// Binds the list of activities, which is read when it is first used. A chosen activity that the scope
    /// has, too, stays.
    void BindList(std::shared_ptr<const LoadedCube> cube, const ListScope& scope);

    void Read(Selection& selection) const;
    void Restore(const Selection& selection, std::vector<std::string>& dropped);
    /// The number of the text that says what is missing; none when the choice is whole.
    std::optional<std::int32_t> Missing() const;

private:
    const WizardContext& context_;
    Dialog& dialog_;
    MemberList activities_;
    bool isEnabled_ = false;
};

} // namespace qel
