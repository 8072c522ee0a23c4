#!/usr/bin/env python3
"""Writes report.xlsx: a workbook whose names and figures are formulas over the example ledger's cube.

Nothing in it is calculated here: a spreadsheet with the worksheet functions does that, with ledger.cub beside the
workbook. Needs openpyxl (Debian: python3-openpyxl).
"""
import argparse
import pathlib
from dataclasses import dataclass, field

from openpyxl import Workbook
from openpyxl.chart import BarChart, LineChart, Reference
from openpyxl.chart.shapes import GraphicalProperties
from openpyxl.chart.text import RichText
from openpyxl.drawing.line import LineProperties
from openpyxl.drawing.spreadsheet_drawing import AnchorMarker, TwoCellAnchor
from openpyxl.drawing.text import CharacterProperties, Font as ChartFont, Paragraph, ParagraphProperties
from openpyxl.formatting.rule import ColorScaleRule
from openpyxl.styles import Alignment, Border, Font, PatternFill, Side
from openpyxl.utils import get_column_letter as letter

CLASS = "OrmFunctionQel4.OrmQelFunction."
YEAR = 2025
MONTHS = 12
CODE, NAME, FIRST = 1, 2, 3  # columns; FIRST is January
TOTAL = FIRST + MONTHS
BEFORE, CHANGE = TOTAL + 1, TOTAL + 2

# (summary groups shown line by line, the group that totals them, the subtotal after it)
SECTIONS = [
    (["41", "42", "43", "44"], "4", None),
    (["51", "52"], "5", "gross"),
    (["61", "62", "63", "64"], "6", "operating"),
    (["71", "72"], "7", "before_tax"),
    (["81"], "8", "net"),
]

STORES = [
    ("North", ["Haifa", "Karmi'el", 'Afula "Big"', "נהריה (outlet)"]),
    ("Centre", ["Tel Aviv", "Ramat Gan", "Petah Tikva", "Rishon & Holon", "Kfar Sava"]),
    ("South & Negev", ["Be'er Sheva", "Ashdod", 'Eilat, "no VAT"']),
]

INK, RULE, BAND, SOFT, INPUT = "1F2A44", "8A94A6", "1F3864", "EEF2F8", "FFF8E1"
# Figures without brackets leave the bracket's room free, so that the digits stand below each other.
AMOUNT = "#,##0,_);(#,##0,);–_)"
CENTS = "#,##0.00_);(#,##0.00);–_)"
PERCENT = "0.0%_);(0.0%);–_)"
CHART_ROWS = 19


@dataclass
class Language:
    """The words and the cube of one of the two statements."""
    sheet: str
    title: str
    unit: str
    cube: str
    month: str
    right_to_left: bool
    words: dict = field(default_factory=dict)


ENGLISH = Language(
    "Profit and loss", "Arava Group: profit and loss by month", "Thousands of shekels; expenses in brackets", "LedgerFNC",
    "mmm", False,
    dict(file="Cube file", cube="Cube", year="Year", firm="Firm", line="Business line", total="Year", before="Year before",
         change="Change", gross="Gross profit", operating="Operating profit", before_tax="Profit before tax", net="Net profit",
         check="Difference from the ledger's profit and loss accounts", chart="Revenue and net profit, thousands of shekels"))
HEBREW = Language(
    "רווח והפסד", "קבוצת ערבה: דוח רווח והפסד חודשי", "אלפי ש\"ח; הוצאות בסוגריים", "LedgerHebrewFNC", "[$-40D]mmm", True,
    dict(file="קובץ קוביה", cube="קוביה", year="שנה", firm="פירמה", line="קו עסקים", total="שנה", before="שנה קודמת",
         change="שינוי", gross="רווח גולמי", operating="רווח תפעולי", before_tax="רווח לפני מס", net="רווח נקי",
         check="הפרש מחשבונות הרווח וההפסד שבספרים", chart="הכנסות ורווח נקי, אלפי ש\"ח"))


def font(**changes):
    return Font(**{"name": "Arial", "size": 9, "color": INK, **changes})


def chart_font(size, **changes):
    return CharacterProperties(sz=size, solidFill=INK, latin=ChartFont(typeface="Arial"), cs=ChartFont(typeface="Arial"), **changes)


def fill(color):
    return PatternFill("solid", start_color=color)


