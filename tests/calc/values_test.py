"""Values of formulas over the example ledger: the same as `qel eval` gives, alone, in bulk and on Calc's threads."""
import csv
import random
import time
import unittest

from calc_bench import SOURCE, CalcTest, calc_session, in_calc, name_formula, run_qel, shown, value_formula

LEDGER = SOURCE / "examples" / "ledger"
FORMULAS = 500
CELLS_OF_A_LARGE_SHEET = 20_000


def read(name):
    with open(LEDGER / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


def quoted(text):
    return '"' + text.replace('"', '""') + '"'


def key(text):
    """A list argument; a double quote in it is written as a no-break space."""
    return "{" + quoted(text.replace('"', "\u00a0")) + "}"


class RandomFormulas:
    """Formulas of which most find something: each asks for the members of a line that is in the books."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.lines = read("ledger.csv")
        self.units = {unit["code"]: unit for unit in read("obs.csv")}
        self.groups = {account["code"]: account for account in read("accounts.csv")}
        self.structures = [row for row in read("obs_numbers.csv")]

    def some(self, text, chance=0.4):
        return quoted(text if self.random.random() < chance else "All")

    def unit(self, line):
        """An OBS level and a member of it."""
        unit, kind = self.units[line["obs"]], self.random.choice(["All", "Cost_Centers", "Level1", "Level2", "Level3"])
        member = {"All": "All", "Cost_Centers": line["cost_centre"]}.get(kind) or unit[kind.lower() + "_name"]
        return {"level": key(kind), "member": key(member)}

    def accounts(self, line):
        level = self.random.choice([0, 0, 1, 2, 3])
        if level == 0:
            return {"group": '"All"', "account": self.some(line["account"], 0.6)}
        return {"group": f'"SuperSum{level}"', "group_member": quoted(self.groups[line["account"]][f"group{level}"])}

    def dates(self, line):
        year, month, day = map(int, line["date"].split("-"))
        return self.random.choice([
            {"first": f"DATE({year},1,1)", "last": f"DATE({year},12,31)"},
            {"first": f"DATE({year},{month},1)", "last": f"DATE({year},{month},{day})"},
            {"first": "", "last": f"DATE({year},{month},{day})"},
            {"first": f'"{year}-{month:02}-01"', "last": f'"{year}-{month:02}-28"'},
            {"first": "DATE(2023,1,1)", "last": f"DATE({year + 4},1,1)"},
        ])

    def value(self):
        line = self.random.choice(self.lines)
        structure = self.random.choice([s for s in self.structures if s["code"] == line["obs_number"]])
        return value_formula(
            "ledger.cub", self.random.choice(["LedgerFNC", "LedgerFNC", "LedgerHebrewFNC"]),
            name=key(structure["obs_name"]), number=key(structure["obs_number"]),
            activity=key(line["activity"] if self.random.random() < 0.3 else "All"),
            measure=quoted(self.random.choice(["Amount", "Amount", "Quantity", "Lines"])),
            money=self.some(line["money_set"]), plbs=self.some(line["plbs"]), rh=self.some(line["rh"]),
            firm=self.some(line["firm"]), opening=self.some(line["opening_balance"], 0.2),
            **self.unit(line), **self.accounts(line), **self.dates(line))

    def name(self):
        level = self.random.choice([1, 2, 3])
        code = self.random.choice(list(self.groups.values()))[f"group{level}"]
        return name_formula(f'"SuperSum{level}"', quoted(code), "ledger.cub",
                            self.random.choice(["LedgerFNC", "LedgerHebrewFNC"]))

    def several(self, count):
        return [self.name() if i % 10 == 9 else self.value() for i in range(count)]


class Values(CalcTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run_qel("cube", "build", LEDGER / "ledger.json", "--output", cls.folder / "ledger.cub")

    def set_column(self, formulas):
        column = self.sheet.getCellRangeByPosition(0, 0, 0, len(formulas) - 1)
        column.setFormulaArray(tuple((in_calc(formula),) for formula in formulas))
        return column

    def assert_equal_to_qel(self, formulas, values):
        expected = run_qel("eval", text="\n".join(formulas) + "\n", folder=self.folder).splitlines()
        self.assertEqual(len(expected), len(formulas))
        for formula, value, text in zip(formulas, values, expected):
            self.assertEqual(value, text if isinstance(value, str) else float(text), formula)
        return expected

    def test_as_the_command_line_evaluates_them(self):
        formulas = RandomFormulas(2024).several(FORMULAS)
        self.set_column(formulas)
        values = [shown(self.sheet.getCellByPosition(0, row)) for row in range(FORMULAS)]
        expected = self.assert_equal_to_qel(formulas, values)
        filled = sum(value not in ("0", "-") for value in expected)
        self.assertGreater(filled, FORMULAS * 0.6, "too few formulas find something")

    def test_a_large_sheet_recalculated_on_calcs_threads(self):
        settings = self.office.service("com.sun.star.configuration.ConfigurationProvider").createInstanceWithArguments(
            "com.sun.star.configuration.ConfigurationAccess",
            calc_session.properties(nodepath="/org.openoffice.Office.Calc/Formula/Calculation"))
        self.assertTrue(settings.getByName("UseThreadedCalculationForFormulaGroups"))
        # Calc groups formulas of one shape that stand below each other; keys from cells give them that shape.
        formula = value_formula("ledger.cub", "LedgerFNC", account="B#", plbs='"P"', first="C#",
                                last="EDATE(C#,1)-1")
        accounts = sorted({line["account"] for line in read("ledger.csv")})
        rows = [(accounts[i % len(accounts)], 44927 + 31 * (i % 24)) for i in range(CELLS_OF_A_LARGE_SHEET)]
        self.document.enableAutomaticCalculation(False)
        self.sheet.getCellRangeByPosition(1, 0, 2, len(rows) - 1).setDataArray(tuple(rows))
        column = self.set_column([formula.replace("#", str(i + 1)) for i in range(len(rows))])
        self.document.calculateAll()
        started = time.monotonic()
        self.document.calculateAll()
        seconds = time.monotonic() - started
        print(f"hard recalculation of {len(rows):,} formulas: {seconds:.2f} s, {seconds / len(rows) * 1e6:.1f} us each")

        # `qel eval` knows no EDATE: the sheet's own dates go into the formulas.
        self.sheet.getCellRangeByPosition(3, 0, 3, len(rows) - 1).setFormulaArray(
            tuple((f"=EDATE(C{i + 1};1)-1",) for i in range(len(rows))))
        self.document.calculateAll()
        ends = self.sheet.getCellRangeByPosition(3, 0, 3, len(rows) - 1).getDataArray()
        values = [row[0] for row in column.getDataArray()]
        distinct = len(accounts) * 24
        self.assertGreater(distinct, 1000)
        checked = range(0, len(rows), 7)
        self.assert_equal_to_qel(
            [value_formula("ledger.cub", "LedgerFNC", account=rows[i][0], plbs='"P"', first=rows[i][1],
                           last=int(ends[i][0])) for i in checked], [values[i] for i in checked])


if __name__ == "__main__":
    unittest.main()
