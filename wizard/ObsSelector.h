#pragma once

#include "wizard/LoadedCube.h"
#include "wizard/Selection.h"

#include <map>

namespace qel {

/// The choice of the OBS: its name, its number, a level, and members of that level.
class ObsSelector {
public:
    ObsSelector(const WizardContext& context, Dialog& dialog);

    /// Fills every list from the cube. Raises what the provider raises.
    void Fill(std::shared_ptr<const LoadedCube> cube);
    void Clear();
    /// Enables or disables all its controls. Those that the chosen level does not use stay disabled.
    void Enable(bool isEnabled);

    /// Handles a change of one of its combo boxes. Raises what the provider raises.
    void OnChange(std::string_view control);
    /// True for the controls of name and number, on which other lists depend.
    bool IsScope(std::string_view control) const { return names_.Is(control) || numbers_.Is(control); }
    /// Adds the shown member to the list of chosen members.
    void AddMember();
    void RemoveMember();
    /// The number of the text that says what is missing; nullopt when the choice is complete.
    std::optional<std::int32_t> Missing() const;

    /// The chosen name and number; empty when nothing is chosen.
    std::string Name() const { return names_.Key().value_or(""); }
    std::string Number() const { return numbers_.Key().value_or(""); }
    void Read(Selection& selection) const;
    /// Restores a saved choice; adds what the cube lacks to `dropped`. Raises what the provider raises.
    void Restore(const Selection& selection, std::vector<std::string>& dropped);

private:
    void FillNumbers();
    void FillLevels();
    void FillMembers();
    void ClearMembers();
    /// Lists those of the members that the lists' level and number have.
    void ShowChosen(const std::vector<MemberChoice>& chosen);
    /// The person changed the list of chosen members.
    void KeepChosen(std::vector<MemberChoice> chosen);
    /// A formula carries several members, but its value is the first one's; a list counts before the member
    /// shown to choose from.
    void TellWhichCounts();
    bool UsesObsLevels() const;
    /// "All", "Cost_Centers", or the name of a level of [OBS]; empty when there is none.
    std::string Level() const;
    void RestoreScope(const Selection& selection, std::vector<std::string>& dropped);
    void RestoreMembers(const Selection& selection, std::vector<std::string>& dropped);

    /// What the person chose at a level. It comes back with the level and with numbers that have it.
    struct LevelChoice {
        std::vector<MemberChoice> listed;
        std::string shown;
    };

    const WizardContext& context_;
    Dialog& dialog_;
    ChoiceBox names_, numbers_, kinds_, levels_, members_, chosen_;
    std::shared_ptr<const LoadedCube> cube_;
    std::map<std::string, LevelChoice> kept_; ///< by level
    std::string keptLevel_;                   ///< of [OBS], as the person chose it last
    bool isEnabled_ = false;
};

} // namespace qel
