"""What the tests of the Calc add-in share: an office of their own, cubes, and formulas with their values.

A test program is called with a folder of its own, qel, the add-in's package and the repository's folder.
"""
import os
import pathlib
import re
import subprocess
import sys
import unittest
import zipfile

WORK, QEL, PACKAGE, SOURCE = (pathlib.Path(text).absolute() for text in sys.argv[1:5])
del sys.argv[1:5]
sys.path.insert(0, str(SOURCE / "scripts"))

# A client that holds the add-in itself, as no formula does, must know the type of its interface.
WORK.mkdir(parents=True, exist_ok=True)
with zipfile.ZipFile(PACKAGE) as package:
    os.environ["URE_MORE_TYPES"] = ("file:///usr/lib/libreoffice/program/types/offapi.rdb "
                                    + pathlib.Path(package.extract("OrmFunctionQel4.rdb", WORK)).as_uri())

import calc_session  # noqa: E402: its folder is known only now
from com.sun.star.sheet.FormulaResult import STRING as FORMULA_RESULT_STRING  # noqa: E402

del os.environ["URE_MORE_TYPES"]  # an office must find it in the package

CLASS = "OrmFunctionQel4.OrmQelFunction."
NO_VALUE = 519  # Calc's number of #VALUE!
BOOKS = SOURCE / "tests" / "helpers" / "books"


def run_qel(*arguments, text=None, folder=None):
    done = subprocess.run([QEL, *map(str, arguments)], input=text, capture_output=True, encoding="utf-8", cwd=folder,
                          timeout=300, check=False)
    if done.returncode:
        raise AssertionError(f"qel {arguments[0]} ended with {done.returncode}: {done.stderr}")
    return done.stdout


def value_formula(cube_file="books.cub", cube="BooksFNC", name='{"OBS"}', number='{"1"}', level='{"All"}',
                  member='{"All"}', activity='{"All"}', group='"All"', group_member='"All"', account='"All"',
                  measure='"Amount"', money='"All"', plbs='"All"', rh='"All"', firm='"All"', opening='"All"',
                  first='"2024-01-01"', last='"2024-12-31"', function="QelF1"):
    """A formula as Excel writes it; the arguments between the cube's name and the end are formula texts themselves."""
    return (f'={CLASS}{function}("{cube_file}","{cube}",{name},{number},{level},{member},{activity},{group},'
            f"{group_member},{account},{measure},{money},{plbs},{rh},{firm},{opening},{first},{last})")


def name_formula(kind, member, cube_file="books.cub", cube="BooksFNC", function="QelName"):
    return f'={CLASS}{function}("{cube_file}","{cube}",{kind},{member})'


def in_calc(formula):
    """The same formula with the separators that Calc's interface takes: of arguments, columns and rows."""
    parts = re.split(r'("(?:[^"]|"")*")', formula)
    depth = 0
    for i in range(0, len(parts), 2):
        text = ""
        for char in parts[i]:
            depth += {"{": 1, "}": -1}.get(char, 0)
            text += {",": ";", ";": "|"}.get(char, char) if depth else {",": ";"}.get(char, char)
        parts[i] = text
    return "".join(parts)


class CalcTest(unittest.TestCase):
    """Starts one office for a class of tests, its current folder being `folder` with the cubes in it."""

    @classmethod
    def setUpClass(cls):
        cls.folder = WORK / cls.__name__
        profile = calc_session.fresh_profile(cls.folder / "profile", PACKAGE)
        cls.office = calc_session.Office(profile, cls.folder)
        cls.addClassCleanup(cls.office.close)
        cls.office.start()
        run_qel("cube", "build", BOOKS / "books.json", "--output", cls.folder / "books.cub")

    def setUp(self):
        self.document = self.new_document()
        self.sheet = self.document.Sheets.getByIndex(0)

    def new_document(self):
        document = self.office.new_document()
        self.addCleanup(document.close, True)
        return document

    def open(self, path, **options):
        document = self.office.open(path, **options)
        self.addCleanup(document.close, True)
        return document

    def cell(self, name):
        return self.sheet.getCellRangeByName(name)

    def fill(self, cells):
        """Puts numbers, texts and formulas into cells by name; a text that begins with "=" is a formula."""
        for name, value in cells.items():
            if isinstance(value, str) and not value.startswith("="):
                self.cell(name).setString(value)
            elif isinstance(value, str):
                self.cell(name).setFormula(in_calc(value))
            else:
                self.cell(name).setValue(value)

    def value(self, formula, cell="A1"):
        """What a cell with the formula shows: a number, a text, or an Error."""
        self.cell(cell).setFormula(in_calc(formula))
        return shown(self.cell(cell))


class Error:
    """An error that a cell shows."""

    def __init__(self, number):
        self.number = number

    def __eq__(self, other):
        return isinstance(other, Error) and self.number == other.number

    def __repr__(self):
        return f"Error({self.number})"


def shown(cell):
    if cell.getError():
        return Error(cell.getError())
    is_text = cell.FormulaResultType2 == FORMULA_RESULT_STRING
    return cell.getString() if is_text else cell.getValue()
