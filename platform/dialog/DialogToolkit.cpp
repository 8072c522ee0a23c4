#include "platform/dialog/DialogToolkit.h"

namespace qel {

std::string TypeNameOf(ControlKind kind) {
    switch (kind) {
    case ControlKind::Label:
        return "Label";
    case ControlKind::TextBox:
        return "TextBox";
    case ControlKind::Button:
        return "CommandButton";
    case ControlKind::CheckBox:
        return "CheckBox";
    case ControlKind::ComboBox:
        return "ComboBox";
    case ControlKind::BoundList:
        return "DataCombo";
    case ControlKind::ListBox:
        return "ListBox";
    case ControlKind::Line:
        return "Line";
    case ControlKind::FileDialog:
        return "CommonDialog";
    }
    return {};
}

} // namespace qel
