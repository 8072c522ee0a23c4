#include "workbook/ContentLimits.h"

#include "workbook/WorkbookError.h"

#include <fmt/format.h>

#include <utility>

namespace qel {

namespace {

constexpr std::size_t mostSheets = 10'000, mostCells = 5'000'000, mostTextMegabytes = 256;
constexpr std::uint64_t mostRepeatedCells = 2'000'000, mostRepeatedFormulas = 100'000;

[[noreturn]] void Refuse(const SheetContent& sheet, std::uint64_t most, const char* what) {
    throw WorkbookError(fmt::format("with sheet {} it has more than {} {}", sheet.name, most, what));
}

} // namespace

SheetContent& ContentLimits::AddSheet(WorkbookContent& workbook, std::string name) {
    SheetContent& sheet = workbook.sheets.emplace_back();
    sheet.name = std::move(name);
    if (workbook.sheets.size() > mostSheets) {
        Refuse(sheet, mostSheets, "sheets");
    }
    return sheet;
}

void ContentLimits::Keep(SheetContent& sheet, CellPlace place, Variant value) {
    if (++cells_ > mostCells) {
        Refuse(sheet, mostCells, "cells with contents");
    }
    if (value.Is<std::string>()) {
        TakeText(sheet, value.As<std::string>().size());
    }
    sheet.values[SheetContent::KeyOf(place)] = std::move(value);
}

void ContentLimits::Keep(SheetContent& sheet, SheetFormula formula) {
    TakeText(sheet, formula.text.size());
    sheet.formulas.push_back(std::move(formula));
}

void ContentLimits::Repeat(const SheetContent& sheet, std::uint64_t times, bool isFormula) {
    if (times < 2) {
        return;
    }
    repeatedCells_ += times;
    repeatedFormulas_ += isFormula ? times : 0;
    if (repeatedCells_ > mostRepeatedCells) {
        Refuse(sheet, mostRepeatedCells, "cells that repeat others");
    }
    if (repeatedFormulas_ > mostRepeatedFormulas) {
        Refuse(sheet, mostRepeatedFormulas, "formulas that repeat others");
    }
}

void ContentLimits::TakeText(const SheetContent& sheet, std::size_t bytes) {
    textBytes_ += bytes;
    if (textBytes_ > mostTextMegabytes << 20U) {
        Refuse(sheet, mostTextMegabytes, "MiB of texts");
    }
}

} // namespace qel
