"""The example workbook: its script makes it, its formulas agree with the ledger's lines, and it can be printed."""
import csv
import subprocess
import sys
import unittest
from collections import defaultdict
from decimal import Decimal

from calc_bench import CLASS, PACKAGE, SOURCE, CalcTest, run_qel

import openpyxl

LEDGER = SOURCE / "examples" / "ledger"
sys.path.insert(0, str(LEDGER))

import make_report  # noqa: E402: its folder is known only now

YEAR, YEAR_BEFORE = "2025", "2024"
JANUARY, TOTAL, BEFORE = 2, 14, 15  # columns, from 0
ROWS = range(6, 45)


def contents(book):
    return {(sheet.title, cell.coordinate): (cell.value, cell.number_format, cell.font.b)
            for sheet in book for row in sheet.iter_rows() for cell in row}


def read(name):
    with open(LEDGER / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


class Report(CalcTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run_qel("cube", "build", LEDGER / "ledger.json", "--output", cls.folder / "ledger.cub")
        cls.books = [cls.folder / name for name in ("report.xlsx", "report.ods")]
        for book in cls.books:
            book.write_bytes((LEDGER / book.name).read_bytes())
        cls.add_up_the_lines()

    @classmethod
    def add_up_the_lines(cls):
        """Credits less debits of profit and loss: of a group in a month or year, and of a store's revenue in a month."""
        units = {unit["code"]: unit["level3_name"] for unit in read("obs.csv") if unit["level2_name"] == "Stores"}
        cls.groups, cls.stores = defaultdict(Decimal), defaultdict(Decimal)
        for line in read("ledger.csv"):
            year, month, amount = line["date"][:4], int(line["date"][5:7]), -Decimal(line["amount"])
            for group in (line["account"][:1], line["account"][:2]):
                cls.groups[group, year] += amount
                cls.groups[group, year, month] += amount
            if line["account"].startswith("4") and line["obs"] in units and year == YEAR:
                cls.stores[units[line["obs"]], month] += amount

    def test_the_kept_workbook_is_what_the_script_makes(self):
        kept = openpyxl.load_workbook(LEDGER / "report.xlsx")
        made = make_report.make_report()
        self.assertEqual(contents(kept), contents(made))
        formulas = [value for value, _, _ in contents(kept).values() if CLASS in str(value)]
        self.assertGreater(len(formulas), 400)
        self.assertEqual([sheet.sheet_view.rightToLeft for sheet in kept], [False, False, True])

    def test_every_figure_agrees_with_the_ledger(self):
        for book in self.books:
            document = self.open(book)
            document.calculateAll()
            english, stores, hebrew = document.Sheets
            for sheet, language in ((english, "name"), (hebrew, "name_he")):
                with self.subTest(book=book.name, sheet=sheet.Name):
                    self.check_statement(sheet, language)
            with self.subTest(book=book.name, sheet=stores.Name):
                self.check_stores(stores)

    def amounts(self, sheet, row, columns):
        return [round(Decimal(sheet.getCellByPosition(column, row).Value), 2) for column in columns]

    def check_statement(self, sheet, language):
        names = {account[f"group{level}"]: account[f"group{level}_{language}"]
                 for account in read("accounts.csv") for level in (1, 2)}
        seen = set()
        for row in ROWS:
            group = sheet.getCellByPosition(0, row).String
            if not group:
                continue
            seen.add(group)
            self.assertEqual(sheet.getCellByPosition(1, row).String, names[group])
            expected = [self.groups[group, YEAR, month] for month in range(1, 13)]
            expected += [self.groups[group, YEAR], self.groups[group, YEAR_BEFORE]]
            self.assertEqual(self.amounts(sheet, row, range(JANUARY, BEFORE + 1)), expected, group)
        self.assertEqual(len(seen), 18)
        whole = sum(self.groups[group, YEAR] for group in "45678")
        figures = [self.amounts(sheet, row, [TOTAL])[0] for row in ROWS]
        self.assertIn(whole, figures, "net profit")

    def check_stores(self, sheet):
        seen = 0
        for row in ROWS:
            name = sheet.getCellByPosition(1, row).String
            if (name, 1) in self.stores:
                seen += 1
                self.assertEqual(self.amounts(sheet, row, range(JANUARY, TOTAL)),
                                 [self.stores[name, month] for month in range(1, 13)], name)
        self.assertEqual(seen, len({name for name, _ in self.stores}))

    def test_charts_are_as_wide_as_their_tables(self):
        for book in self.books:
            for sheet in self.open(book).Sheets:
                area = sheet.getPrintAreas()[0]
                table = sheet.getCellRangeByPosition(area.StartColumn, area.StartRow, area.EndColumn, area.EndRow)
                chart = sheet.DrawPage.getByIndex(0)
                near, far = sorted(abs(x) for x in (chart.Position.X, chart.Position.X + chart.Size.Width))
                with self.subTest(book=book.name, sheet=sheet.Name):
                    self.assertAlmostEqual(near, 0, delta=100) # a millimetre
                    self.assertAlmostEqual(far, table.Size.Width, delta=100)

    def print_report(self, workbook):
        return subprocess.run([sys.executable, "-B", SOURCE / "scripts" / "print_report.py", workbook, "--package", PACKAGE,
                               "--output", self.folder / "printed"], capture_output=True, encoding="utf-8", timeout=600,
                              check=False)

    def test_printing(self):
        done = self.print_report(self.books[0])
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        net = round(sum(self.groups[group, YEAR] for group in "45678") / 1000)
        for text in ("Net profit", "רווח נקי", f"{net:,}", "Be'er Sheva", 'Eilat, "no VAT"'):
            self.assertIn(text, done.stdout)
        self.assertTrue((self.folder / "printed" / "report.pdf").read_bytes().startswith(b"%PDF"))
        for number in (1, 2, 3):
            self.assertGreater((self.folder / "printed" / f"report-{number}.png").stat().st_size, 50_000)

    def test_printing_tells_cells_with_errors_and_missing_files(self):
        book = openpyxl.load_workbook(self.books[0])
        book.active["B50"] = "=1/0"
        broken = self.folder / "broken.xlsx"
        book.save(broken)
        done = self.print_report(broken)
        self.assertEqual(done.returncode, 1)
        self.assertIn("$B$50", done.stderr)
        done = self.print_report(self.folder / "missing.xlsx")
        self.assertEqual(done.returncode, 1)
        self.assertIn("missing.xlsx", done.stderr)


if __name__ == "__main__":
    unittest.main()
