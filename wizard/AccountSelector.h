#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/Selection.h"

namespace qel {

/// What the lists of accounts and activities are restricted to: members with data there.
struct ListScope {
    std::string firma = allMembers;
    std::string obsName, obsNumber; ///< empty for none

    bool operator==(const ListScope&) const = default;
};

/// The choice of accounts: a summary level, a group of it, and one account when the list is used.
class AccountSelector {
public:
    AccountSelector(const WizardContext& context, Dialog& dialog);

    /// Fills the summary levels and groups. Raises what the provider raises.
    void Fill(std::shared_ptr<const LoadedCube> cube);
    void Clear();
    void Enable(bool isEnabled);
    /// Binds the list of accounts, which is read when it is first used. A chosen account that the scope has,
    /// too, stays.
    void BindList(const ListScope& scope);

    /// Takes another choice of one of its combo boxes. Raises what the provider raises.
    void OnChange(std::string_view control);
    void Read(Selection& selection) const;
    void Restore(const Selection& selection, std::vector<std::string>& dropped);
    /// The number of the text that says what is missing; none when the choice is whole.
    std::optional<std::int32_t> Missing() const;

private:
    void FillMembers();
    std::string Level() const { return levels_.Key().value_or(allMembers); }

    const WizardContext& context_;
    Dialog& dialog_;
    ChoiceBox levels_, members_;
    MemberList accounts_;
    std::shared_ptr<const LoadedCube> cube_;
    bool isEnabled_ = false;
};

} // namespace qel
