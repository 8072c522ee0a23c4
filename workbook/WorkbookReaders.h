#pragma once

#include "workbook/WorkbookFile.h"
#include "workbook/ZipFile.h"

#include <pugixml.hpp>

#include <string_view>

// The two kinds of files.

namespace qel {

WorkbookContent ReadOpenXml(ZipFile& file);
WorkbookContent ReadOpenDocument(ZipFile& file);

/// A part as an XML document. Raises WorkbookError.
void LoadPart(ZipFile& file, const std::string& name, pugi::xml_document& document,
              unsigned int options = pugi::parse_default | pugi::parse_ws_pcdata_single);

/// Of a text such as 2024-12-31 or 2024-12-31T10:00:00, in days of the workbook; Null for another one.
Variant DateOfText(std::string_view text, double daysBefore);

} // namespace qel
