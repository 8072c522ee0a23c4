#!/usr/bin/env python3
"""Compares the lines that qel lines shows with those that the ledger's CSV files have: COUNT random formulas."""
import collections
import csv
import decimal
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

LEDGER = pathlib.Path(__file__).resolve().parents[2] / "examples" / "ledger"
BOOKS = pathlib.Path(__file__).resolve().parents[1] / "helpers" / "books"
QEL, COUNT, SEED = "", 150, 20261123
CUBES = {"LedgerFNC": "", "LedgerHebrewFNC": "_he"}


def run(*arguments):
    done = subprocess.run([QEL, *map(str, arguments)], capture_output=True, timeout=120)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def table(name):
    with open(LEDGER / f"{name}.csv", newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file))


class Selection:
    """A random formula around a line of the ledger, and the lines that it selects."""

    def __init__(self, tables, choose):
        self.cube = choose.choice(list(CUBES))
        self.tables, line = tables, choose.choice(tables["ledger"])
        self.tests = []
        number = choose.choice([row for row in tables["obs_numbers"] if row["code"] == line["obs_number"]])
        codes = {row["code"] for row in tables["obs_numbers"]
                 if (row["obs_name"], row["obs_number"]) == (number["obs_name"], number["obs_number"])}
        self.tests.append(lambda each: each["obs_number"] in codes)
        keys = {name: "All" for name in ("activity", "account", "money_set", "plbs", "rh", "firm", "opening_balance")}
        for name in choose.sample(list(keys), choose.randint(0, 3)):
            keys[name] = line[name]
            self.tests.append(lambda each, name=name: each[name] == line[name])
        level, member = self.obs(line, choose)
        group, group_member = "All", "All"
        if choose.random() < 0.4:
            depth = choose.randint(1, 3)
            accounts = {row["code"]: row[f"group{depth}"] for row in tables["accounts"]}
            group, group_member = f"SuperSum{depth}", accounts[line["account"]]
            self.tests.append(lambda each: accounts[each["account"]] == group_member)
        first, last = self.days(line, choose)
        self.measure = choose.choice(["Amount", "Amount", "Quantity"])
        quoted = [text.replace('"', "\u00a0") for text in (number["obs_name"], number["obs_number"], level, member,
                                                           keys["activity"])]
        self.formula = "=QelF1({},{},{})".format(
            '"FILE"', f'"{self.cube}"', ",".join([f'{{"{text}"}}' for text in quoted] + [f'"{text}"' for text in (
                group, group_member, keys["account"], self.measure, keys["money_set"], keys["plbs"], keys["rh"],
                keys["firm"], keys["opening_balance"], first, last)]))

    def obs(self, line, choose):
        """A level and its member; a name may stand under several parents, and then all of them count."""
        kind = choose.random()
        if kind < 0.4:
            return "All", "All"
        if kind < 0.6:
            self.tests.append(lambda each: each["cost_centre"] == line["cost_centre"])
            return "Cost_Centers", line["cost_centre"]
        level = choose.randint(1, 3)
        names = {row["code"]: row[f"level{level}_name{CUBES[self.cube]}"] for row in self.tables["obs"]}
        self.tests.append(lambda each: names[each["obs"]].lower() == names[line["obs"]].lower())
        return f"Level{level}", names[line["obs"]]

    def days(self, line, choose):
        """Dates as a formula has them: whole months, uneven days or one day, around the line's."""
        year, month, day = map(int, line["date"].split("-"))
        from_month = choose.randint(max(1, month - 3), month)
        from_day = choose.choice([1, 1, 15])
        start = f"{year}-{from_month:02}-{from_day:02}"
        end = f"{year}-{month:02}-{day:02}" if choose.random() < 0.5 else f"{year}-{month:02}-28"
        start = min(start, end)
        if self.cube == "LedgerFNC":
            months = [f"{year}-{number:02}" for number in range(1, 13) if start <= f"{year}-{number:02}-01" <= end]
            months = (months or [end[:7]]) if start <= "2025-12-01" else []  # the cube's last month begins then
            self.tests.append(lambda each: each["date"][:7] in months)
        else:
            self.tests.append(lambda each: start <= each["date"] <= end)
        return ["/".join(reversed(text.split("-"))) for text in (start, end)]

    def lines(self):
        """(period, number of the line, entry, amount), as they should come."""
        period = 7 if self.cube == "LedgerFNC" else 10
        found = [(each["date"][:period], str(number), each["entry"],
                  decimal.Decimal(each[self.measure.lower()] or 0))
                 for number, each in enumerate(self.tables["ledger"], 2) if all(test(each) for test in self.tests)]
        return sorted(found, key=lambda each: (each[0], int(each[1])))


