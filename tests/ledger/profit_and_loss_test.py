"""Compares every number of the printed profit and loss statement with sums over the ledger's lines."""

import csv
import re
import subprocess
import sys
import tempfile
import unittest
from collections import defaultdict
from decimal import ROUND_HALF_EVEN, Decimal
from pathlib import Path

QEL, LEDGER_FOLDER = sys.argv.pop(), Path(sys.argv.pop())
NAMES = {"English": "name", "Hebrew": "name_he"}


def read(name):
    with open(LEDGER_FOLDER / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


class ProfitAndLoss(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.cube = str(cls.folder / "ledger.cub")
        subprocess.run([QEL, "cube", "build", str(LEDGER_FOLDER / "ledger.json"), "--output", cls.cube],
                       check=True, stdout=subprocess.DEVNULL)
        cls.accounts = {account["code"]: account for account in read("accounts.csv")}
        cls.lines = [line for line in read("ledger.csv") if line["account"] >= "4"]

    def run_script(self, cube, *options):
        return subprocess.run([sys.executable, LEDGER_FOLDER / "profit_and_loss.py", cube, "--qel", QEL, *options],
                              capture_output=True, encoding="utf-8", check=False)

    def statement(self, *options):
        """The printed rows as (name, numbers in the order of the columns on the page)."""
        run = self.run_script(self.cube, *options)
        self.assertEqual(run.returncode, 0, run.stderr)
        rows = []
        for line in run.stdout.splitlines()[1:]:
            if not line.startswith("---"):
                numbers = re.findall(r"(?<![\w-])-?\d[\d,]*", line)
                rows.append((re.sub(r"-?\d[\d,]*", "", line).strip(), [int(n.replace(",", "")) for n in numbers]))
        return rows

    def expected(self, year, length, firm=None, business_lines="WSEG"):
        """Credits less debits by the code of a summary group ("" all) in every period, then in the year."""
        sums = defaultdict(lambda: [Decimal(0)] * (12 // length + 1))
        for line in self.lines:
            if line["date"][:4] != str(year) or line["obs_number"] not in business_lines:
                continue
            if firm and line["firm"] != firm:
                continue
            period = (int(line["date"][5:7]) - 1) // length
            for group in ("", line["account"][:1], line["account"][:2]):
                sums[group][period] -= Decimal(line["amount"])
                sums[group][-1] -= Decimal(line["amount"])
        return {group: [int(n.quantize(Decimal(1), ROUND_HALF_EVEN)) for n in row] for group, row in sums.items()}

    def check(self, rows, sums, language):
        suffix = NAMES[language]
        named = {}
        for account in self.accounts.values():
            named[account["group2"]] = account["group2_" + suffix]
            named[account["group1"]] = account["group1_" + suffix]
        shown = [(name, numbers if language == "English" else numbers[::-1]) for name, numbers in rows]
        empty = [0] * len(shown[0][1])
        for group in ["41", "42", "43", "44", "4", "51", "52", "5", "61", "62", "63", "64", "6", "71", "72", "7", "81", "8"]:
            self.assertIn((named[group], sums.get(group, empty)), shown, group)
        self.assertEqual(shown[-1][1], sums[""], "net profit")

    def test_quarters(self):
        self.check(self.statement("--year", "2025"), self.expected(2025, 3), "English")

    def test_months_of_one_firm(self):
        self.check(self.statement("--year", "2023", "--by", "months", "--firm", "20"), self.expected(2023, 1, "20"), "English")

    def test_hebrew_names_of_one_business_line(self):
        rows = self.statement("--year", "2024", "--hebrew", "--obs-number", "4")
        self.check(rows, self.expected(2024, 3, business_lines="E"), "Hebrew")

    def test_a_year_outside_the_cube_is_told(self):
        run = self.run_script(self.cube, "--year", "2031")
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("2031", run.stderr)

    def test_a_cube_that_cannot_be_read_is_told(self):
        damaged = self.folder / "damaged.cub"
        damaged.write_bytes(Path(self.cube).read_bytes()[:5000])
        for cube in (self.folder / "missing.cub", damaged):
            run = self.run_script(cube)
            self.assertEqual((run.returncode, run.stdout), (1, ""))
            self.assertIn(cube.name, run.stderr)
            self.assertNotIn("No profit and loss", run.stderr)

    def test_a_reader_that_stops_early_is_no_error(self):
        with subprocess.Popen([sys.executable, str(LEDGER_FOLDER / "profit_and_loss.py"), self.cube, "--formulas", "--by",
                               "months"], stdout=subprocess.PIPE, stderr=subprocess.PIPE) as script:
            script.stdout.close()
            self.assertEqual(script.stderr.read(), b"")


if __name__ == "__main__":
    unittest.main()
