#pragma once

#include "platform/data/DataAccess.h"
#include "platform/dialog/DialogToolkit.h"

#include <optional>
#include <string>
#include <vector>

namespace qel {

/// What a selection that restricts nothing is called in formulas.
inline constexpr const char* allMembers = "All";

/// Something to choose: the key that goes into a formula, and what people see.
struct MemberChoice {
    std::string key, text;

    bool operator==(const MemberChoice&) const = default;
};

/// "4000 - Sales", or the key alone when it is the caption as well.
std::string CaptionWithKey(const std::string& key, const std::string& caption);

MemberChoice ChoiceOf(const Member& member);

/// The members of a level, in member order.
std::vector<MemberChoice> ChoicesOf(const Level& level);

/// A combo box or list box over choices.
class ChoiceBox {
public:
    ChoiceBox(Dialog& dialog, const char* control) : dialog_(dialog), control_(control) {}

    /// Replaces the choices; the first of them is chosen.
    void Fill(std::vector<MemberChoice> choices);
    void Clear() { Fill({}); }
    const std::vector<MemberChoice>& Choices() const { return choices_; }
    /// The chosen key; none when nothing is chosen.
    std::optional<std::string> Key() const;
    std::optional<MemberChoice> Chosen() const;
    /// False, with the choice as it was, when there is no such key.
    bool Choose(const std::string& key);
    void Enable(bool isEnabled) { dialog_.SetEnabled(control_, isEnabled); }
    bool Is(std::string_view control) const { return control == control_; }

private:
    Dialog& dialog_;
    const char* control_;
    std::vector<MemberChoice> choices_;
};

} // namespace qel
