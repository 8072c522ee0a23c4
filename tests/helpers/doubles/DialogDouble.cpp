#include "tests/helpers/doubles/DialogDouble.h"

#include "platform/value/AutomationError.h"

#include <algorithm>

namespace qel::test {

DialogDouble::DialogDouble(const FormDesign& design, bool isRightToLeft, DialogEvents& events)
    : design_(design), events_(events), isRightToLeft_(isRightToLeft) {
    for (const ControlDesign& control : design.controls) {
        controls_.emplace(control.name, std::make_unique<Control>(control));
    }
}

DialogDouble::Control& DialogDouble::At(std::string_view control) {
    const auto found = controls_.find(control);
    if (found == controls_.end()) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall, "no control " + std::string(control));
    }
    return *found->second;
}

const DialogDouble::Control& DialogDouble::At(std::string_view control) const {
    return const_cast<DialogDouble*>(this)->At(control); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

DialogDouble::Control& DialogDouble::Usable(std::string_view control,
                                            std::initializer_list<ControlKind> kinds) {
    Control& found = At(control);
    if (std::find(kinds.begin(), kinds.end(), found.design->kind) == kinds.end()) {
        throw ImpossibleAct(std::string(control) + " is of another kind");
    }
    if (isHidden_ || !found.isEnabled || found.design->isReadOnly) {
        throw ImpossibleAct(std::string(control) + " cannot be used");
    }
    return found;
}

void DialogDouble::Press(std::string_view control) {
    Usable(control, {ControlKind::Button});
    events_.OnClick(control);
}

void DialogDouble::Tick(std::string_view control, bool isChecked) {
    Usable(control, {ControlKind::CheckBox}).isChecked = isChecked;
    events_.OnClick(control);
}

void DialogDouble::Choose(std::string_view control, std::string_view part) {
    Control& box = Usable(control, {ControlKind::ComboBox, ControlKind::ListBox});
    const auto found = std::find_if(box.items.begin(), box.items.end(), [&](const std::string& item) {
        return item.find(part) != std::string::npos;
    });
    if (found == box.items.end()) {
        throw ImpossibleAct(std::string(control) + " has no item " + std::string(part));
    }
    box.selected = static_cast<std::size_t>(found - box.items.begin());
    events_.OnChange(control);
}

void DialogDouble::Type(std::string_view control, const std::string& text) {
    Usable(control, {ControlKind::TextBox}).text = text;
    events_.OnChange(control);
    static_cast<void>(events_.OnLeave(control));
}

std::size_t DialogDouble::Find(std::string_view control, std::string_view typed) {
    Control& list = Usable(control, {ControlKind::BoundList});
    const auto rows = list.rows ? list.rows->Matching(typed) : std::vector<std::uint32_t>();
    list.selected = rows.empty() ? std::nullopt : std::optional<std::size_t>(rows.front());
    events_.OnChange(control);
    static_cast<void>(events_.OnLeave(control));
    return rows.size();
}

void DialogDouble::ShowModal() {
    isHidden_ = false;
    events_.OnLoad();
    if (beforeRun) {
        beforeRun(*this);
    }
    if (!isHidden_) {
        events_.OnQueryUnload();
    }
    isHidden_ = true;
}

std::string DialogDouble::Text(std::string_view control) const {
    const Control& found = At(control);
    if (found.design->kind == ControlKind::ComboBox) {
        return found.selected ? found.items[*found.selected] : std::string();
    }
    return found.text;
}

void DialogDouble::RecordFilling(std::string_view control) {
    if (filled_.empty() || filled_.back() != control) {
        filled_.emplace_back(control);
    }
}

void DialogDouble::SetText(std::string_view control, const std::string& text) {
    At(control).text = text;
    if (!text.empty()) {
        RecordFilling(control);
    }
}

void DialogDouble::SetItems(std::string_view control, const std::vector<std::string>& items) {
    Control& found = At(control);
    found.items = items;
    found.selected.reset();
    if (!items.empty()) {
        RecordFilling(control);
    }
}

void DialogDouble::Select(std::string_view control, std::optional<std::size_t> index) {
    Control& found = At(control);
    const std::size_t count = found.design->kind == ControlKind::BoundList
                                  ? (found.rows ? found.rows->RowCount() : 0)
                                  : found.items.size();
    if (index && *index >= count) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall, "no such item");
    }
    found.selected = index;
}

void DialogDouble::Bind(std::string_view control, std::shared_ptr<const ListSource> rows) {
    Control& found = At(control);
    found.rows = std::move(rows);
    found.selected.reset();
    if (found.rows) {
        RecordFilling(control);
    }
}

std::string DialogDouble::AskForFile(std::string_view control, const FileQuestion& question) {
    At(control);
    asked_ = question;
    return chosenFile;
}

std::vector<FormControl*> DialogDouble::Controls() const {
    std::vector<FormControl*> controls;
    controls.reserve(controls_.size());
    for (const auto& [name, control] : controls_) {
        controls.push_back(control.get());
    }
    return controls;
}

std::string DialogDouble::Control::TypeName() const { return TypeNameOf(design->kind); }

std::string DialogDouble::Control::GetText(TextProperty property) const {
    if (property == TextProperty::Tag) {
        return design->tag == 0 ? std::string() : std::to_string(design->tag);
    }
    return property == TextProperty::Caption ? text : std::string();
}

void DialogDouble::Control::SetText(TextProperty property, const std::string& value) {
    if (property == TextProperty::Caption) {
        text = value;
    }
}

std::unique_ptr<Dialog> ToolkitDouble::NewDialog(const FormDesign& design, bool isRightToLeft,
                                                 DialogEvents& events) {
    auto dialog = std::make_unique<DialogDouble>(design, isRightToLeft, events);
    dialog->chosenFile = chosenFile;
    dialog->beforeRun = person;
    return dialog;
}

} // namespace qel::test
