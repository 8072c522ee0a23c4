"""What the wizard shows in Calc is what Calculate computes, what the formula says, and what cell and qel show.

For random sequences of keys, clicks and choices. QEL_AGREEMENT_SEQUENCES is their number, QEL_AGREEMENT_SEED repeats
those of an earlier run.
"""
import os
import random
import re
import shutil

from calc_bench import CLASS, WORK, run_qel, shown
from keyboard_bench import KeyboardTest, eventually
from person import Control, run_tests

from com.sun.star.accessibility.AccessibleRole import COMBO_BOX, LIST, TEXT
from com.sun.star.accessibility.AccessibleStateType import FOCUSED

SEQUENCES = int(os.environ.get("QEL_AGREEMENT_SEQUENCES", "5"))
SEED = int(os.environ.get("QEL_AGREEMENT_SEED", random.randrange(1_000_000)))
TITLE, BOX, REPORT = "Function QEL", "OrmFuncQel4", "QelFunction17.mdb' already exists"
ACCOUNTS, ACTIVITIES = "Account Level (Q)", "Activity (Z)"
LISTS = ("OBS", "OBS Number (X)", "OBS Level", "OBS Level", "Which level", "Which level", "OBS Data", "OBS Data", "Account type",
         "Summary Group", "Measure", "Money Set", "Firma", "Plbs", "RH", "Opening Balance", "Cube Name")
DATES = ("01/01/2024", "06/30/2024", "12/31/2024", "01/01/1999", "soon")
TYPED = {ACCOUNTS: ("4115", "6111", "sal", "61", "no such row"), ACTIVITIES: ("1", "2", "a", "no such row")}
# Of a formula: texts and lists of texts.
ARGUMENT = re.compile(r'\{(?:"(?:[^"]|"")*"|[^"{}])*\}|"(?:[^"]|"")*"')
TEXT_IN_LIST = re.compile(r'"((?:[^"]|"")*)"')


def keys_of(arguments):
    """The texts of each argument, as the dialog has them."""
    return [[text.replace('""', '"').replace("\u00a0", '"').replace("]]", "]") for text in TEXT_IN_LIST.findall(argument)]
            for argument in ARGUMENT.findall(arguments)]


def says(shows, key):
    """"41" is shown as "41 - Sales"; a level has a name of its own."""
    return shows == key or shows.startswith(key + " - ") or (shows, key) == ("Cost centres", "Cost_Centers")