class Lines(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-lines-")))
        text = (LEDGER / "ledger.json").read_text(encoding="utf-8").replace(
            '"file": "', f'"file": "{LEDGER}/')
        cls.cubes = {}
        for name, key in (("kept", '"details": "all", '), ("plain", "")):
            definition = cls.path / f"{name}.json"
            definition.write_text(text.replace('"measures": [', key + '"measures": ['), encoding="utf-8")
            cls.cubes[name] = cls.path / f"{name}.cub"
            status, _, messages = run("cube", "build", definition, "--output", cls.cubes[name])
            assert status == 0, messages

    def answer(self, cube, selection, columns):
        formula = selection.formula.replace("FILE", str(self.cubes[cube]))
        status, output, messages = run("lines", formula, "--json", "--limit", "0", "--columns", columns)
        self.assertEqual(status, 0, messages + formula)
        return json.loads(output, parse_float=decimal.Decimal), formula

    def test_random_formulas_have_the_lines_of_the_csv_files(self):
        names = ("ledger", "obs", "obs_numbers", "accounts")
        tables, choose = {name: table(name) for name in names}, random.Random(SEED)
        filled = collections.Counter()
        for _ in range(COUNT):
            selection = Selection(tables, choose)
            expected = selection.lines()
            total = sum((line[3] for line in expected), decimal.Decimal(0))
            kept, formula = self.answer("kept", selection, f"date,line,entry,{selection.measure}")
            rows = [(*row[:3], decimal.Decimal(row[3])) for row in kept["rows"]]
            self.assertEqual(rows, expected, formula)
            self.assertEqual((kept["total"], kept["complete"]), (len(expected), True), formula)
            for number in (kept["sum"], kept["value"]):
                self.assertEqual(decimal.Decimal(number), total, formula)
            plain, formula = self.answer("plain", selection, f"date,{selection.measure}")
            self.assertEqual(sorted((date, decimal.Decimal(amount)) for date, amount in plain["rows"]),
                             sorted((line[0], line[3]) for line in expected), formula)
            self.assertEqual([row[0] for row in plain["rows"]], [line[0] for line in expected], formula)
            filled[selection.cube] += bool(expected)
        print(f"{COUNT} formulas, with lines: {dict(filled)}")
        for cube in CUBES:
            self.assertGreater(filled[cube], COUNT / 4)

    def test_the_command_line(self):
        definition = (BOOKS / "books.json").read_text(encoding="utf-8").replace('"file": "', f'"file": "{BOOKS}/')
        key = '"details": [ { "column": "date", "caption": "Booked" }, "centre" ], "measures": ['
        cubes = {name: self.path / f"books-{name}.cub" for name in ("plain", "kept")}
        for name, text in (("plain", definition), ("kept", definition.replace('"measures": [', key, 1))):
            (self.path / f"{name}.json").write_text(text, encoding="utf-8")
            run("cube", "build", self.path / f"{name}.json", "--output", cubes[name])
        columns = "date,Amount,account,account name,Region,centre"
        formula = ('=QelF1("{}","BooksFNC",{{"OBS"}},{{"1"}},{{"All"}},{{"All"}},{{"All"}},"All","All","{}","{}","All",'
                   '"All","All","All","All","01/01/2024","31/03/2024")')
        plain, kept = (formula.format(cubes[name], "4000", "Amount") for name in ("plain", "kept"))
        cases = [
            ("a table", [plain, "--columns", "date, centre,[Amount]"], 0, "date     centre    Amount\n2024-01  100     -1000.10\n"
             "2024-01  100        -0.20\n2024-02  200      -500.00\n\n3 lines, sum -1500.3\n", ""),
            ("details", [kept, "--columns", "Booked,line,Amount", "--csv"], 0, "Booked,line,Amount\n2024-01-05,2,-1000.1\n"
             "2024-01-20,3,-0.2\n2024-02-10,4,-500\n", "3 lines, sum -1500.3"),
            ("a limit", [kept, "--limit", "1", "--columns", "file"], 0, "file          Amount\nledger.csv  -1000.10\n\n"
             "the first 1 of 3 lines; the value of all is -1500.3 (--limit 0 shows all)\n", ""),
            ("no column", [plain, "--columns", "Booked"], 1, "", "the lines have no such column; they have date"),
            ("no lines", [formula.format(cubes["plain"], "5000", "Lines").replace("2024", "2020"), "--csv"], 0, "",
             "0 lines, sum 0"),
            ("a count", [formula.format(cubes["plain"], "5000", "Lines"), "--columns", "account", "--csv"], 0,
             "account,Lines\n5000,1\n5000,1\n", "2 lines, sum 2"),
            ("a hidden error", [formula.format(cubes["plain"], "9999", "Amount")], 1, "", "has no member [9999]"),
            ("no formula", ["=QelF1("], 1, "", "Expected an argument"),
            ("a name", ['=QelName("a","b","c","d")'], 1, "", "only values have lines"),
        ]
        for what, arguments, status, output, message in cases:
            with self.subTest(what):
                found = run("lines", *arguments)
                self.assertEqual(found[:2], (status, output), found[2])
                self.assertIn(message, found[2])
        self.assertIn("  details of each line: date \"Booked\", centre\n", run("cube", "info", cubes["kept"])[1])
        self.assertEqual(run("cube", "verify", cubes["kept"])[0], 0)
        status, shown, _ = run("mdx", cubes["kept"], "BooksFNC", "DRILLTHROUGH MAXROWS 1 SELECT FROM BooksFNC", "--csv")
        self.assertEqual((status, shown.splitlines()[0].split(",")[-2:]), (0, ["Booked", "Amount"]))


if __name__ == "__main__":
    QEL = sys.argv.pop(1)
    COUNT = int(sys.argv.pop(1)) if len(sys.argv) > 1 and sys.argv[1].isdigit() else COUNT
    unittest.main()
