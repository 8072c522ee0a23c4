#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/Selection.h"

namespace qel {

/// The scope of the lists of accounts and activities: only members with data in it are listed.
struct ListScope {
    std::string firma = allMembers;
    std::string obsName, obsNumber; ///< may be empty

    bool operator==(const ListScope&) const = default;
};

/// The choice of accounts: a summary level, one of its groups, and one account if the list is used.
class AccountSelector {
public:
    AccountSelector(const WizardContext& context, Dialog& dialog);

    /// Fills the summary levels and groups. Raises what the provider raises.
    void Fill(std::shared_ptr<const LoadedCube> cube);
    void Clear();
    void Enable(bool isEnabled);
    /// Binds the list of accounts, which is read on first use. A chosen account stays if the scope has it.
    void BindList(const ListScope& scope);

    /// Handles a change of one of its combo boxes. Raises what the provider raises.
    void OnChange(std::string_view control);
    void Read(Selection& selection) const;
    void Restore(const Selection& selection, std::vector<std::string>& dropped);
    /// The number of the text that says what is missing; nullopt when the choice is complete.
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
