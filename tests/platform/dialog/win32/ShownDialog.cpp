#include "tests/platform/dialog/win32/ShownDialog.h"

namespace qel::test {

void EventLog::OnLoad() {
    told.emplace_back("load");
    if (onLoad) {
        onLoad();
    }
}

void EventLog::OnClick(std::string_view control) {
    told.push_back("click " + std::string(control));
    if (onClick) {
        onClick(control);
    }
    if (control == "CmdOK" || control == "CmdCancel") {
        dialog->Hide();
    }
}

void EventLog::OnChange(std::string_view control) { told.push_back("change " + std::string(control)); }

bool EventLog::OnLeave(std::string_view control) {
    told.push_back("leave " + std::string(control));
    if (onLeave) {
        onLeave(control);
    }
    return pressCounts;
}

void ShowTo(Dialog& dialog, const FormDesign& design, const std::function<void(const Person&)>& person) {
    Person::ActDuring([&] { dialog.ShowModal(); }, [&] { person(Person(design)); }, "");
}

} // namespace qel::test
