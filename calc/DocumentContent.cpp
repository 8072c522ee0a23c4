#include "calc/DocumentContent.h"

#include "platform/office/OfficeText.h"
#include "platform/sheet/calc/CalcCells.h"
#include "platform/sheet/calc/NullDate.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>

namespace qel::calc {

namespace {

/// Whether formulas of the sheet, or formulas and names elsewhere, may refer to its cells.
bool IsReferredTo(const SheetContent& sheet, const WorkbookContent& content) {
    const std::string written = ReplaceAll(sheet.name, "'", "''");
    const auto tells = [&](const std::string& text) { return text.find(written) != std::string::npos; };
    return !sheet.formulas.empty() ||
           std::any_of(content.names.begin(), content.names.end(),
                       [&](const auto& name) { return tells(name.second); }) ||
           std::any_of(content.sheets.begin(), content.sheets.end(), [&](const SheetContent& other) {
               return std::any_of(other.formulas.begin(), other.formulas.end(),
                                  [&](const SheetFormula& formula) { return tells(formula.text); });
           });
}

} // namespace

WorkbookContent ContentOf(const office::SheetDocument& document, const std::string& sheet) {
    WorkbookContent content;
    content.isOpenDocument = true; // so are references and lists written
    content.daysBefore = office::NullDateOf({document, com::sun::star::uno::UNO_QUERY_THROW});
    for (const rtl::OUString& name : document->getSheets()->getElementNames()) {
        SheetContent& own = content.sheets.emplace_back();
        own.name = office::FromOffice(name);
        if (sheet.empty() || sheet == own.name) {
            office::WalkFormulas(document, own.name,
                                 [&](std::uint32_t row, std::uint32_t column, const std::string& formula) {
                                     if (MayCallOurs(formula)) {
                                         own.formulas.push_back({{row, column}, formula});
                                     }
                                 });
        }
    }
    office::WalkNames(
        document, [&](const std::string& own, const std::string& name, const std::string& text) {
            const auto place = std::find_if(content.sheets.begin(), content.sheets.end(),
                                            [&](const SheetContent& each) { return each.name == own; });
            const std::string before =
                own.empty() ? std::string() : std::to_string(place - content.sheets.begin()) + '!';
            content.names[before + FoldCase(name)] = text;
        });
    for (SheetContent& own : content.sheets) {
        if (IsReferredTo(own, content)) {
            office::WalkValues(document, own.name,
                               [&](std::uint32_t row, std::uint32_t column, Variant value) {
                                   own.values[SheetContent::KeyOf({row, column})] = std::move(value);
                               });
        }
    }
    return content;
}

} // namespace qel::calc
