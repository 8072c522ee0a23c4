#pragma once

#include "tests/platform/dialog/win32/Person.h"

#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// Records a dialog's events: "load", "click CmdAdd", "change TxtCity", "leave TxtCity", "unload". CmdOK and
/// CmdCancel close the form.
class EventLog : public DialogEvents {
public:
    std::vector<std::string> told;
    std::function<void()> onLoad;
    std::function<void(std::string_view)> onClick, onLeave;
    bool pressCounts = true; ///< what OnLeave returns
    Dialog* dialog = nullptr;

    void OnLoad() override;
    void OnClick(std::string_view control) override;
    void OnChange(std::string_view control) override;
    bool OnLeave(std::string_view control) override;
    void OnQueryUnload() override { told.emplace_back("unload"); }
};

/// Shows a dialog to a person in another thread. When a step of the person fails, the test fails and the
/// dialog is closed.
void ShowTo(Dialog& dialog, const FormDesign& design, const std::function<void(const Person&)>& person);

} // namespace qel::test