def value_formula(inputs, level, member, period, place=('{"All"}', '{"All"}'), plbs='"All"', sign="-"):
    """A credit is negative in the ledger and shown as income: the sign is turned."""
    first, last = period
    return (f"={sign}{CLASS}QelF1({inputs['file']},{inputs['cube']},{{\"OBS\"}},{inputs['line']},{place[0]},{place[1]},"
            f"{{\"All\"}},{level},{member},\"All\",\"Amount\",\"All\",{plbs},\"All\",{inputs['firm']},\"All\",{first},{last})")


def month_of(inputs, column):
    """The first and last day of the month that heads a column."""
    month = f"{letter(column)}${inputs['head']}"
    return month, f"EOMONTH({month},0)"


def year_of(inputs, back=0):
    year = inputs["year"] + (f"-{back}" if back else "")
    return f"DATE({year},1,1)", f"DATE({year},12,31)"


class Page:
    """One sheet: its title, the cells that a person may change, the heads of the columns."""

    def __init__(self, sheet, language, title, unit, shown):
        self.sheet, self.language = sheet, language
        self.inputs = {}
        sheet.sheet_view.rightToLeft = language.right_to_left
        sheet.sheet_view.showGridLines = False
        self.put(1, CODE, title, font(size=16, bold=True, color=BAND))
        self.put(2, CODE, unit, font(color=RULE, italic=True))
        sheet.row_dimensions[1].height = 24
        values = {"file": "ledger.cub", "cube": language.cube, "year": YEAR, "firm": "All", "line": 1}
        for i, name in enumerate(shown):
            column = FIRST + 3 * i
            self.put(3, column, language.words[name], font(size=8, color=RULE))
            self.input_cells(column, values[name])
            self.inputs[name] = f"${letter(column)}$4"
        self.inputs["head"] = 6

    def put(self, row, column, value, style=None, number=None, color=None):
        cell = self.sheet.cell(row, column, value)
        cell.font = style or font()
        if number:
            cell.number_format = number
        if color:
            cell.fill = fill(color)
        return cell

    def input_cells(self, column, value):
        """A value over two cells, in the colours by which people know what they may change."""
        edge = Side(style="thin", color="D9C88A")
        for cell in (self.put(4, column, value, font(color="1F4FA3"), color=INPUT), self.put(4, column + 1, None, color=INPUT)):
            cell.alignment = Alignment(horizontal="center")
            cell.border = Border(left=edge, right=edge, top=edge, bottom=edge)
        self.sheet.cell(4, column - 1).border = Border(right=edge) # Calc draws no first border from right to left
        self.sheet.merge_cells(start_row=4, start_column=column, end_row=4, end_column=column + 1)

    def heads(self, names):
        """The line of the columns' heads: months as dates, then `names` from the year's total on."""
        head = self.inputs["head"]
        for column in range(CODE, TOTAL + len(names)):
            cell = self.put(head, column, None, font(bold=True, color="FFFFFF"), color=BAND)
            cell.alignment = Alignment(horizontal="left" if column <= NAME else "right", vertical="center")
        for month in range(MONTHS):
            cell = self.sheet.cell(head, FIRST + month, f"=DATE({self.inputs['year']},{month + 1},1)")
            cell.number_format = self.language.month + "_)"
        for i, name in enumerate(names):
            self.sheet.cell(head, TOTAL + i, name).number_format = "@_)"
        self.sheet.row_dimensions[head].height = 18
        self.sheet.freeze_panes = self.sheet.cell(head + 1, FIRST)

    def total_line(self, row, last, strong=False):
        for column in range(CODE, last + 1):
            cell = self.sheet.cell(row, column)
            cell.font = font(bold=True, color=BAND if strong else INK)
            cell.border = Border(top=Side(style="thin", color=RULE), bottom=Side(style="medium" if strong else "hair", color=RULE))
            if strong:
                cell.fill = fill(SOFT)

    def month_series(self, chart, row):
        chart.add_data(Reference(self.sheet, min_col=NAME, max_col=TOTAL - 1, min_row=row), from_rows=True, titles_from_data=True)
        chart.set_categories(Reference(self.sheet, min_col=FIRST, max_col=TOTAL - 1, min_row=self.inputs["head"]))
        return chart.series[-1]

    def month_bars(self, title, rows):
        """A chart of rows by month, one above the other, each in its colour."""
        chart = BarChart()
        chart.grouping, chart.overlap, chart.gapWidth = "stacked", 100, 60
        for row, color in rows:
            self.month_series(chart, row).graphicalProperties.solidFill = color
        chart.title = title
        chart.title.tx.rich.p[0].pPr = ParagraphProperties(defRPr=chart_font(1000, b=True))
        for run in chart.title.tx.rich.p[0].r:
            run.rPr = chart_font(1000, b=True)
        chart.y_axis.number_format, chart.x_axis.number_format = "#,##0,", self.language.month
        chart.y_axis.majorGridlines.spPr = GraphicalProperties(ln=LineProperties(solidFill="E3E7EE"))
        small = RichText(p=[Paragraph(pPr=ParagraphProperties(defRPr=chart_font(800)), endParaRPr=chart_font(800))])
        for part in (chart.x_axis, chart.y_axis, chart.legend):
            part.txPr = small
        chart.x_axis.tickLblPos = "low"
        chart.legend.position = "b"
        if self.language.right_to_left:
            chart.x_axis.scaling.orientation = "maxMin"
        return chart

    def place(self, chart, row, last):
        """From the first column to `last`, however wide they are with the fonts of a machine."""
        chart.anchor = TwoCellAnchor(_from=AnchorMarker(col=CODE - 1, row=row - 1), to=AnchorMarker(col=last, row=row + CHART_ROWS - 1))
        self.sheet.add_chart(chart)

    def widths(self, name, amount, last):
        self.sheet.column_dimensions[letter(CODE)].width = 5.5
        self.sheet.column_dimensions[letter(NAME)].width = name
        for column in range(FIRST, last + 1):
            self.sheet.column_dimensions[letter(column)].width = amount

    def one_landscape_page(self, area):
        page, paper = self.sheet.page_setup, self.sheet.PAPERSIZE_A4
        page.orientation, page.paperSize, page.fitToWidth, page.fitToHeight = "landscape", paper, 1, 1
        self.sheet.sheet_properties.pageSetUpPr.fitToPage = True
        self.sheet.print_options.horizontalCentered = True
        self.sheet.print_area = area
        margins = self.sheet.page_margins
        margins.left = margins.right = margins.top = margins.bottom = 0.4
        margins.header = margins.footer = 0.2


