#include "wizard/MemberChoice.h"

#include <algorithm>

namespace qel {

std::string CaptionWithKey(const std::string& key, const std::string& caption) {
    return caption.empty() || caption == key ? key : key + " - " + caption;
}

MemberChoice ChoiceOf(const Member& member) {
    const std::string name = member.Name();
    return {name, CaptionWithKey(name, member.Caption())};
}

std::vector<MemberChoice> ChoicesOf(const Level& level) {
    std::vector<MemberChoice> choices;
    const std::int32_t count = level.MemberCount();
    choices.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        choices.push_back(ChoiceOf(*level.MemberAt(i)));
    }
    return choices;
}

void ChoiceBox::Fill(std::vector<MemberChoice> choices) {
    choices_ = std::move(choices);
    std::vector<std::string> texts;
    texts.reserve(choices_.size());
    for (const MemberChoice& choice : choices_) {
        texts.push_back(choice.text);
    }
    dialog_.SetItems(control_, texts);
    if (!choices_.empty()) {
        dialog_.Select(control_, 0);
    }
}

std::optional<MemberChoice> ChoiceBox::Chosen() const {
    const auto index = dialog_.Selected(control_);
    return index && *index < choices_.size() ? std::optional(choices_[*index]) : std::nullopt;
}

std::optional<std::string> ChoiceBox::Key() const {
    const auto chosen = Chosen();
    return chosen ? std::optional(chosen->key) : std::nullopt;
}

bool ChoiceBox::Choose(const std::string& key) {
    const auto found = std::find_if(choices_.begin(), choices_.end(),
                                    [&](const MemberChoice& choice) { return choice.key == key; });
    if (found == choices_.end()) {
        return false;
    }
    dialog_.Select(control_, static_cast<std::size_t>(found - choices_.begin()));
    return true;
}

} // namespace qel
