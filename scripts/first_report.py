#!/usr/bin/python3
"""Makes the first report of docs/getting-started.md in Calc, as its reader does, and takes a picture of each step.

first_report.py QEL PACKAGE PICTURES: once with English windows and once with Hebrew ones. Fails when a figure is not the
one that the page tells. Needs what the tests of the Calc add-in need, and libreoffice-l10n-he.
"""
import csv
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "scripts"), str(ROOT / "tests" / "calc")]

import calc_session  # noqa: E402
from com.sun.star.accessibility.AccessibleRole import TEXT  # noqa: E402
from com.sun.star.awt.PosSize import POSSIZE  # noqa: E402
from com.sun.star.lang import Locale  # noqa: E402
from com.sun.star.table.CellHoriJustify import RIGHT  # noqa: E402
from com.sun.star.text.WritingMode2 import RL_TB  # noqa: E402
from com.sun.star.util.NumberFormat import DATE  # noqa: E402
from person import Hands, Person, eventually, screen  # noqa: E402

CLASS = "OrmFunctionQel4.OrmQelFunction."
QUARTERS = (("2025-01-01", "2025-03-31"), ("2025-04-01", "2025-06-30"), ("2025-07-01", "2025-09-30"), ("2025-10-01", "2025-12-31"))
GROUPS = (61, 62, 63, 64)
FIRST, YEAR = 5284369.13, 42518856.56  # wages of the first quarter, all expenses of the year
WIDTH, HEIGHT = 1000, 420
SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Office.Linguistic/General"><prop oor:name="UILocale" oor:op="fuse"><value>{0}</value></prop></item>
<item oor:path="/org.openoffice.Setup/L10N"><prop oor:name="ooSetupSystemLocale" oor:op="fuse"><value>{1}</value></prop></item>
<item oor:path="/org.openoffice.Setup/Product"><prop oor:name="ooSetupLastVersion" oor:op="fuse"><value>7.4</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="FirstRun" oor:op="fuse"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="ShowTipOfTheDay" oor:op="fuse"><value>false</value></prop></item>
</oor:items>
"""


@dataclass
class Language:
    interface: str  # of the office
    locale: str
    cube: str
    wages: str
    ending: str  # of the pictures' names
    sheet: str
    title: str
    words: tuple


ENGLISH = Language("en-US", "en-US", "LedgerFNC", "Wages", "", "Report", "Operating expenses, 2025", ("From", "To", "Total"))
HEBREW = Language("he", "he-IL", "LedgerHebrewFNC", "שכר עבודה", "-hebrew", "דוח", "הוצאות תפעול, 2025",
                  ("מתאריך", "עד תאריך", "סיכום"))


def run(*words, **options):
    return subprocess.run([str(word) for word in words], check=True, **options)


class FirstReport:
    def __init__(self, language, qel, package, pictures, folder):
        self.language, self.qel, self.package, self.pictures, self.folder = language, qel, package, pictures, folder
        self.is_hebrew = language is HEBREW
        self.office = self.person = self.hands = self.document = self.controller = self.window = None
        with open(ROOT / "lang" / "strings.csv", encoding="utf-8") as table:
            texts = list(csv.DictReader(table))
        self.texts = {row["english"]: row["hebrew" if self.is_hebrew else "english"] for row in texts}

    def make(self):
        self.prepare()
        with screen("openbox") as display:
            profile = calc_session.Profile(self.folder / "profile")
            (profile.folder / "user" / "user").mkdir(parents=True)
            (profile.folder / "user" / "user" / "registrymodifications.xcu").write_text(
                SETTINGS.format(self.language.interface, self.language.locale), "utf-8")
            profile.install(self.package)
            with calc_session.Office(profile, self.folder, display) as self.office:
                self.person, self.hands = Person(self.office, display), Hands(display)
                self.document = self.office.new_document()
                self.controller = self.document.CurrentController
                eventually("the new document in front", self.controller.Frame.isActive)
                self.arrange()
                for step in (self.install, self.prepare_sheet, self.choose, self.refer_to_cells, self.choose_name, self.fill, self.show_lines):
                    step()
                self.document.close(True)

    def arrange(self):
        """A window as large as a picture of a page may be, without the sidebar."""
        self.window = self.controller.Frame.ContainerWindow
        self.window.IsMaximized = False
        self.window.setPosSize(100, 60, WIDTH, HEIGHT, POSSIZE)
        dispatcher = self.office.service("com.sun.star.frame.DispatchHelper")
        dispatcher.executeDispatch(self.controller.Frame, ".uno:Sidebar", "", 0, calc_session.properties(Sidebar=False))

    def prepare(self):
        """What the suite and an earlier page have done: a folder for settings, the language, and a cube."""
        suite = self.folder / "suite"
        suite.mkdir()
        os.environ["XDG_CONFIG_HOME"] = str(self.folder / "config")
        run(self.qel, "settings", "set", "MDBPath", suite, stdout=subprocess.DEVNULL)
        run(self.qel, "settings", "set", "QelUILanguage", int(self.is_hebrew), stdout=subprocess.DEVNULL)
        shutil.copy(ROOT / "examples" / "lang" / "Lang.rs", suite)
        run(self.qel, "cube", "build", ROOT / "examples" / "ledger" / "ledger.json", "--output", self.folder / "ledger.cub",
            stdout=subprocess.DEVNULL)

    def photograph(self, name, context=None):
        """The window of the sheet, or another one."""
        self.hands.do("mousemove", 5, 5)  # where it shows no tip
        time.sleep(1)  # until everything is drawn
        left, top, width, height = self.area(context or self.window.getAccessibleContext())
        path = self.pictures / f"{name}{self.language.ending}.png"
        self.person.photograph(path)
        run("mogrify", "-crop", f"{width}x{height}+{left}+{top}", "+repage", "+dither", "-colors", "64", "-strip", path)
        print(path.relative_to(ROOT) if path.is_relative_to(ROOT) else path)

    def photograph_formula(self, name):
        """The cell that is edited shows its formula, and colours what it refers to."""
        self.hands.key("F2")
        self.photograph(name)
        self.hands.key("Escape")

    @staticmethod
    def area(context):
        place, size = context.getLocationOnScreen(), context.getSize()
        return place.X, place.Y, size.Width, size.Height

    def cell(self, name):
        return self.document.Sheets.getByIndex(0).getCellRangeByName(name)

    def install(self):
        self.hands.key("ctrl+alt+e")
        window = eventually("the extensions", lambda: [w for w in self.person.windows() if w.title and "Calc" not in w.title])[0]
        title = window.title
        self.photograph("extension", window.context)
        self.hands.key("Escape")
        eventually("the end of the extensions", lambda: not self.person.windows(title))

    def prepare_sheet(self):
        self.document.storeAsURL(calc_session.url_of(self.folder / "report.ods"), calc_session.properties(Overwrite=True))
        sheet = self.document.Sheets.getByIndex(0)
        sheet.Name = self.language.sheet
        if self.is_hebrew:
            sheet.TableLayout = RL_TB
        start, end, _ = self.language.words
        self.cell("A1").String = self.language.title
        self.cell("A1").CharWeight = self.cell("A1").CharWeightComplex = 150
        for row, word in ((2, start), (3, end)):
            sheet.getCellByPosition(1, row).String = word
            for column, dates in enumerate(QUARTERS, 2):
                cell = sheet.getCellByPosition(column, row)
                cell.Formula = dates[row - 2]
                cell.NumberFormat = self.document.NumberFormats.getStandardFormat(DATE, Locale(*self.language.locale.split("-"), ""))
        for row, number in enumerate(GROUPS, 4):
            sheet.getCellByPosition(0, row).Value = number
        for column, width in enumerate((1800, 4200, 2900, 2900, 2900, 2900, 3100)):
            sheet.Columns.getByIndex(column).Width = width
        self.controller.select(self.cell("C5"))
        self.hands.key("alt+q")
        self.photograph("menu")
        self.hands.key("Escape", "Escape")

    def command(self, name):
        """One of the menu, whose access keys only a Hebrew keyboard has in Hebrew."""
        dispatcher = self.office.service("com.sun.star.frame.DispatchHelper")
        return self.person.calls(dispatcher.executeDispatch, self.controller.Frame, f"service:OrmFunctionQel4.Wizards?{name}", "", 0, ())

    def open_cube(self, dialog):
        """The first wizard is given the path; the others open the file that was used last."""
        cubes = dialog.after(self.texts["Cube Name"])
        if not cubes.items:
            dialog.first(TEXT).type("ledger.cub")
            dialog.button(self.texts["OK"]).press()
            eventually("the cubes", lambda: cubes.items)
        cubes.choose(self.language.cube)

    def choose(self):
        """The function wizard, for the wages of the first quarter."""
        text = self.texts
        call = self.command("ShowFormGetVal")
        dialog = self.person.sees(text["Function QEL"])
        self.open_cube(dialog)
        dialog.after(text["Account type"]).choose("SuperSum2")
        groups = dialog.after(text["Summary Group"])
        eventually("the groups", lambda: groups.items)
        groups.choose("61 - ")
        for label, date in ((text["From Date"], "01/01/2025"), (text["To Date"], "31/03/2025" if self.is_hebrew else "03/31/2025")):
            dialog.after(label).type(date)
        dialog.button(text["Calculate"]).press()
        eventually("the value", lambda: dialog.after(text["Calculate"]).text)
        self.photograph("wizard", dialog.context)
        dialog.button(text["OK"]).press()
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb", text["OK"])
        call.wait()
        self.require("the wizard's value", self.cell("C5").Value, FIRST)
        self.photograph_formula("formula")

    def refer_to_cells(self):
        """The code and the dates of the wizard's formula give way to cells."""
        formula = self.cell("C5").Formula.replace('"61"', "$A5")
        self.cell("C5").Formula = re.sub(r'"[^"]*" *; *"[^"]*" *\)$', "C$3;C$4)", formula)
        self.require("the value with references", self.cell("C5").Value, FIRST)
        self.photograph_formula("references")

    def choose_name(self):
        text = self.texts
        self.controller.select(self.cell("B5"))
        call = self.command("ShowFormQelName")
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb", text["OK"])
        dialog = self.person.sees(text["Name QEL"])
        self.open_cube(dialog)
        dialog.after(text["Dimension type"]).choose("SuperSum2")
        self.hands.click(dialog.after(text["Summary Group"]))
        self.hands.type("61")
        self.hands.key("Return")
        eventually("the name", lambda: dialog.after(text["Name"]).text)
        self.photograph("name", dialog.context)
        dialog.button(text["OK"]).press()
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb", text["OK"])
        call.wait()
        self.cell("B5").Formula = self.cell("B5").Formula.replace('"61"', "$A5")
        self.require("the name", self.cell("B5").String, self.language.wages)

    def fill(self):
        sheet = self.document.Sheets.getByIndex(0)
        for source, target in (("B5", "B6:B8"), ("C5", "C6:C8")):
            self.copy(source, target)
        self.copy("C5:C8", "D5:F8")
        self.cell("B9").String = self.cell("G4").String = self.language.words[2]
        for row in range(5, 9):
            self.cell(f"G{row}").Formula = f"=SUM(C{row}:F{row})"
        for column in "CDEFG":
            self.cell(f"{column}9").Formula = f"=SUM({column}5:{column}8)"
        figures = sheet.getCellRangeByName("C5:G9")
        figures.NumberFormat = self.document.NumberFormats.queryKey("#,##0", figures.CharLocale, False)
        totals = sheet.getCellRangeByName("B9:G9")
        totals.CharWeight = totals.CharWeightComplex = 150
        self.cell("G4").HoriJustify = RIGHT
        self.controller.select(self.cell("D5"))
        self.require("the year's expenses", round(self.cell("G9").Value, 2), YEAR)
        self.photograph("report")

    def copy(self, source, target):
        sheet = self.document.Sheets.getByIndex(0)
        width = sheet.getCellRangeByName(source).RangeAddress
        area = sheet.getCellRangeByName(target).RangeAddress
        for row in range(area.StartRow, area.EndRow + 1, width.EndRow - width.StartRow + 1):
            for column in range(area.StartColumn, area.EndColumn + 1):
                sheet.copyRange(sheet.getCellByPosition(column, row).CellAddress, width)

    def show_lines(self):
        self.controller.select(self.cell("D8"))
        self.command("ShowLines").wait()
        eventually("the sheet of lines", lambda: self.controller.ActiveSheet.Name.endswith("D8"))
        self.photograph("lines")

    def require(self, what, found, wanted):
        if found != wanted:
            self.document.Modified = False  # the office would ask about it, and stay
            raise SystemExit(f"{what}: {found!r}; docs/getting-started.md tells {wanted!r}")


def main():
    qel, package, pictures = (pathlib.Path(text).absolute() for text in sys.argv[1:4])
    pictures.mkdir(parents=True, exist_ok=True)
    for language in (ENGLISH, HEBREW):
        with tempfile.TemporaryDirectory(prefix="first-report-") as folder:
            FirstReport(language, qel, package, pictures, pathlib.Path(folder)).make()


if __name__ == "__main__":
    main()