class Statement(Page):
    """A profit and loss by month; every amount and every name of a group is a formula over the cube."""

    def __init__(self, sheet, language):
        super().__init__(sheet, language, language.title, language.unit, ["file", "cube", "year", "firm", "line"])
        words = language.words
        self.heads([words["total"], words["before"], words["change"]])
        self.row = self.inputs["head"] + 1
        self.totals = []
        self.rows = {}
        for groups, total, subtotal in SECTIONS:
            self.section(groups, total)
            if subtotal:
                self.sum_line(subtotal, self.totals)
        self.check()
        self.chart()
        self.widths(42, 11, CHANGE)
        self.one_landscape_page(f"A1:{letter(CHANGE)}{self.row + CHART_ROWS}")

    def section(self, groups, total):
        first = self.row
        for group in groups:
            self.group_line(group)
            periods = {column: month_of(self.inputs, column) for column in range(FIRST, TOTAL)}
            periods[BEFORE] = year_of(self.inputs, 1)
            for column, period in periods.items():
                self.put(self.row, column, value_formula(self.inputs, '"SuperSum2"', f"$A{self.row}", period), number=AMOUNT)
            self.year_and_change()
            self.row += 1
        self.group_line(total)
        for column in [*range(FIRST, TOTAL), BEFORE]:
            self.put(self.row, column, f"=SUM({letter(column)}{first}:{letter(column)}{self.row - 1})", number=AMOUNT)
        self.year_and_change()
        self.total_line(self.row, CHANGE)
        self.totals.append(self.row)
        self.rows[total] = self.row
        self.row += 1

    def group_line(self, group):
        self.put(self.row, CODE, int(group), font(size=8, color=RULE)).alignment = Alignment(horizontal="center")
        kind = f'"SuperSum{len(group)}"'
        self.put(self.row, NAME, f"={CLASS}QelName({self.inputs['file']},{self.inputs['cube']},{kind},$A{self.row})")

    def sum_line(self, name, totals):
        self.put(self.row, NAME, self.language.words[name])
        for column in [*range(FIRST, TOTAL), BEFORE]:
            self.put(self.row, column, "=" + "+".join(f"{letter(column)}{row}" for row in totals), number=AMOUNT)
        self.year_and_change()
        self.total_line(self.row, CHANGE, strong=True)
        self.rows[name] = self.row
        self.row += 2

    def year_and_change(self):
        row, year, before = self.row, letter(TOTAL), letter(BEFORE)
        self.put(row, TOTAL, f"=SUM({letter(FIRST)}{row}:{letter(TOTAL - 1)}{row})", font(bold=True), AMOUNT)
        self.put(row, CHANGE, f'=IF({before}{row}=0,"",({year}{row}-{before}{row})/ABS({before}{row}))',
                 font(color=RULE), PERCENT).alignment = Alignment(horizontal="right")

    def check(self):
        """The sum of the lines against all accounts of profit and loss, asked for at once."""
        row = self.row - 1
        self.put(row, NAME, self.language.words["check"], font(size=8, color=RULE, italic=True))
        for column in [*range(FIRST, TOTAL + 1), BEFORE]:
            period = {TOTAL: year_of(self.inputs), BEFORE: year_of(self.inputs, 1)}.get(column, month_of(self.inputs, column))
            whole = value_formula(self.inputs, '"All"', '""', period, plbs='"P"', sign="")[1:]
            self.put(row, column, f"=ROUND({letter(column)}{self.rows['net']}+{whole},2)", font(size=8, color=RULE),
                     CENTS)
        self.row = row + 2

    def chart(self):
        bars = self.month_bars(self.language.words["chart"], [(self.rows["4"], "9DB4D8")])
        line = LineChart()
        profit = self.month_series(line, self.rows["net"])
        profit.graphicalProperties.line.solidFill, profit.graphicalProperties.line.width = "C0504D", 28000
        profit.smooth = False
        bars += line
        self.place(bars, self.row, CHANGE)


