"""The wizards over a real server in Calc, with real keys, also over one that is slow, silent or not known.

QEL_SERVER is the server's address, QEL_CUBE the file that it was filled from.
"""
import contextlib
import subprocess
import time

from calc_bench import CLASS, WORK, run_qel, shown
from keyboard_bench import KeyboardTest, eventually
from person import run_tests
from servers_test import CUBE, SERVER, SETTINGS, Proxy, known

from com.sun.star.accessibility.AccessibleRole import TEXT
from com.sun.star.accessibility.AccessibleStateType import FOCUSED

DATABASE_REPORT = "QelFunction17.mdb' already exists"
WAITING = "Waiting for this server."
BOX = "OrmFuncQel4"


class ServedWizards(KeyboardTest):
    def setUp(self):
        super().setUp()
        SETTINGS.unlink(missing_ok=True)
        (WORK / "suite" / "Cub.ini").unlink(missing_ok=True)
        self.proxy = Proxy(SERVER)
        self.addCleanup(self.proxy.close)
        self.addCleanup(self.person.leave)
        self.sheet = self.document.Sheets.getByIndex(0)
        self.cell = self.sheet.getCellRangeByName("C5")
        self.document.CurrentController.select(self.cell)
        self.wizards = self.office.service("OrmFunctionQel4.Wizards")

    def call(self, method, *arguments, title="Function QEL"):
        call = self.person.calls(getattr(self.wizards, method), *arguments)
        return call, self.person.sees(title)

    def takes(self, dialog, path, key="Return"):
        """Types a path into its field; Enter presses OK, which takes a new path before anything else."""
        field = dialog.first(TEXT).context
        eventually("the dialog", lambda: self.hands.frame(dialog.title))
        field.grabFocus()
        eventually("the field", lambda: field.getAccessibleStateSet().contains(FOCUSED))
        self.hands.key("ctrl+a")
        self.hands.type(path)
        eventually("the path", lambda: dialog.first(TEXT).text == path)
        if key:
            self.hands.key(key)

    def lists_cubes(self, dialog):
        """The list of cubes, once the other lists are filled, too."""
        last = dialog.named("Calculate") if dialog.title == "Function QEL" else dialog.after("Summary Group")
        eventually("the lists", lambda: last.is_enabled)
        return dialog.after("Cube Name").items

    def chooses(self, dialog, name, part):
        """In the office's main thread, as a click does."""
        return self.person.calls(dialog.after(name).choose, part)

    def box(self, text):
        """The box that says so, when it is there."""
        def find():
            with contextlib.suppress(Exception):  # one that is closing
                return next((box for box in self.person.windows(BOX) if any(text in shows for shows in box.texts())), None)
        return eventually(f"a box {text!r}", find)

    def answers(self, part):
        self.box(part).button("OK").press()
        eventually("the box's end", lambda: not self.person.windows(BOX))

    def cancels(self):
        """Esc in the box that waits."""
        self.box(WAITING)
        self.hands.frame(BOX)
        self.hands.key("Escape")
        self.answers(f"The request to {self.proxy.address} was cancelled.")

    def screen(self, left, top, width, height):
        shot = ["import", "-display", self.person.display, "-window", "root", "-crop", f"{width}x{height}+{left}+{top}", "rgb:-"]
        return subprocess.run(shot, check=True, capture_output=True).stdout

    def of_server(self, formula):
        return run_qel("--date-order", "mdy", "--allow-server", self.proxy.address, "eval", formula).strip()

    def settled(self):
        return eventually("the cell's value", lambda: shown(self.cell) if isinstance(shown(self.cell), (str, float)) else None)

    def assert_written(self, function, arguments, value=None):
        self.assertTrue(arguments.startswith(f'"{self.proxy.address}", "LedgerFNC",'), arguments)
        formula = f"={CLASS}{function}({arguments})"
        expected = self.of_server(formula)
        self.assertNotIn(expected, ("0", "-"))
        self.assertEqual(expected, run_qel("--date-order", "mdy", "eval", formula.replace(self.proxy.address, str(CUBE))).strip())
        as_shown = float if function == "QelF1" else str
        self.assertEqual(as_shown(value or expected), as_shown(expected))
        self.assertEqual(self.settled(), as_shown(expected))

    def test_a_servers_cube_is_chosen_calculated_written_and_edited(self):
        known(self.proxy)
        call, dialog = self.call("ShowFormGetVal", self.cell)
        self.takes(dialog, self.proxy.address, "Tab")
        self.assertIn("LedgerFNC", self.lists_cubes(dialog))
        for name, part in (("Cube Name", "LedgerFNC"), ("Account type", "SuperSum1"), ("Summary Group", "Revenue")):
            self.chooses(dialog, name, part).wait()
        dialog.button("Calculate").press()
        value = eventually("the value", lambda: dialog.after("Calculate").text)
        self.person.photograph(WORK / "served-wizard.png")
        dialog.button("OK").press()
        self.answers(DATABASE_REPORT)
        arguments = call.wait()
        self.assertIn('"SuperSum1", "4"', arguments)
        self.assert_written("QelF1", arguments, value)
        # The formula is edited, and the address is remembered, as a file's path is.
        before = self.cell.Formula
        for method, argument in (("trigger", "EditFormula"), ("ShowFormGetVal", self.cell)):
            with self.subTest(method):
                call = self.person.calls(getattr(self.wizards, method), argument)
                if method == "ShowFormGetVal":
                    self.answers(DATABASE_REPORT)
                dialog = self.person.sees("Function QEL")
                self.assertEqual(dialog.first(TEXT).text, self.proxy.address)
                self.assertIn("LedgerFNC", self.lists_cubes(dialog))
                dialog.button("OK").press()
                self.answers(DATABASE_REPORT)
                call.wait()
                self.assertEqual(self.cell.Formula, before)

    def test_the_name_wizard_names_a_servers_member(self):
        known(self.proxy)
        call, dialog = self.call("ShowFormQelName", self.cell, title="Name QEL")
        self.takes(dialog, self.proxy.address)
        self.lists_cubes(dialog)
        self.chooses(dialog, "Dimension type", "SuperSum1").wait()
        self.hands.frame("Name QEL")
        self.hands.key("alt+g")
        eventually("the groups", lambda: dialog.after("Summary Group").items)
        self.hands.frame("Name QEL")  # reading them may have taken a box
        self.hands.type("reve")
        eventually("what was typed", lambda: dialog.after("Summary Group").text == "reve")
        self.hands.key("Return")
        eventually("the member's name", lambda: dialog.after("Name").text)
        self.hands.key("Return")
        self.answers(DATABASE_REPORT)
        self.assert_written("QelName", call.wait())

    def test_the_office_lives_while_a_server_is_silent_and_cancel_ends_the_wait(self):
        known(self.proxy)
        call, dialog = self.call("ShowFormGetVal", self.cell)
        self.proxy.is_open.clear()
        self.takes(dialog, self.proxy.address)
        box = self.box(WAITING)
        self.assertEqual(box.after(WAITING).text, self.proxy.address.removesuffix("/xmla"))
        eventually("a request", lambda: self.proxy.requests)
        other = self.sheet.getCellRangeByName("A1")
        other.Formula = "=6*7"
        self.assertEqual(other.Value, 42, "the office goes on")
        self.person.photograph(WORK / "waiting.png")
        covered = self.hands.frame(BOX)
        showed = self.screen(*covered)
        self.hands.do("getwindowfocus", "windowmove", 0, 0)

        def repainted():
            shows = self.screen(*covered)
            return shows != showed and len({shows[i:i + 3] for i in range(0, len(shows), 3)}) > 2
        eventually("the wizard's picture", repainted)
        self.cancels()
        self.assertEqual(dialog.after("Cube Name").items, [])
        # A click that leaves the field asks once, though it would press OK, too.
        self.takes(dialog, self.proxy.address.upper().replace("XMLA", "xmla"), key=None)
        self.hands.click(dialog.button("OK"))
        self.box(WAITING).button("Cancel").press()
        self.answers("was cancelled")
        time.sleep(0.5)
        self.assertEqual(self.person.windows(BOX), [])
        # The same address is asked again when it is taken again.
        self.takes(dialog, self.proxy.address)
        self.cancels()
        self.proxy.is_open.set()
        self.hands.frame("Function QEL")
        self.hands.key("Return")
        self.assertIn("LedgerFNC", self.lists_cubes(dialog))
        # A silence in the middle of the lists is cancelled once.
        self.proxy.is_open.clear()
        requests = self.proxy.requests
        choice = self.chooses(dialog, "Account type", "SuperSum2")
        self.cancels()
        choice.wait()
        self.assertEqual(self.proxy.requests, requests + 1)
        self.proxy.is_open.set()
        dialog.button("Cancel").press()
        self.assertEqual(call.wait(), " ")
        self.assertEqual(self.cell.Formula, "")

    def test_a_wizard_of_another_document_asks_while_the_first_waits(self):
        call, dialog = self.call("ShowFormGetVal", self.cell)
        known(self.proxy).is_open.clear()
        self.takes(dialog, self.proxy.address)
        self.box(WAITING)
        other, document = known(Proxy(SERVER)), self.office.new_document()
        self.addCleanup(other.close)
        self.addCleanup(document.close, True)
        eventually("the other document in front", document.CurrentController.Frame.isActive)
        self.hands.key("alt+q", "n")
        self.box(DATABASE_REPORT).button("OK").press()
        second = self.person.sees("Name QEL")
        self.takes(second, other.address)
        self.assertIn("LedgerFNC", self.lists_cubes(second))
        self.assertEqual(self.proxy.requests, 1)
        self.proxy.is_open.set()
        eventually("the box's end", lambda: not self.person.windows(BOX))
        self.assertEqual(dialog.after("Cube Name").items, [], "the first goes on when the second is closed")
        second.button("Cancel").press()
        self.assertIn("LedgerFNC", self.lists_cubes(dialog))
        dialog.button("Cancel").press()
        self.assertEqual(call.wait(), " ")

    def test_a_silent_server_ends_with_the_time_limit(self):
        SETTINGS.parent.mkdir(parents=True, exist_ok=True)
        SETTINGS.write_text("[Limits]\nRequestSeconds=2\n", encoding="utf-8")
        known(self.proxy)
        call, dialog = self.call("ShowFormGetVal", self.cell)
        self.proxy.is_open.clear()
        self.takes(dialog, self.proxy.address)
        self.box(WAITING)
        self.answers(f"{self.proxy.address} did not answer in time")
        dialog.button("Cancel").press()
        self.assertEqual(call.wait(), " ")

    def test_nothing_is_sent_to_a_server_that_is_not_allowed(self):
        call, dialog = self.call("ShowFormGetVal", self.cell)
        self.takes(dialog, self.proxy.address)
        origin = self.proxy.address.removesuffix("/xmla")
        question = self.box("wants to ask this server")
        self.assertEqual(question.first(TEXT).text, origin)
        question.button("Never").press()
        self.answers(f"Nothing was sent to {origin}: you refused it")
        self.assertEqual(self.proxy.requests, 0)
        for reply in ("Once", "Always"):  # each in a new dialog, whose lists are empty until its own server has answered
            dialog.button("Cancel").press()
            self.assertEqual(call.wait(), " ")
            (WORK / "suite" / "QelFunction17.mdb").unlink(missing_ok=True)  # as before each test
            other = Proxy(SERVER)
            self.addCleanup(other.close)
            call, dialog = self.call("ShowFormGetVal", self.cell)
            self.takes(dialog, other.address)
            self.box("wants to ask this server").button(reply).press()
            self.assertIn("LedgerFNC", self.lists_cubes(dialog))
            self.assertEqual(other.address.removesuffix("/xmla") in SETTINGS.read_text(encoding="utf-8"), reply == "Always")
        dialog.button("Cancel").press()
        self.assertEqual(call.wait(), " ")


if __name__ == "__main__":
    run_tests()
