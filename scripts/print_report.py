#!/usr/bin/python3
"""Opens a workbook in LibreOffice without a window and with the Calc add-in, calculates all of it, and shows it.

Prints every sheet as text, and writes a PDF and a picture of each sheet into a folder. Fails when a cell shows an error.
"""
import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile

import calc_session
from com.sun.star.table.CellContentType import EMPTY
from com.sun.star.text.WritingMode2 import RL_TB


def used_cells(sheet):
    """The sheet's rows up to its last filled cell, as Calc shows them."""
    cursor = sheet.createCursor()
    cursor.gotoEndOfUsedArea(False)
    end = cursor.getRangeAddress()
    return [[sheet.getCellByPosition(column, row) for column in range(end.EndColumn + 1)] for row in range(end.EndRow + 1)]


def failures(document):
    for sheet in document.Sheets:
        for row in used_cells(sheet):
            for cell in row:
                if cell.getError():
                    yield f"{cell.AbsoluteName}: {cell.String} for {cell.Formula}"


def is_number(cell):
    return cell.Type != EMPTY and cell.String.strip("()%–-,.0123456789 ") == "" and cell.String != ""


def print_sheet(sheet):
    """Columns as wide as their figures; titles and notes, which stand alone in their rows, keep no column wide."""
    rows = [row for row in used_cells(sheet) if any(cell.String for cell in row)]
    tables = [row for row in rows if sum(bool(cell.String) for cell in row) > len(row) / 2]
    widths = [max((len(row[i].String) for row in tables), default=0) for i in range(len(rows[0]))]
    print(f"\n-- {sheet.Name} " + "-" * (sum(widths) + 2 * len(widths) - len(sheet.Name) - 4))
    for row in rows:
        if row not in tables:
            print("   ".join(cell.String for cell in row if cell.String))
            continue
        from_right = sheet.TableLayout == RL_TB
        cells = [cell.String.rjust(width) if is_number(cell) or i > 1 or from_right else cell.String.ljust(width)
                 for i, (cell, width) in enumerate(zip(row, widths))]
        print("  ".join(reversed(cells) if from_right else cells).rstrip())


def write_pictures(pdf, names):
    """One PNG for each page of the PDF; every sheet of a report is one page."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["pdftoppm", "-r", "110", "-png", pdf, f"{folder}/page"], check=True)
        pages = sorted(pathlib.Path(folder).glob("page*.png"))
        if len(pages) != len(names):
            raise calc_session.OfficeError(f"{len(names)} sheets make {len(pages)} pages")
        for number, (page, name) in enumerate(zip(pages, names), 1):
            target = pdf.with_name(f"{pdf.stem}-{number}.png")
            shutil.move(page, target)
            print(f"{target}: {name}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("workbook", type=pathlib.Path)
    parser.add_argument("--package", type=pathlib.Path, required=True, help="OrmFuncQel4.oxt")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="the folder of the PDF and the pictures")
    parser.add_argument("--ods", type=pathlib.Path, help="store the calculated workbook as this OpenDocument file, too")
    options = parser.parse_args()
    options.output.mkdir(parents=True, exist_ok=True)
    profile = calc_session.fresh_profile(options.output / "office", options.package)
    with calc_session.Office(profile, options.output) as office:
        document = office.open(options.workbook)
        document.calculateAll()
        for sheet in document.Sheets:
            print_sheet(sheet)
        print()
        wrong = list(failures(document))
        pdf = options.output / (options.workbook.stem + ".pdf")
        document.storeToURL(calc_session.url_of(pdf), calc_session.properties(FilterName="calc_pdf_Export"))
        write_pictures(pdf, document.Sheets.ElementNames)
        print(f"{pdf}: all sheets")
        if options.ods:
            document.storeToURL(calc_session.url_of(options.ods), calc_session.properties(FilterName="calc8"))
        document.close(True)
    for failure in wrong:
        print(failure, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except calc_session.OfficeError as error:
        sys.exit(f"print_report: {error}")
