#pragma once

#include <string>

namespace qel {

/// Returns when the data source is a file that the embedded engine wrote; otherwise raises AutomationError
/// naming the source, what is wrong with it and what can be opened.
void RequireCubeFile(const std::string& dataSource);

} // namespace qel
