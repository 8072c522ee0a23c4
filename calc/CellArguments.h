#pragma once

#include "platform/value/Variant.h"

#include <com/sun/star/uno/Any.hxx>
#include <string>

namespace qel::calc {

/// One of the five list arguments, as Excel would send it: a number, an array constant of one element, or a
/// range of cells. Calc sends a reference to one cell as the cell's value, so a text counts as a range of one
/// cell and an empty text as no key; and it sends array constants of several elements and ranges alike, so
/// both are ranges, read row by row. An omitted argument is the spreadsheet's missing value.
Variant KeysFromCell(const com::sun::star::uno::Any& argument);

/// A text argument; empty when it was omitted. Raises 13 for a range of several cells or an array.
std::string TextFromCell(const com::sun::star::uno::Any& argument, const Locale& locale);

/// A date argument: a date cell, a number of days or a text in the locale's form; the zero date when it was
/// omitted or its cell is empty. Raises as ToDate.
AutomationDate DateFromCell(const com::sun::star::uno::Any& argument, const Locale& locale);

/// What a cell shows of a result: a number or a text. Raises 13 for any other type.
com::sun::star::uno::Any ToCell(const Variant& result);

} // namespace qel::calc
