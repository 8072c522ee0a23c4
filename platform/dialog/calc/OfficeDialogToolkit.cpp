#include "platform/dialog/calc/OfficeDialogToolkit.h"

#include "platform/dialog/calc/OfficeDialog.h"
#include "platform/office/OfficeFailure.h"

namespace qel::office {

std::unique_ptr<Dialog> OfficeDialogToolkit::NewDialog(const FormDesign& design, bool isRightToLeft,
                                                       DialogEvents& events) {
    return Translating(
        [&] { return std::make_unique<OfficeDialog>(windows_, design, isRightToLeft, events); });
}

} // namespace qel::office
