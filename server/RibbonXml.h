#pragma once

#include <string>

namespace qel::server {

/// The tab that Excel shows, as the customUI markup of Office 2010 and later. Each button names the callback
/// of RibbonObject that it calls.
std::string RibbonXml(bool isHebrew);

/// Of message boxes: there is no workbook, or no documentation beside the DLL.
std::string NoCellText(bool isHebrew);
std::string NoHelpText(bool isHebrew);

} // namespace qel::server
