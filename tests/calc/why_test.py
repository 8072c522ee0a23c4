"""Why this value, Compare and Check this sheet: windows beside the sheet that explain formulas."""

import shutil

from calc_bench import BOOKS, SOURCE, WORK, calc_session, run_qel
from com.sun.star.accessibility.AccessibleRole import CHECK_BOX
from com.sun.star.datatransfer import DataFlavor
from keyboard_bench import KeyboardTest, eventually
from lines_test import formula
from person import run_tests
import uno

WHY, CHECK = "Why this value", "Check this sheet"


class Why(KeyboardTest):
    def setUp(self):
        super().setUp()
        (WORK / "reports").mkdir(exist_ok=True)  # the cube file counts from the office's current folder
        self.document.storeAsURL(calc_session.url_of(WORK / "reports" / "report.ods"), calc_session.properties(Overwrite=True))
        self.sheets, self.controller = self.document.Sheets, self.document.CurrentController
        self.report = self.sheets.getByIndex(0)
        self.report.Name = "Report"
        self.report.getCellRangeByName("B1:B2").DataArray = (("LedgerFNC",), ("6111",))
        self.report.getCellRangeByName("B3").Formula = "2024-03-31"
        self.cell = self.report.getCellRangeByName("C5")

    def asks(self, text):
        self.controller.select(self.cell)
        self.cell.Formula = text
        self.hands.key("alt+q", "w")

    def closed(self, title):
        eventually(f"the end of {title}", lambda: not self.person.windows(title))

    def copied(self):
        clipboard = self.office.service("com.sun.star.datatransfer.clipboard.SystemClipboard")
        return clipboard.getContents().getTransferData(DataFlavor("text/plain;charset=utf-16", "", uno.getTypeByName("string")))

    def test_from_a_doubted_figure_to_its_lines_in_two_actions(self):
        self.asks(formula())
        window = self.person.sees(WHY)
        self.hands.key("Return")
        eventually("the lines", lambda: self.controller.ActiveSheet.Name == "Report C5")
        self.controller.ActiveSheet = self.report
        self.hands.click(window.button("Copy"))
        eventually("the copy", lambda: "Report.C5" in self.copied())
        text = self.copied()
        for line in ("Report.C5: 4056682.5", "cubeFile: ledger.cub", "ObsLevel: everything",
                     "Accounts: 6111 → [Accounts].[AccountCodes].[All].[6111], Basic pay", "Lines: 120",
                     "Periods: 3, from [Date].[All].[2024].[Q1].[1] to [Date].[All].[2024].[Q1].[3]"):
            self.assertIn(line, text.splitlines())
        self.hands.click(window.after("Statement"))
        self.hands.key("ctrl+a", "ctrl+c")
        eventually("the statement", lambda: self.copied() in text.splitlines() and self.copied().startswith("WITH MEMBER"))
        self.hands.click(window.button("Edit formula"))  # the sheet and the window take keys and clicks alike
        self.person.sees("Function QEL").button("Cancel").press()
        self.closed("Function QEL")
        self.hands.click(window.button("Close"))
        self.closed(WHY)

    def test_the_window_reads_the_cell_again_and_leaves_it_as_it_was(self):
        key = self.report.getCellRangeByName("B2")
        key.Value = 6111
        key.NumberFormat = self.document.NumberFormats.queryKey("0.00%", uno.createUnoStruct("com.sun.star.lang.Locale"), False)
        self.asks(formula(a9="MAX(B2)"))  # which only the spreadsheet computes, in per cent
        window = self.person.sees(WHY)
        self.assertEqual(self.cell.String, "4056682.5")
        key.Value = 6112
        self.hands.click(window.button("Lines"))
        eventually("the lines", lambda: self.controller.ActiveSheet.Name == "Report C5")
        names, values = self.controller.ActiveSheet.getCellRangeByName("A2:S3").DataArray
        given = dict(zip(names, values))
        self.assertEqual((given["Value"], given["Accounts"]), (139264.31, "6112"))
        self.controller.ActiveSheet.protect("")
        self.hands.click(window.button("Lines"))
        eventually("the lines again", lambda: self.sheets.Count == 3)
        self.assertIn("Lines behind Report.C5 ", self.sheets.getByIndex(2).getCellRangeByName("A1").String)
        self.hands.click(window.button("Close"))
        self.closed(WHY)
        self.assertEqual(self.cell.String, "139264.31")

    def test_a_hidden_error_is_told_and_a_window_goes_with_its_document(self):
        self.asks(formula(a9='"61119"'))
        window = self.person.sees(WHY)
        self.assertEqual(window.after("Explanation").items[:2], [
            'Reason: Accounts: [Accounts].[AccountCodes] has no member "61119"; did you', '    mean "6111"?'])
        self.assertIn('Accounts: "61119", not in the cube', window.after("Arguments").items)
        self.hands.click(window.after("Statement"))  # it is drawn by now
        self.person.photograph(WORK / "why.png")
        self.hands.do("mousemove", 400, 300, "click", 1)  # the sheet goes on taking clicks
        eventually("the sheet in front", self.controller.Frame.isActive)
        self.asks(formula(a0='"no such.cub"'))  # another window takes its place
        eventually("the other one", lambda: len(self.person.windows(WHY)) == 1
                   and "Reason: there is no file no such.cub" in self.person.sees(WHY).after("Explanation").items)
        other = self.office.new_document()
        self.addCleanup(other.close, True)
        other.CurrentController.Frame.ContainerWindow.setVisible(False)
        self.document.close(True)
        self.closed(WHY)
        self.document = other

    def test_of_several_calls_one_is_chosen_and_what_is_none_is_told(self):
        self.asks(f"{formula()}&{formula('QELNAME', a2=chr(34) + 'SuperSum1' + chr(34), a3=chr(34) + '999' + chr(34))[1:]}")
        question = self.person.sees(WHY)
        self.assertEqual(question.after("The formula has several calls. Which one?").items[1], "2. SuperSum1, 999")
        self.hands.key("Down", "Return")
        eventually("the reason", lambda: "DimMember: 999" in self.person.sees(WHY).after("Arguments").items)
        self.assertFalse(self.person.sees(WHY).button("Lines").is_enabled)
        self.hands.key("Escape")
        self.closed(WHY)
        self.asks("=1+1")
        self.person.answers("OrmFuncQel4", "Choose a cell whose formula calls QelF1 or QelName.")

    def test_a_value_is_compared_with_that_of_another_cube(self):
        definition = (SOURCE / "examples" / "ledger" / "ledger.json").read_text("utf-8")
        self.assertIn("ledger.csv", definition)
        folder = WORK / "march"
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(SOURCE / "examples" / "ledger", folder)
        head, *lines = (folder / "ledger.csv").read_text("utf-8").splitlines()
        (folder / "ledger.csv").write_text("\n".join([head, *lines[::2]]), "utf-8")
        run_qel("cube", "build", folder / "ledger.json", "--output", WORK / "march.cub")
        self.asks(formula())
        window = self.person.sees(WHY)
        window.button("Compare with…").press()
        self.hands.frame("OrmFuncQel4 - Open a file")
        self.hands.type(str(WORK / "march.cub"))
        self.hands.key("Return")
        rows = eventually("the comparison", lambda: window.after("Comparison").items)
        against = run_qel("eval", "--against", WORK / "march.cub", formula().replace(
            "B1", '"LedgerFNC"').replace("B2", '"6111"').replace("B3", '"31/03/2024"'), folder=WORK).split()
        self.assertEqual(rows, [str(WORK / "march.cub"), "Here {}, there {}, difference {}".format(*against)])
        self.person.photograph(WORK / "compare.png")
        self.hands.key("Escape")
        self.closed(WHY)

    def test_hebrew_windows_stand_from_right_to_left(self):
        shutil.copy(SOURCE / "examples" / "lang" / "Lang.rs", WORK / "suite" / "lang.rs")
        self.addCleanup((WORK / "suite" / "lang.rs").unlink)
        self.addCleanup(run_qel, "settings", "set", "QelUILanguage", "0")
        run_qel("settings", "set", "QelUILanguage", "1")
        self.report.Name = "דוח"
        self.asks(formula(a1='"LedgerHebrewFNC"', a9='"61119"'))
        window = self.person.sees("מדוע הערך הזה")
        self.assertIn("סיבה: חשבון", "".join(c for c in window.after("הסבר").items[0] if c not in "\u202a\u202b\u202c"))
        close, lines = (window.button(name).context.getLocationOnScreen().X for name in ("סגירה", "שורות"))
        self.assertLess(close, lines)
        self.hands.click(window.after("שאילתה"))
        self.person.photograph(WORK / "why_he.png")
        self.hands.key("Escape")
        self.closed("מדוע הערך הזה")
        self.hands.key("alt+q", "c")
        self.person.sees("בדיקת הגיליון")
        self.person.photograph(WORK / "check_he.png")
        self.hands.key("Escape")
        self.closed("בדיקת הגיליון")

    def test_a_sheet_is_checked_and_a_click_goes_to_the_cell(self):
        self.sheets.insertNewByName("More data", 1)
        more = self.sheets.getByIndex(1)
        run_qel("cube", "build", BOOKS / "books.json", "--output", WORK / "books.cub")
        self.document.NamedRanges.addNewByName("Cube", "$Report.$B$1", uno.createUnoStruct("com.sun.star.table.CellAddress"), 0)
        for cell, text in (("A7", formula()), ("A8", formula(a9='"61119"')), ("A9", formula(a0='"no such.cub"')),
                           ("A10", formula(a1="Cube")),
                           ("A11", formula(a9="LEFT(61119;5)")),  # which only the spreadsheet computes
                           ("A12", formula(a9="LEFT(61119;4)")),
                           ("A13", f"=1+{formula('QELNAME', a2=chr(34) + 'SuperSum1' + chr(34), a3=chr(34) + '999' + chr(34))[1:]}"),
                           ("A14", formula(a0='"books.cub"', a1='"FlatFNC"')), ("A15", "=1+1")):
            self.report.getCellRangeByName(cell).Formula = text
        more.getCellRangeByName("B2").Formula = formula(a1="$Report.B1", a9='"61118"', a17="$Report.B3")
        self.hands.key("alt+q", "c")
        window = self.person.sees(CHECK)
        missing = 'Accounts: [Accounts].[AccountCodes] has no member "61119"; did you mean "6111"?'
        rows = window.first(*[window.controls[1].getAccessibleRole()]).items
        self.assertEqual(rows[:3], [f"Report.A8: {missing}", "Report.A9: there is no file no such.cub", f"Report.A11: {missing}"])
        self.assertEqual([row.split(":")[0] for row in rows[3:4]], ["Report.A13"])
        self.assertEqual(rows[4:], ["Report.A14: the cube is of an outdated layout; build it again"])
        self.assertIn("Formulas: 8. To be looked at: 5.", window.texts())
        self.person.photograph(WORK / "check.png")
        self.hands.key("Down", "Down")
        eventually("the cell", lambda: self.document.CurrentSelection.AbsoluteName == "$Report.$A$9")
        window.named("All sheets", CHECK_BOX).press()
        window.button("Check again").press()
        eventually("the other sheet", lambda: "Formulas: 9. To be looked at: 6." in self.person.sees(CHECK).texts())
        self.hands.click(window.button("Close"))
        self.closed(CHECK)

    def test_many_formulas_are_checked_and_the_check_can_be_stopped(self):
        texts = [[formula(a1="$B$1", a9=f'"{6000 + row}"')] for row in range(20_000)]
        self.report.getCellRangeByName("D1:D20000").FormulaArray = texts
        self.hands.key("alt+q", "c")
        window = self.person.sees(CHECK)
        self.assertTrue(window.texts()[0].startswith("Formulas: 20000. To be looked at: 1"), window.texts()[0])
        self.hands.key("Escape")
        self.closed(CHECK)
        frame = self.controller.Frame.ContainerWindow
        self.hands.key("alt+q", "c")
        eventually("the check", lambda: not frame.isEnabled())
        self.hands.key("Escape")
        eventually("the end", frame.isEnabled)
        self.assertEqual(self.person.windows(CHECK), [])


if __name__ == "__main__":
    run_tests()