class Stores(Page):
    """Sales of every store by month; a store's name in its cell is the key."""

    def __init__(self, sheet):
        super().__init__(sheet, ENGLISH, "Arava Group: sales by store and month", "Thousands of shekels",
                         ["file", "cube", "year", "firm", "line"])
        self.heads(["Year", "Share"])
        self.row = self.inputs["head"] + 1
        regions, first = [], self.row
        for region, stores in STORES:
            regions.append(self.region(region, stores))
        self.put(self.row, NAME, "All stores")
        for column in range(FIRST, TOTAL + 1):
            self.put(self.row, column, "=" + "+".join(f"{letter(column)}{row}" for row in regions), number=AMOUNT)
        for row in range(first, self.row + 1):
            self.put(row, TOTAL + 1, f"={letter(TOTAL)}{row}/{letter(TOTAL)}${self.row}", number="0.0%")
        for row in regions:
            self.total_line(row, TOTAL + 1)
        self.total_line(self.row, TOTAL + 1, strong=True)
        self.widths(28, 11, TOTAL + 1)
        chart = self.month_bars("Sales by region, thousands of shekels", list(zip(regions, ("9DB4D8", "5B7DB1", "C9A66B"))))
        self.place(chart, self.row + 2, TOTAL + 1)
        self.one_landscape_page(f"A1:{letter(TOTAL + 1)}{self.row + 2 + CHART_ROWS}")

    def region(self, name, stores):
        first = self.row
        for store in stores:
            self.put(self.row, NAME, store).alignment = Alignment(horizontal="left", readingOrder=1)
            for column in range(FIRST, TOTAL):
                self.put(self.row, column, value_formula(self.inputs, '"SuperSum1"', '"4"', month_of(self.inputs, column),
                                                         place=('{"Level3"}', f"$B{self.row}")), number=AMOUNT)
            self.put(self.row, TOTAL, f"=SUM({letter(FIRST)}{self.row}:{letter(TOTAL - 1)}{self.row})", font(bold=True), AMOUNT)
            self.row += 1
        cells = f"{letter(FIRST)}{first}:{letter(TOTAL - 1)}{self.row - 1}"
        self.sheet.conditional_formatting.add(cells, ColorScaleRule(
            start_type="min", start_color="FFFFFF", end_type="max", end_color="A9C7E8"))
        self.put(self.row, NAME, name)
        for column in range(FIRST, TOTAL + 1):
            self.put(self.row, column, f"=SUM({letter(column)}{first}:{letter(column)}{self.row - 1})", number=AMOUNT)
        self.row += 1
        return self.row - 1


def make_report():
    book = Workbook()
    book._named_styles["Normal"].font = Font(name="Arial", size=10) # columns are measured in its digits
    book.active.title = ENGLISH.sheet
    Statement(book.active, ENGLISH)
    Stores(book.create_sheet("Stores"))
    Statement(book.create_sheet(HEBREW.sheet), HEBREW)
    return book


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--output", type=pathlib.Path, default=pathlib.Path(__file__).parent / "report.xlsx")
    make_report().save(parser.parse_args().output)


if __name__ == "__main__":
    main()
