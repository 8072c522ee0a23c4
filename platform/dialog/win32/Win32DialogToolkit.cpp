#include "platform/dialog/win32/Win32DialogToolkit.h"

#include "platform/dialog/win32/Win32Dialog.h"

namespace qel::windows {

std::unique_ptr<Dialog> Win32DialogToolkit::NewDialog(const FormDesign& design, bool isRightToLeft,
                                                      DialogEvents& events) {
    INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES};
    ::InitCommonControlsEx(&classes);
    return std::make_unique<Win32Dialog>(design, isRightToLeft, events);
}

} // namespace qel::windows
