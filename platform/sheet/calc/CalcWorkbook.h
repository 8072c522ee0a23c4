#pragma once

#include "platform/sheet/Workbook.h"
#include "platform/sheet/calc/CalcSheet.h"

#include <com/sun/star/uno/XComponentContext.hpp>

namespace qel::office {

/// The document as a workbook that takes new sheets, in the window that shows it.
std::unique_ptr<Workbook>
WorkbookOf(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context,
           const SheetDocument& document);

} // namespace qel::office
