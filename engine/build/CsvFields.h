#pragma once

#include <string_view>
#include <vector>

namespace qel::engine {

/// The fields of a line as it stands, where a quote has a meaning at the start of a field alone, as in the
/// spreadsheets that people export from. None when a quoted field does not end where the field does.
std::vector<std::string_view> CsvFieldsOf(std::string_view line, char delimiter);

} // namespace qel::engine
