"""The wizards in Calc with real keys and clicks, on a screen with a window manager."""
import shutil
import time

from calc_bench import WORK, run_qel
from keyboard_bench import KeyboardTest, eventually
from person import run_tests

from com.sun.star.accessibility.AccessibleRole import TEXT

ACCOUNTS, ACTIVITIES = "Account Level (Q)", "Activity (Z)"


class Keys(KeyboardTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run_qel("settings", "set", "FileCube", WORK / "ledger.cub")

    def setUp(self):
        super().setUp()
        self.call = self.person.calls(self.office.service("OrmFunctionQel4.Wizards").ShowFormGetVal, None)
        self.dialog = self.person.sees("Function QEL")
        self.hands.frame("Function QEL")
        eventually("the remembered cube", lambda: self.dialog.after("Cube Name").items)

    def cancel(self):
        self.dialog.button("Cancel").press()
        self.assertEqual(self.call.wait(), " ")

    def search_accounts(self, typed):
        self.hands.key("alt+u")
        accounts = self.dialog.after(ACCOUNTS)
        eventually("a list of accounts", lambda: accounts.is_enabled)
        self.hands.key("alt+q")
        self.hands.type(typed)
        eventually("what was typed", lambda: typed in accounts.text)
        return accounts

    def test_enter_takes_the_first_account_and_leaves_the_dialog_open(self):
        accounts = self.search_accounts("furn")
        self.person.photograph(WORK / "typed.png")
        self.hands.key("Return")
        eventually("an account", lambda: " - " in accounts.text)
        self.assertFalse(self.person.windows("OrmFuncQel4"))
        self.assertEqual(self.document.Sheets.getByIndex(0).getCellByPosition(0, 0).Formula, "")
        shown = accounts.text
        self.hands.key("Return")
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb' already exists")
        self.assertIn(f'"{shown.split(" - ")[0]}"', self.call.wait())

    def test_escape_takes_back_what_was_typed_before_it_cancels(self):
        accounts = self.search_accounts("furn")
        self.hands.key("Escape")
        eventually("the empty list", lambda: accounts.text == "")
        self.assertFalse(self.call.ended.is_set())
        self.hands.key("Escape")
        self.assertEqual(self.call.wait(), " ")

    def test_typing_opens_the_matches_and_the_arrow_offers_all_rows_again(self):
        accounts = self.search_accounts("t")
        eventually("the open list", lambda: accounts.is_open)
        many = len(accounts.items)
        self.hands.type("ext")
        eventually("fewer rows", lambda: len(accounts.items) < many and accounts.is_open)
        matches = accounts.items
        self.assertTrue(all("ext" in item for item in matches), matches)
        self.person.photograph(WORK / "matches.png")
        self.hands.key("Down", "Down")
        eventually("the second match", lambda: accounts.text == matches[1])
        self.assertTrue(accounts.is_open)
        self.hands.key("Escape")
        eventually("what was there", lambda: accounts.text == "" and not accounts.is_open)
        self.hands.type("text")
        eventually("the open list", lambda: accounts.is_open)
        self.hands.key("Down", "Return")
        eventually("the first match", lambda: accounts.text == matches[0] and not accounts.is_open)
        self.hands.key("alt+Down")
        eventually("all rows", lambda: accounts.is_open and len(accounts.items) > many)
        self.hands.key("Escape")
        eventually("the closed list", lambda: not accounts.is_open)
        self.assertEqual(accounts.text, matches[0])
        self.hands.key("ctrl+a")
        self.hands.type("text")
        eventually("the open list", lambda: accounts.is_open)
        self.hands.click(accounts, below=2.1)
        eventually("a row that was clicked", lambda: accounts.text in matches[1:] and len(accounts.items) > many)
        self.cancel()

    def test_a_click_beside_the_list_closes_it_and_a_click_on_ok_takes_the_first_match(self):
        accounts = self.search_accounts("text")
        eventually("the open list", lambda: accounts.is_open)
        first = accounts.items[0].split(" - ")[0]
        self.hands.click(self.dialog.button("OK"))
        eventually("the closed list", lambda: not accounts.is_open)
        time.sleep(1)
        self.assertEqual((accounts.is_open, accounts.text), (False, "text"))
        self.hands.do("mousemove", 5, 5)  # as a hand does before the next click
        self.hands.click(self.dialog.button("OK"))
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb' already exists")
        self.assertIn(f'"{first}"', self.call.wait())

    def test_a_click_that_leaves_a_new_path_only_shows_what_the_file_has(self):
        path, value, ok = self.dialog.first(TEXT), self.dialog.after("Calculate"), self.dialog.button("OK")
        for name, click in (("short", ("click", 1)), ("long", ("mousedown", 1, "sleep", 1, "mouseup", 1))):
            other = WORK / f"{name}.cub"
            shutil.copy(WORK / "ledger.cub", other)
            self.dialog.button("Calculate").press()
            eventually("the value", lambda: value.text)
            self.hands.click(path)
            self.hands.key("ctrl+a")
            self.hands.type(str(other))
            place, size = ok.context.getLocationOnScreen(), ok.context.getSize()
            self.hands.do("mousemove", place.X + size.Width // 2, place.Y + size.Height // 2, "sleep", 0.2, *click)
            eventually("the lists of the new file", lambda: not value.text and self.dialog.button("Calculate").is_enabled)
            time.sleep(1)
            self.assertFalse(self.call.ended.is_set() or self.person.windows("OrmFuncQel4"), f"a {name} click")
        self.hands.do("click", 1)
        self.person.answers("OrmFuncQel4", "QelFunction17.mdb' already exists")
        self.assertIn(f'"{other}"', self.call.wait())

    def test_a_wrong_date_is_told_once(self):
        self.hands.click(self.dialog.after("To Date"))
        self.hands.key("ctrl+a")
        self.hands.type("2/31/2024")
        self.hands.click(self.dialog.button("OK"))
        self.person.answers("OrmFuncQel4", "This is not a date: 2/31/2024")
        time.sleep(1)
        self.assertFalse(self.person.windows("OrmFuncQel4"))
        self.cancel()

    def test_it_opens_on_its_document_and_names_its_controls(self):
        around = self.document.CurrentController.Frame.ContainerWindow.AccessibleContext
        place, size = around.getLocationOnScreen(), around.getSize()
        left, top, width, height = self.hands.frame("Function QEL")
        self.assertLess(abs(place.X + size.Width // 2 - left - width // 2), 40)
        self.assertLess(abs(place.Y + size.Height // 2 - top - height // 2), 40)
        named = self.dialog.texts()
        for name in (ACCOUNTS, ACTIVITIES, "Picked OBS", "Which level", "OBS Number (X)", "From Date"):
            self.assertEqual(named.count(name), 2, f"{name}: the label and its control")
        for name in ("Cube file", "Value"):
            self.assertIn(name, named)
        self.cancel()


if __name__ == "__main__":
    run_tests()