class Agreement(KeyboardTest):
    def setUp(self):
        super().setUp()
        self.last = None
        self.files = [WORK / "ledger.cub", WORK / "other.cub"]
        shutil.copy(*self.files)
        self.cell = self.document.Sheets.getByIndex(0).getCellRangeByName("C5")
        self.document.CurrentController.select(self.cell)
        self.wizards = self.office.service("OrmFunctionQel4.Wizards")

    def rest(self):
        """Waits until the office has done what it does later, and what that does later."""
        for _ in range(3):
            self.person.calls(lambda: None).wait()

    def answer(self):
        """Presses OK in the boxes that are there; their texts."""
        texts = []
        self.rest()
        while boxes := self.person.windows(BOX):
            texts.append(" ".join(boxes[0].texts()))
            self.person.calls(boxes[0].button("OK").press).wait()
            self.rest()
        return texts

    def does(self, *words):
        """Acts in the office's main thread, as keys and clicks do; the texts of the boxes that came."""
        self.acts.append(" ".join(str(word) for word in words[1:]) or words[0].__name__)
        call, texts = self.person.calls(words[0], *words[2:]), []
        while not call.ended.wait(0.01):
            texts += self.answer()
        call.wait()
        return texts + self.answer()

    def types(self, control, name, text, *keys):
        self.acts.append(f"type {text} into {name} {' '.join(keys)}")
        edit = Control(control.child(TEXT)) if control.context.getAccessibleRole() == COMBO_BOX else control
        for _ in range(3):  # a first click closes a list that is open
            self.hands.frame(TITLE)
            self.hands.click(control)
            if boxes := self.answer():
                return boxes  # the field that was left is wrong, and takes the focus back
            if edit.has(FOCUSED):
                break
        self.assertTrue(edit.has(FOCUSED), name)
        self.hands.do("key", "--delay", 10, "ctrl+a")
        self.hands.do("type", "--delay", 10, text)
        eventually(f"{text} in {name}", lambda: self.person.windows(BOX) or control.text == text)
        for key in keys:
            self.hands.do("key", key)
        return self.answer()

    def chosen(self, name):
        """The row of a list that is marked."""
        rows = self.dialog.after(name).child(LIST)
        return rows.getSelectedAccessibleChild(0).getAccessibleContext().getAccessibleName() if rows.getSelectedAccessibleChildCount() else ""

    def act(self):
        choice = self.random.randrange(len(LISTS) + 10)
        if choice < len(LISTS):
            control = self.dialog.after(LISTS[choice])
            if control.is_enabled and control.items:
                self.does(control.choose, f"choose {LISTS[choice]}", self.random.choice(control.items))
        elif choice < len(LISTS) + 3:
            self.press("Remove OBS" if choice == len(LISTS) else "Select OBS")
        elif choice < len(LISTS) + 7:
            box, rows = (("Account list (U)", ACCOUNTS), ("Activity List", ACTIVITIES))[choice % 2]
            self.press(next(name for name in (box, box.removesuffix(" (U)")) if name in self.dialog.texts()))
            if self.dialog.after(rows).is_enabled:
                self.types(self.dialog.after(rows), rows, self.random.choice(TYPED[rows]),
                           *self.random.choice(((), ("Tab",), ("Return",), ("Escape",), ("Tab", "Tab"))))
        elif choice < len(LISTS) + 9:
            field = self.random.choice(("From Date", "To Date"))
            if self.dialog.after(field).is_enabled:
                self.types(self.dialog.after(field), field, self.random.choice(DATES), *self.random.choice(((), ("Tab",))))
        else:
            self.take_file()

    def press(self, name):
        if self.dialog.named(name).is_enabled:
            self.does(self.dialog.named(name).press, f"press {name}")

    def take_file(self):
        file = str(self.random.choice(self.files))
        self.types(self.dialog.first(TEXT), "the path", file, "Tab")
        eventually("the lists", lambda: self.dialog.button("Calculate").is_enabled)

    def calculated(self):
        """The value that Calculate shows, or nothing and the boxes that say why not."""
        boxes = self.does(self.dialog.button("Calculate").press, "calculate")
        return self.dialog.after("Calculate").text, boxes

    def read_off(self):
        """What the dialog shows, as the arguments of its formula."""
        def searched(box, rows):
            ticked = next(self.dialog.named(name) for name in self.dialog.texts() if name.removesuffix(" (U)") == box)
            return self.dialog.after(rows).text if ticked.is_checked else "All"
        kind, group = self.chosen("OBS Level"), self.chosen("Account type")
        members = self.dialog.after("Picked OBS").items or ["" if kind == "All" else self.chosen("OBS Data")]
        single = [self.dialog.first(TEXT).text, self.chosen("Cube Name"), self.chosen("OBS"), self.chosen("OBS Number (X)"),
                  self.chosen("Which level") if kind == "OBS levels" else kind, None, searched("Activity List", ACTIVITIES), group,
                  "All" if group == "All" else self.chosen("Summary Group"), searched("Account list", ACCOUNTS), self.chosen("Measure"),
                  *(self.chosen(name) for name in ("Money Set", "Plbs", "RH", "Firma", "Opening Balance")),
                  *(self.dialog.after(name).text for name in ("From Date", "To Date"))]
        return [members if text is None else [text] for text in single]

    def opened(self):
        """Opens the dialog, in every second sequence with the last choices."""
        database = WORK / "suite" / "QelFunction17.mdb"
        if self.random.randrange(2):
            database.unlink(missing_ok=True)
            self.last = None
        keeps = database.exists()
        self.cell.Formula = ""
        call = self.person.calls(self.wizards.ShowFormGetVal, self.cell)
        if keeps:
            self.person.answers(BOX, REPORT)
        self.dialog = self.person.sees(TITLE)
        self.hands.frame(TITLE)
        if not self.dialog.after("Cube Name").items:
            self.take_file()
        elif self.last:
            self.assertEqual(self.read_off(), self.last, "the last choices come back")
        return call

    def cancels(self, call):
        self.does(self.dialog.button("Cancel").press, "cancel")
        self.assertEqual(call.wait(), " ")
        self.assertEqual(self.cell.Formula, "")

    def run_sequence(self):
        """Opens the dialog, acts, and ends it. The value of the formula that it wrote, if it wrote one."""
        call = self.opened()
        for _ in range(self.random.randrange(12)):
            self.act()
        value, refused = self.calculated()
        if refused:
            self.assertEqual(self.does(self.dialog.button("OK").press, "ok"), refused, "OK and Calculate refuse alike")
        if refused or self.random.randrange(8) == 0:
            return self.cancels(call)
        shows = self.read_off()
        self.assertEqual(self.does(self.dialog.button("OK").press, "ok")[0].count(REPORT), 1)
        arguments = call.wait()
        self.last = shows
        keys = keys_of(arguments)
        self.assertEqual(len(keys), len(shows), arguments)
        for i, (given, seen) in enumerate(zip(keys, shows)):
            if len(given) == len(seen) + 1 and not given[-1]:
                given = given[:-1]  # it only keeps the quotes of the key before it
            self.assertEqual(len(given), len(seen), f"argument {i} of {arguments}")
            for key, text in zip(given, seen):
                self.assertTrue(says(text, key), f"argument {i} is {key!r}, the dialog shows {text!r}: {arguments}")
        said = float(run_qel("--date-order", "mdy", "eval", f"={CLASS}QelF1({arguments})"))
        self.assertEqual(shown(self.cell), said, arguments)
        self.assertEqual(0.0 if value.startswith("#") else float(value), said, arguments)
        return said

    def test_the_wizard_shows_computes_and_writes_the_same(self):
        print(f"seed {SEED}, {SEQUENCES} sequences", flush=True)
        self.random, values = random.Random(SEED), []
        while len(values) < SEQUENCES or (not any(values) and len(values) < 10 * SEQUENCES):
            self.acts = []
            try:
                values.append(self.run_sequence())
            except Exception as failure:
                self.person.photograph(WORK / "disagreement.png")
                raise AssertionError(f"QEL_AGREEMENT_SEED={SEED}, sequence {len(values)}: {', '.join(self.acts)}: {failure}") from failure
        self.assertTrue(any(values), "no formula has an amount")
        print(f"{sum(value is not None for value in values)} formulas, {sum(bool(value) for value in values)} with an amount", flush=True)


if __name__ == "__main__":
    run_tests()
