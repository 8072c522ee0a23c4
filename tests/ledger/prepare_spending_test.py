"""Published spending files, as odd as councils write them, through prepare.py."""

import csv
import lzma
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PREPARE = sys.argv.pop()
OLD = "Body Name,Portfolio,Organisation Code,Org Code Description,Object Code,Object Code Description,GL Date,Value,Category,Category Description\n"
NEW = "Body Name,Organisational Unit,Business Unit No.,Business Unit Description,Expense Code,Expense Code Description,GL Date,Document No.,Invoiced Value,Proclass Details Level 1\n"


class Prepare(unittest.TestCase):
    def setUp(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.published, self.output = folder / "in", folder / "out"
        self.published.mkdir()

    def run_prepare(self):
        return subprocess.run([sys.executable, PREPARE, self.published, self.output], capture_output=True,
                              encoding="utf-8", check=False)

    def table(self, name):
        with open(self.output / name, encoding="utf-8", newline="") as file:
            return list(csv.reader(file))[1:]

    def test_quarters_of_different_forms_become_one_ledger(self):
        (self.published / "a.csv.xz").write_bytes(lzma.compress(
            ("\ufeff" + OLD + 'COUNCIL,PLACE,100,PARKS,9120,OTHER,2016-01-03,"1,250.50",,TREES\n'
             "COUNCIL,PLACE,100,PARKS \\x96 EAST,9120,OTHER,2016-01-04,-3.00,,\n").encode("utf-8")))
        (self.published / "b.csv").write_bytes(
            (NEW + "COUNCIL,PEOPLE,200,CAFÉ,9130,FOOD,31/03/2017,77,(£12.25),\n"
             "COUNCIL,PLACE,100,PARKS \\x80\\x93 EAST,9120,OTHER,5-Jan-17,78,4.00-,TREES\n").encode("cp1252"))
        run = self.run_prepare()
        self.assertEqual(run.returncode, 0, run.stderr)
        trees, unclassified = "002", "001"
        self.assertEqual(self.table("ledger.csv"), [
            ["2016-01-03", "1", "9120", trees, "100", "1/PLACE/100", "1250.50"],
            ["2016-01-04", "1", "9120", unclassified, "100", "1/PLACE/100", "-3.00"],
            ["2017-03-31", "1", "9130", unclassified, "200", "1/PEOPLE/200", "-12.25"],
            ["2017-01-05", "1", "9120", trees, "100", "1/PLACE/100", "-4.00"]])
        self.assertEqual(self.table("cost_centres.csv"), [["100", "PARKS – EAST"], ["200", "CAFÉ"]])
        self.assertIn(["9120", "OTHER", "9", "Codes 9xxx", "91", "Codes 91xx", "912", "Codes 912x"], self.table("accounts.csv"))
        self.assertIn("1231.25 pounds", run.stdout)

    def test_what_cannot_be_understood_stops_with_its_place(self):
        for what, line, told in [
            ("a date", "COUNCIL,PLACE,100,PARKS,9120,OTHER,2016-13-03,1.00,,TREES\n", "line 3: '2016-13-03' is not a date"),
            ("an amount", "COUNCIL,PLACE,100,PARKS,9120,OTHER,2016-01-03,1.0O,,TREES\n", "'1.0O' is not an amount"),
            ("parts of a penny", "COUNCIL,PLACE,100,PARKS,9120,OTHER,2016-01-03,1.005,,TREES\n", "parts of a penny"),
            ("a short line", "COUNCIL,PLACE,100\n", "line 3"),
        ]:
            with self.subTest(what):
                good = "COUNCIL,PLACE,100,PARKS,9120,OTHER,2016-01-03,1.00,,TREES\n"
                (self.published / "a.csv").write_text(OLD + good + line, encoding="utf-8")
                run = self.run_prepare()
                self.assertEqual(run.returncode, 1)
                self.assertIn(told, run.stderr)
                self.assertIn("a.csv", run.stderr)
        (self.published / "a.csv").write_text("Body Name,Portfolio\n", encoding="utf-8")
        self.assertIn("no column called Organisation Code or Business Unit No.", self.run_prepare().stderr)


if __name__ == "__main__":
    unittest.main()
