"""The wizards in Calc's own windows, on a screen without a monitor: a person chooses, and the formula stands in the sheet."""
import os
import shutil
import unittest

from calc_bench import CLASS, PACKAGE, SOURCE, WORK, calc_session, run_qel, shown
from person import Person, eventually, run_tests, screen

from com.sun.star.accessibility.AccessibleRole import LABEL, TEXT

os.environ["XDG_CONFIG_HOME"] = str(WORK / "config")
TOOLBAR = "private:resource/toolbar/addon_OrmFunctionQel4.ToolBar"
DATABASE_REPORT = "QelFunction17.mdb' already exists"
MACRO = """
Function ShowWizard
    ShowWizard = CreateUnoService("OrmFunctionQel4.Wizards").ShowFormGetVal(ThisComponent.CurrentSelection)
End Function
"""


class Wizards(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.cube = WORK / "ledger.cub"
        shutil.rmtree(WORK / "suite", ignore_errors=True)
        (WORK / "suite").mkdir()
        run_qel("settings", "set", "MDBPath", WORK / "suite")
        run_qel("cube", "build", SOURCE / "examples" / "ledger" / "ledger.json", "--output", cls.cube)
        profile = calc_session.fresh_profile(WORK / "profile", PACKAGE)
        shutil.copy(SOURCE / "examples" / "lang" / "Lang.rs", WORK / "suite" / "lang.rs")
        display = cls.enterClassContext(screen())
        cls.office = cls.enterClassContext(calc_session.Office(profile, WORK, display))
        cls.person = Person(cls.office, display)

    def setUp(self):
        self.forget_database()
        self.document = self.office.new_document()
        self.document.CurrentController.Frame.activate()  # as a window manager does with a new window
        self.addCleanup(self.document.close, True)
        self.cell = self.document.Sheets.getByIndex(0).getCellRangeByName("C5")
        self.document.CurrentController.select(self.cell)
        self.wizards = self.office.service("OrmFunctionQel4.Wizards")

    def forget_database(self):
        """One that exists is reported when the dialog opens."""
        (WORK / "suite" / "QelFunction17.mdb").unlink(missing_ok=True)

    def open_cube(self, dialog, cubes="Cube Name", ok="OK"):
        """OK takes a path that was typed, before anything else; a remembered one is open already."""
        dialog.first(TEXT).type(str(self.cube))
        if not dialog.after(cubes).items:
            dialog.button(ok).press()
        eventually("the list of cubes", lambda: dialog.after(cubes).items)

    def assert_cell(self, call, function, *parts):
        """The cell's formula has the arguments that the call gives, and the value that qel gives it."""
        self.person.answers("OrmFuncQel4", DATABASE_REPORT)
        arguments = call.wait()
        for part in parts:
            self.assertIn(part, arguments)
        # A date in the arguments is written as the document writes dates.
        value = run_qel("--date-order", "mdy", "eval", f"={CLASS}{function}({arguments})").strip()
        self.assertNotIn(value, ("0", "-"))
        self.assertEqual(shown(self.cell), float(value) if function == "QelF1" else value)
        self.assertTrue(self.cell.Formula.startswith(f"={CLASS}{function}(".upper()), self.cell.Formula)

    def test_the_function_wizard_writes_its_formula_at_the_active_cell(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        call = self.person.calls(self.wizards.ShowFormGetVal, self.cell)
        dialog = self.person.sees("Function QEL")
        self.open_cube(dialog)
        self.assertEqual(dialog.after("Cube Name").items, ["LedgerFNC", "LedgerHebrewFNC"])
        dialog.after("Account type").choose("SuperSum1")
        eventually("the list of groups", lambda: dialog.after("Summary Group").items)
        dialog.after("Summary Group").choose("Revenue")
        dialog.button("Calculate").press()
        eventually("the value", lambda: dialog.after("Calculate").text)
        self.person.photograph(WORK / "function-wizard.png")
        dialog.button("OK").press()
        self.assert_cell(call, "QelF1", '"SuperSum1"', '"4"')

    def test_the_table_of_the_arguments_is_written_from_the_active_cell_on(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        call = self.person.calls(self.wizards.ShowFormGetVal, self.cell)
        dialog = self.person.sees("Function QEL")
        self.open_cube(dialog)
        dialog.after("Account type").choose("SuperSum1")
        eventually("the list of groups", lambda: dialog.after("Summary Group").items)
        dialog.after("Summary Group").choose("Revenue")
        dialog.button("Single cell function (J)").press()
        self.person.answers("OrmFuncQel4", DATABASE_REPORT)
        arguments = call.wait().translate(str.maketrans("", "", '"{}')).split(",")
        sheet = self.document.Sheets.getByIndex(0)
        rows = [[shown(sheet.getCellByPosition(column, row)) for column in (2, 3)] for row in range(4, 23)]
        self.assertEqual([label for label, _ in rows],
                         ["Cube", "Cube Name", "OBS", "OBS Number", "OBS Level", "OBS Member", "Activity", "Summary Group",
                          "Account Level", "Accounts", "Measure", "Money Set", "Plbs", "RH", "Firma", "Opening Balance",
                          "From Date", "To Date", ""])
        self.assertEqual([value.strip() for _, value in rows[:16]], [argument.strip() for argument in arguments[:16]])
        self.assertEqual([value for _, value in rows[7:9]], ["SuperSum1", "4"])
        dates = [sheet.getCellByPosition(3, row) for row in (20, 21)]
        self.assertEqual([cell.String for cell in dates], ["01/01/23", "12/01/25"], "dates, not their numbers")
        self.assertEqual([cell.Value for cell in dates], [44927, 45992])
        self.assertEqual(sheet.getCellByPosition(2, 3).Formula + sheet.getCellByPosition(4, 4).Formula, "")

    def test_the_name_wizard_writes_its_formula(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        call = self.person.calls(self.wizards.ShowFormQelName, None)
        dialog = self.person.sees("Name QEL")
        self.open_cube(dialog)
        dialog.after("Dimension type").choose("SuperSum1")
        dialog.after("Summary Group").type("reve")
        self.person.photograph(WORK / "name-wizard.png")
        dialog.button("OK").press()
        self.assert_cell(call, "QelName", '"SuperSum1"', '"4"')

    def test_a_faulty_file_is_told_and_cancel_changes_nothing(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        (WORK / "damaged.cub").write_bytes(b"no cube")
        call = self.person.calls(self.wizards.ShowFormGetVal, None)
        dialog = self.person.sees("Function QEL")
        dialog.first(TEXT).type(str(WORK / "damaged.cub"))
        dialog.button("OK").press()
        box = self.person.sees("OrmFuncQel4")
        self.assertIn("damaged.cub", " ".join(box.texts()))
        box.button("OK").press()
        dialog.button("Cancel").press()
        self.assertEqual(call.wait(), " ")
        self.assertEqual(self.cell.Formula, "")

    def test_the_menu_and_the_toolbar_show_the_wizards(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        frame = self.document.CurrentController.Frame
        toolbar = eventually("the toolbar", lambda: frame.LayoutManager.getElement(TOOLBAR))
        title = toolbar.getRealInterface().getAccessibleContext().getAccessibleName()
        self.assertEqual(title, "Qel")
        dispatcher = self.office.service("com.sun.star.frame.DispatchHelper")
        for command, caption in (("ShowFormGetVal", "Function QEL"), ("ShowFormQelName", "Name QEL")):
            self.forget_database()
            call = self.person.calls(dispatcher.executeDispatch, frame, f"service:OrmFunctionQel4.Wizards?{command}", "_self", 0, ())
            dialog = self.person.sees(caption)
            dialog.button("Cancel").press()
            call.wait()
            eventually("the dialog's end", lambda caption=caption: not self.person.windows(caption))

    def test_a_basic_macro_writes_the_formula(self):
        run_qel("settings", "set", "QelUILanguage", "0")
        basic = self.office.service("com.sun.star.script.ApplicationScriptLibraryContainer")
        if not basic.hasByName("QelTest"):
            basic.createLibrary("QelTest").insertByName("Macros", MACRO)
        script = self.office.service("com.sun.star.script.provider.MasterScriptProviderFactory").createScriptProvider(
            "").getScript("vnd.sun.star.script:QelTest.Macros.ShowWizard?language=Basic&location=application")
        call = self.person.calls(script.invoke, (), (), ())
        dialog = self.person.sees("Function QEL")
        self.open_cube(dialog)
        dialog.after("Account type").choose("SuperSum1")
        eventually("the list of groups", lambda: dialog.after("Summary Group").items)
        dialog.after("Summary Group").choose("Revenue")
        dialog.button("OK").press()
        self.person.answers("OrmFuncQel4", DATABASE_REPORT)
        arguments = call.wait()[0]
        self.assertIn('"SuperSum1"', arguments)
        self.assertTrue(self.cell.Formula.startswith("=ORMFUNCTIONQEL4.ORMQELFUNCTION.QELF1("), self.cell.Formula)

    def test_in_hebrew_the_dialog_is_mirrored(self):
        run_qel("settings", "set", "QelUILanguage", "1")
        call = self.person.calls(self.wizards.ShowFormGetVal, None)
        cancel = "ביטול"

        def hebrew():
            windows = [w for w in self.person.windows() if cancel in w.texts()]
            return windows[0] if windows else None
        dialog = eventually("a Hebrew dialog", hebrew)
        self.person.photograph(WORK / "function-wizard-hebrew.png")
        label = dialog.named("שם קוביה", LABEL).context.getLocationOnScreen()
        box = dialog.after("שם קוביה").context.getLocationOnScreen()
        self.assertGreater(label.X, box.X, "a label stands on the right of its box")
        self.open_cube(dialog, "שם קוביה", "אישור")
        firms = eventually("the list of firms", lambda: dialog.after("פירמה").items)
        self.assertEqual([firms[0][0], firms[1][0]], ["\u202b", "\u202a"], "each reads in the direction of its letters")
        dialog.after("עד תאריך").type("2/31/2024")
        dialog.button("חישוב").press()
        box = self.person.sees("OrmFuncQel4")
        self.person.photograph(WORK / "message-hebrew.png")
        message = box.first(LABEL).context
        places = [message.getCharacterBounds(message.getText().index(part)).X for part in ("זה", "תאריך", "2/31")]
        self.assertEqual(places, sorted(places, reverse=True), "its line reads from right to left")
        box.button("אישור").press()
        dialog.button(cancel).press()
        self.assertEqual(call.wait(), " ")


if __name__ == "__main__":
    run_tests()
