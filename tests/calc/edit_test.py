"""Edit formula in Calc: the wizard starts with the cell's arguments, and OK writes the formula again."""

from calc_bench import CLASS, WORK, calc_session, run_qel, shown
from keyboard_bench import KeyboardTest, eventually
from person import run_tests

ACCOUNTS = "Account Level (Q)"
# As Calc stores it. The cube's path starts at the document.
ARGUMENTS = ['"ledger.cub"', "B1", '{"OBS"}', '{"1"}', '{"All"}', '{"All"}', '{"All"}', '"SuperSum1"', 'B2&""', '"All"', "Measures",
             '"All"', '"All"', '"All"', '"All"', '"All"', "DATE(2024;1;1)", "B3"]


def formula(arguments, function="QELF1"):
    return f"={CLASS.upper()}{function}({';'.join(arguments)})"


class Edit(KeyboardTest):
    def setUp(self):
        super().setUp()
        self.document.storeAsURL(calc_session.url_of(WORK / "edited.ods"), calc_session.properties(Overwrite=True))
        self.sheet = self.document.Sheets.getByIndex(0)
        self.cell = self.sheet.getCellRangeByName("C5")
        self.document.CurrentController.select(self.cell)
        self.sheet.getCellRangeByName("B1").String = "LedgerFNC"
        self.sheet.getCellRangeByName("B2").Value = 4
        self.sheet.getCellRangeByName("B3").Formula = "2024-12-31"
        self.sheet.getCellRangeByName("B4").String = "Amount"
        self.document.NamedRanges.addNewByName("Measures", "$Sheet1.$B$4", self.cell.CellAddress, 0)

    def edits(self, text, title="Function QEL"):
        """The menu Qel, and the wizard that it opens on a cell with that formula."""
        self.cell.Formula = text
        self.assertEqual(self.cell.Formula, text)
        self.document.setModified(False)
        self.undo = self.document.UndoManager.getAllUndoActionTitles()
        self.hands.key("alt+q", "e")
        return self.person.sees(title)

    def answer(self, part):
        self.person.answers("OrmFuncQel4", part)

    def value(self, text):
        """What the cell shows, which is what qel says of the formula with these values in place of its references."""
        for reference, constant in (("B1", '"LedgerFNC"'), ('B2&""', '"4"'), ("B3", '"31/12/2024"'), ("Measures", '"Amount"'),
                                    ('"ledger.cub"', f'"{WORK / "ledger.cub"}"')):
            text = text.replace(reference, constant)
        return float(run_qel("eval", text).strip())

    def test_it_shows_values_and_keeps_references_that_are_not_changed(self):
        text = formula(ARGUMENTS)
        dialog = self.edits(text)
        shows = {name: dialog.after(name).text for name in ("From Date", "To Date")}
        self.assertEqual(shows, {"From Date": "01/01/2024", "To Date": "12/31/2024"})
        self.person.photograph(WORK / "edited.png")
        dialog.button("Calculate").press()
        value = eventually("the value", lambda: dialog.after("Calculate").text)
        self.assertAlmostEqual(float(value), shown(self.cell))
        self.hands.key("alt+u")
        eventually("a list of accounts", lambda: dialog.after(ACCOUNTS).is_enabled)
        self.hands.key("alt+q")
        self.hands.type("4115")
        dialog.button("OK").press()
        changed = [*ARGUMENTS[:9], '"4115"', *ARGUMENTS[10:]]
        eventually("the new formula", lambda: self.cell.Formula == formula(changed))
        self.assertEqual(shown(self.cell), self.value(formula(changed)))
        self.document.UndoManager.undo()
        self.assertEqual(self.cell.Formula, text)

    def test_the_only_call_of_a_longer_formula_is_replaced_alone(self):
        text = f"=IF(B2>0;{formula(ARGUMENTS)[1:]}/1000;\"(\")"
        dialog = self.edits(text)
        dialog.after("Measure").choose("Quantity")
        dialog.button("OK").press()
        changed = text.replace("Measures", '"Quantity"')
        eventually("the new formula", lambda: self.cell.Formula == changed)

    def test_the_name_wizard_edits_a_name(self):
        arguments = ['"ledger.cub"', "B1", '"SuperSum1"', "B2"]
        dialog = self.edits(formula(arguments, "QELNAME"), "Name QEL")
        self.assertIn("Revenue", dialog.after("Name").text)
        self.hands.key("alt+g")
        self.hands.type("expen")
        dialog.button("OK").press()
        self.answer("QelFunction17.mdb' already exists")
        eventually("the new formula", lambda: self.cell.Formula != formula(arguments, "QELNAME"))
        written = self.cell.Formula[:-1].split(";")
        self.assertEqual([written[1:3], written[3] != "B2"], [["B1", '"SuperSum1"'], True])
        self.assertIn("xpen", self.cell.String)

    def test_ranges_are_keys_of_lists_and_no_texts(self):
        members = self.sheet.getCellRangeByName("E1:E3")
        members.DataArray = (("North",), ("South & Negev",), ("",))
        arguments = [*ARGUMENTS[:4], '{"Level1"}', "E1:E3", *ARGUMENTS[6:9], "E1:E2", *ARGUMENTS[10:]]
        dialog = self.edits(formula(arguments))
        self.assertEqual([item.split(" - ")[0] for item in dialog.after("Picked OBS").items], ["North", "South & Negev"])
        dialog.button("OK").press()
        arguments[9] = '"All"'
        eventually("the new formula", lambda: self.cell.Formula == formula(arguments))

    def test_cancel_leaves_no_trace(self):
        text = formula(ARGUMENTS)
        dialog = self.edits(text)
        before = shown(self.cell)
        dialog.button("Cancel").press()
        eventually("the end", lambda: not self.person.windows("Function QEL"))
        self.assertEqual((self.cell.Formula, shown(self.cell)), (text, before))
        self.assertFalse(self.document.isModified())
        self.assertEqual(self.document.UndoManager.getAllUndoActionTitles(), self.undo)

    def test_what_the_cube_lacks_is_told_and_what_is_shown_is_written(self):
        text = formula([*ARGUMENTS[:9], '"no such"', *ARGUMENTS[10:]])
        self.cell.Formula = text
        self.hands.key("alt+q", "e")
        self.answer("This cube does not have these choices:\nAccount Level: no such")
        self.person.sees("Function QEL").button("OK").press()
        eventually("the new formula", lambda: self.cell.Formula == formula(ARGUMENTS))

    def test_a_cell_without_such_a_formula_is_told(self):
        self.cell.Formula = "=1+1"
        self.hands.key("alt+q", "e")
        self.answer("Choose a cell whose formula calls QelF1 or QelName once.")
        self.assertEqual(self.cell.Formula, "=1+1")
        self.cell.Formula = formula(ARGUMENTS)
        self.sheet.protect("")
        self.hands.key("alt+q", "e")
        self.answer("The cell is protected.")


if __name__ == "__main__":
    run_tests()
