#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace qel {

/// Lines of cells in aligned columns, two blanks apart: the first `leftColumns` columns to the left, the
/// others to the right.
struct TextTable {
    std::size_t leftColumns = 1;
    std::vector<std::vector<std::string>> lines;
};

void PrintTable(const TextTable& table, std::ostream& output);

/// The columns that a UTF-8 text takes on a terminal; marks that combine with a letter take none.
std::size_t DisplayWidth(const std::string& text);

} // namespace qel
