#include "platform/dialog/win32/ControlIds.h"

namespace qel::windows {

namespace {

constexpr std::size_t firstId = 100;

} // namespace

WORD ControlId(const FormDesign& design, std::size_t index) {
    const std::string_view name = design.controls[index].name;
    if (name == design.defaultButton) {
        return IDOK;
    }
    return name == design.cancelButton ? WORD{IDCANCEL} : static_cast<WORD>(firstId + index);
}

} // namespace qel::windows
