"""Lines behind this cell: a new sheet with the lines of the active cell's formula."""

import csv
import io
import shutil

from calc_bench import CLASS, SOURCE, WORK, calc_session, run_qel
from com.sun.star.table.CellContentType import TEXT
from com.sun.star.text.WritingMode2 import RL_TB
from com.sun.star.util import CloseVetoException
from keyboard_bench import KeyboardTest, eventually
from person import run_tests
import uno

ARGUMENTS = ['"ledger.cub"', "B1", '{"OBS"}', '{"1"}', '{"All"}', '{"All"}', '{"All"}', '"All"', '""', "B2", '"Amount"',
             '"All"', '"All"', '"All"', '"All"', '"All"', "DATE(2024;1;1)", "B3"]
CAPTIONS = 5  # the row of the table's captions, counted from 0


def formula(function="QELF1", **others):
    """`others` are arguments by their place: a9='"All"'."""
    arguments = [others.get(f"a{i}", argument) for i, argument in enumerate(ARGUMENTS)]
    return f"={CLASS.upper()}{function}({';'.join(arguments[:4] if function == 'QELNAME' else arguments)})"


class Lines(KeyboardTest):
    def setUp(self):
        super().setUp()
        self.document.storeAsURL(calc_session.url_of(WORK / "report.ods"), calc_session.properties(Overwrite=True))
        self.sheets, self.controller = self.document.Sheets, self.document.CurrentController
        self.report = self.sheets.getByIndex(0)
        self.report.Name = "Report"
        self.report.getCellRangeByName("B1:B2").DataArray = (("LedgerFNC",), ("6111",))
        self.report.getCellRangeByName("B3").Formula = "2024-03-31"
        self.report.getCellRangeByName("B9").Formula = "=1/0"
        self.cell = self.report.getCellRangeByName("C5")

    def asks(self, text):
        self.controller.ActiveSheet = self.report
        self.controller.select(self.cell)
        if text:
            self.cell.Formula = text
        self.hands.key("alt+q", "l")

    def shows(self, name):
        """The new sheet, when it is complete."""
        eventually(f"the sheet {name}", lambda: self.controller.ActiveSheet.Name == name)
        return self.controller.ActiveSheet

    def test_the_lines_stand_in_a_new_sheet(self):
        self.document.NullDate = uno.createUnoStruct("com.sun.star.util.Date", 1, 1, 1904)  # the cells count days from then on
        self.report.getCellRangeByName("B3").Formula = "2024-03-31"
        self.asks(formula())
        sheet = self.shows("Report C5")
        fields, *lines = csv.reader(io.StringIO(run_qel(
            "lines", "--csv", formula().replace("B1", '"LedgerFNC"').replace("B2", '"6111"').replace("B3", '"31/03/2024"'),
            folder=WORK)))
        rows = sheet.getCellRangeByPosition(0, 0, len(fields) - 1, CAPTIONS + len(lines)).DataArray
        self.assertEqual(rows[CAPTIONS], tuple(fields))
        amount, end = fields.index("Amount"), CAPTIONS + 1 + len(lines)
        self.assertEqual([tuple(row[1:amount]) for row in rows[CAPTIONS + 1:]], [tuple(line[1:amount]) for line in lines])
        self.assertEqual([row[amount] for row in rows[CAPTIONS + 1:]], [float(line[amount]) for line in lines])
        self.assertEqual(sheet.getCellByPosition(0, CAPTIONS + 1).String, "2024-01")
        self.assertEqual(sheet.getCellByPosition(amount, CAPTIONS + 1).String, "32,085.00")
        total = sheet.getCellByPosition(amount, CAPTIONS - 1)
        self.assertEqual((total.Formula, total.Value), (f"=SUM(W{CAPTIONS + 2}:W{end})", self.cell.Value))
        self.person.photograph(WORK / "lines.png")
        self.assertEqual(rows[0][0], "Lines behind Report.C5 – LedgerFNC, ledger.cub")
        given = dict(zip(rows[1], rows[2]))
        self.assertEqual([given[name] for name in ("Value", "Accounts", "cubeFile")], [self.cell.Value, "6111", str(WORK / "ledger.cub")])
        self.assertEqual((sheet.getCellRangeByName("Q3").String, rows[3][0]), ("2024-03-31", f"Lines: {len(lines)}"))
        self.assertTrue(self.document.getPropertyValue("UnnamedDatabaseRanges").getByTable(1).AutoFilter)
        self.assertEqual((self.controller.hasFrozenPanes(), self.controller.SplitRow), (True, CAPTIONS + 1))
        self.report.Name = "Report's long name of more than 31 characters"
        for name in ("Report's long name of more t C5", "Report's long name of mo C5 (2)"):
            self.asks(None)
            self.shows(name)
        for count, change in ((3, "undo"), (2, "undo"), (3, "redo")):  # the arguments' values leave nothing to undo
            getattr(self.document.UndoManager, change)()
            self.assertEqual(self.sheets.Count, count)
        self.assertEqual(self.sheets.getByIndex(1).getCellByPosition(amount, CAPTIONS - 1).Value, self.cell.Value)

    def test_a_hebrew_sheet_stands_from_right_to_left(self):
        self.addCleanup(run_qel, "settings", "set", "QelUILanguage", "0")
        run_qel("settings", "set", "QelUILanguage", "1")
        self.asks("=1+1")
        self.person.answers("OrmFuncQel4", "יש לבחור תא שהנוסחה שלו קוראת ל-QelF1.", "אישור")
        self.report.Name = "דוח"
        self.asks(formula(a1='"LedgerHebrewFNC"'))
        sheet = self.shows("דוח C5")
        self.assertEqual(sheet.TableLayout, RL_TB)
        self.assertEqual([sheet.getCellByPosition(0, row).String for row in (0, 1, 3)],
                         ["השורות מאחורי דוח.C5 – LedgerHebrewFNC, ledger.cub", "ערך", "שורות: 120"])
        self.person.photograph(WORK / "lines_he.png")

    def test_of_several_formulas_in_a_cell_one_is_chosen(self):
        text = f"{formula()}-2*{formula(a9=chr(34) + '6112' + chr(34))[1:]}"
        self.asks(text)
        dialog = self.person.sees("Lines behind this cell")
        self.assertEqual(dialog.after("The formula calls QelF1 several times. Which lines?").items,
                         [f"{i}. OBS, 1, 611{i}, Amount, 2024-01-01, 2024-03-31" for i in (1, 2)])
        self.hands.key("Escape")
        eventually("the end", lambda: not self.person.windows("Lines behind this cell"))
        self.assertEqual(self.sheets.Count, 1)
        self.asks(text)
        self.person.sees("Lines behind this cell")
        self.person.photograph(WORK / "which.png")
        self.hands.key("Down", "Return")
        self.assertEqual(self.shows("Report C5").getCellRangeByName("I3").String, "6112")

    def test_what_has_no_lines_is_told(self):
        for text, message in (
                ("=1+1", "Choose a cell whose formula calls QelF1."),
                (formula("QELNAME"), "The formula gives a name. Only amounts have lines."),
                (formula(a9="B9"), "have no value that it takes:\nAccounts"),
                (formula(a0='"no such.cub"'), "There is no such cube file:\nno such.cub"),
                (formula(a1='"NoFNC"'), "The formula has no value:\n"),
                (formula(a16="DATE(2024;9;1)"), "The From Date is later than the To Date."),
                (formula(a16="DATE(1999;1;1)", a17="DATE(1999;2;1)"), "The value adds up no lines.")):
            with self.subTest(text):
                self.asks(text)
                self.person.answers("OrmFuncQel4", message)
        for protected in (self.report, self.document):
            protected.protect("")
            self.hands.key("alt+q", "l")
            self.person.answers("OrmFuncQel4", "This sheet or document is protected")
            protected.unprotect("")
        self.assertEqual(self.sheets.Count, 1)

    def test_many_lines_can_be_stopped_and_texts_stay_texts(self):
        ledger = WORK / "wide"
        shutil.rmtree(ledger, ignore_errors=True)
        shutil.copytree(SOURCE / "examples" / "ledger", ledger)
        head, *lines = (ledger / "ledger.csv").read_text("utf-8").splitlines()
        (ledger / "ledger.csv").write_text("\n".join([head] + ["=1+" + line for line in lines] * 5), "utf-8")
        definition = (ledger / "ledger.json").read_text("utf-8").replace('"facts": "ledger",', '"facts": "ledger", "details": "all",')
        (ledger / "ledger.json").write_text(definition, "utf-8")
        run_qel("cube", "build", ledger / "ledger.json", "--output", WORK / "wide.cub")
        text = formula(a0='"wide.cub"', a9='"All"', a16="DATE(2023;1;1)", a17="DATE(2026;12;31)")
        window = self.controller.Frame.ContainerWindow
        for stop in (lambda: self.hands.key("x", "Escape"),
                     lambda: self.assertRaises(CloseVetoException, self.document.close, False)):
            self.asks(text)
            eventually("the reading", lambda: not window.isEnabled())
            stop()
            eventually("the end", window.isEnabled)
            self.assertEqual((self.sheets.Count, self.cell.Formula), (1, text))
        self.asks(text)
        sheet = self.shows("Report C5")
        self.assertEqual(sheet.getCellRangeByName("A4").String, f"Lines: 100000 of {5 * len(lines)}. The total is of these lines only.")
        rows = sheet.getCellRangeByPosition(0, CAPTIONS, 30, 100_000 + CAPTIONS).DataArray
        entries = rows[0].index("entry")
        self.assertEqual((rows[1][entries], sheet.getCellByPosition(entries, CAPTIONS + 1).Type), ("=1+1", TEXT))
        self.assertNotEqual(rows[-1][0], "")


if __name__ == "__main__":
    run_tests()
