#include "workbook/cells/WorkbookContent.h"

#include "text/CaseFold.h"

#include <algorithm>

namespace qel {

const SheetContent* WorkbookContent::SheetNamed(const std::string& name) const {
    const auto found = std::find_if(sheets.begin(), sheets.end(), [&](const SheetContent& sheet) {
        return EqualIgnoringCase(sheet.name, name);
    });
    return found == sheets.end() ? nullptr : &*found;
}

bool MayCallOurs(std::string_view formula) {
    constexpr std::string_view ours = "qel";
    return std::search(formula.begin(), formula.end(), ours.begin(), ours.end(),
                       [](char left, char right) { return (left | 0x20) == right; }) != formula.end();
}

} // namespace qel
