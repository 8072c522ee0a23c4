#pragma once

#include "cli/CellsetTable.h"

#include <ostream>

namespace qel {

/// Aligned columns: a heading line for every member of the columns' tuples, then a line for every row.
void PrintAsTable(const CellsetTable& grid, std::ostream& output, MemberText names = MemberText::Caption);

/// RFC 4180 with line feeds: one heading line (levels of the rows, captions of the columns joined with " /
/// "), then a line for every row. Empty cells are empty fields.
void PrintAsCsv(const CellsetTable& grid, std::ostream& output, MemberText names = MemberText::Caption);

/// {"axes": [[{"members": [{name, caption, uniqueName, level, depth, key}]}]], "cells": [[number or null]]},
/// cells by row; with further axes by the last one first. Texts are strings, conditions true or false;
/// "Infinity",
/// "-Infinity" and "NaN" are strings too.
void PrintAsJson(const CellsetTable& grid, std::ostream& output);

} // namespace qel
