#pragma once

#include "platform/data/DataAccess.h"
#include "platform/dialog/DialogToolkit.h"

#include <optional>
#include <string>
#include <vector>

namespace qel {

/// The value of a selection without restriction in formulas.
inline constexpr const char* allMembers = "All";

/// A choice: the key for the formula, and the text shown.
struct MemberChoice {
    std::string key, text;

    bool operator==(const MemberChoice&) const = default;
};

/// "4000 - Sales", or only the key when it equals the caption.
std::string CaptionWithKey(const std::string& key, const std::string& caption);

MemberChoice ChoiceOf(const Member& member);

/// The members of a level, in member order.
std::vector<MemberChoice> ChoicesOf(const Level& level);

/// A combo box or list box over choices.
class ChoiceBox {
public:
    ChoiceBox(Dialog& dialog, const char* control) : dialog_(dialog), control_(control) {}

    /// Replaces the choices and selects the first.
    void Fill(std::vector<MemberChoice> choices);
    void Clear() { Fill({}); }
    const std::vector<MemberChoice>& Choices() const { return choices_; }
    /// The chosen key, or nullopt.
    std::optional<std::string> Key() const;
    std::optional<MemberChoice> Chosen() const;
    /// Returns false and keeps the choice when there is no such key.
    bool Choose(const std::string& key);
    void Enable(bool isEnabled) { dialog_.SetEnabled(control_, isEnabled); }
    bool Is(std::string_view control) const { return control == control_; }

private:
    Dialog& dialog_;
    const char* control_;
    std::vector<MemberChoice> choices_;
};

} // namespace qel
