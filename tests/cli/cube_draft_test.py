#!/usr/bin/env python3
"""Drafts definitions for ledgers, builds them as they are, and holds the figures against sums of the files."""
import csv
import decimal
import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

QEL = ""
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LEDGER = ROOT / "examples" / "ledger"


class Drafts(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))

    def run_qel(self, *arguments):
        done = subprocess.run([QEL, *map(str, arguments)], capture_output=True, text=True, timeout=120, cwd=self.path)
        return done.returncode, done.stdout, done.stderr

    def write(self, name, text, encoding="utf-8"):
        (self.path / name).write_bytes(text.encode(encoding))
        return name

    def draft(self, *files, options=()):
        """The definition, and the values that the commands print which the draft tells."""
        status, output, errors = self.run_qel("cube", "draft", *files, "-o", "draft.json", *options)
        self.assertEqual((status, errors), (0, ""))
        commands = [shlex.split(line) for line in output.splitlines()[1:]]
        self.assertEqual([command[:3] for command in commands[:2]], [["qel", "cube", "build"], ["qel", "cube", "check"]])
        self.value = None
        for command in commands:
            status, self.value, errors = self.run_qel(*command[1:])
            self.assertEqual(status, 0, errors)
        text = (self.path / "draft.json").read_text(encoding="utf-8")
        return json.loads(re.sub(r"(?m)(^|[\[{,])\s*//.*$", r"\1", text))

    def dimensions(self, definition):
        return {dimension["name"]: dimension for dimension in definition["cubes"][0]["dimensions"]}

    def amounts(self, rows):
        """Of an MDX set of the drafted cube, by the keys of its members."""
        answer = self.run_qel("mdx", "draft.cub", "LedgerFNC", f"SELECT [Measures].[Amount] ON 0, {rows} ON 1 FROM LedgerFNC",
                              "--json")
        self.assertEqual(answer[0], 0, answer[2])
        document = json.loads(answer[1])
        return {tuple(member.get("key") for member in row["members"]): decimal.Decimal(str(cell[0]))
                for row, cell in zip(document["axes"][1], document["cells"]) if cell[0] is not None}

    def test_the_example(self):
        files = sorted(LEDGER.glob("*.csv"), key=lambda file: file.name != "ledger.csv")
        dimensions = self.dimensions(self.draft(*files))
        sums = {}
        with open(LEDGER / "ledger.csv", encoding="utf-8") as ledger:
            lines = list(csv.DictReader(ledger))
        for line in lines:
            sums[line["account"],] = sums.get((line["account"],), 0) + decimal.Decimal(line["amount"])
        self.assertEqual(self.amounts("[Accounts].[AccountCodes].[AccountCode].Members"), sums)
        self.assertEqual(decimal.Decimal(self.value), sums[lines[0]["account"],])
        levels = lambda name, hierarchy=0: [[level.get(key) for key in ("name", "key", "memberName", "caption")]
                                            for level in dimensions[name]["hierarchies"][hierarchy]["levels"]]
        self.assertEqual(levels("SuperSumery"), [[f"SuperSum{i}", f"group{i}", None, f"group{i}_name"] for i in (1, 2, 3)])
        self.assertEqual(levels("OBS"), [["Level1", "level1", "level1_name", None], ["Level2", "level2", "level2_name", None],
                                         ["Level3", "code", "level3_name", None]])
        self.assertEqual(levels("ActX"), [["OBS name", "obs_name", None, None], ["OBS number", "obs_number", None, "name"]])
        self.assertEqual({name: dimension.get("table") for name, dimension in dimensions.items()}, {
            "Date": None, "ActX": "obs_numbers", "OBS": "obs", "Cost_Centers": "cost_centres", "Activities": "activities",
            "Accounts": "accounts", "SuperSumery": "accounts", "AccX": "accounts", "Firma": "firms", "Plbs": "plbs",
            "RH": "rh", "Opening_Balance": "opening_balance", "MoneySet": "money_sets", "MoneyType": None})

    def test_a_hebrew_export_whose_parents_are_not_unique(self):
        lines = [("צפון", "רכש", "10", "מכירות", "01/02/2024", "1.234,50"), ("צפון", "ייעוץ", "20", "שכר", "31/01/2024", "-0,50"),
                 ("דרום", "רכש", "10", "מכירות", "15/03/2024", "2.000,00"), ("דרום", "ייעוץ", "20", "שכר", "29/02/2024", "7,25"),
                 ("דרום", "רכש", "20", "שכר", "02/02/2024", "100,00")]
        header = "אזור;שירות;קוד חשבון;שם חשבון;תאריך ערך;סכום;הערה\r\n"
        self.write("ספר.csv", header + "".join(";".join(line) + ";\r\n" for line in lines), "windows-1255")
        definition = self.draft("ספר.csv")
        table = definition["tables"]["ספר"]
        self.assertEqual({key: table[key] for key in ("delimiter", "decimal", "thousands", "dates", "encoding")},
                         {"delimiter": ";", "decimal": ",", "thousands": ".", "dates": "dmy", "encoding": "windows-1255"})
        expected = {}
        for region, service, *_, amount in lines:
            value = decimal.Decimal(amount.replace(".", "").replace(",", "."))
            for path in ((region, None), (region, service)):
                expected[path] = expected.get(path, 0) + value
        found = {}
        for region in ("צפון", "דרום"):
            found.update({(region, None): self.amounts(f"{{[OBS].[{region}]}}")[region,]})
            found.update({(region, key): value for (key,), value in self.amounts(f"[OBS].[{region}].Children").items()})
        self.assertEqual(found, expected)
        self.assertEqual(self.value, "3234.5\n")

    def test_files_with_other_headers_are_one_ledger(self):
        self.write("q1.csv", "Body Name,Org Code,Object Code,Object Code Description,GL Date,Value,Memo\n"
                             "Town,7,4000,Sales,2024-01-05,1.50,x\nTown,7,5000,Rent,2024-03-31,2,x\n")
        self.write("q2.csv", "Body Name;Expense Code;Expense Code Description;GL Date;Document No.;Invoiced Value\n"
                             "Town;4000;Sales;05.04.2024;17;3,25\nTown;6000;Fees;30.06.2024;18;-4,00\n")
        definition = self.draft("q1.csv", "q2.csv")
        self.assertEqual(definition["cubes"][0]["facts"], ["q1", "q2"])
        self.assertEqual(definition["tables"]["q2"]["columns"], {
            "firm": "Body Name", "account": "Expense Code", "account_name": "Expense Code Description", "date": "GL Date",
            "amount": "Invoiced Value"})
        self.assertEqual(self.amounts("[Accounts].[AccountCodes].[AccountCode].Members"),
                         {("4000",): decimal.Decimal("4.75"), ("5000",): 2, ("6000",): -4})
        self.assertEqual(self.value, "4.75\n")

    def test_a_table_whose_codes_have_several_parents_counts_nothing_twice(self):
        self.write("ledger.csv", "date,account,amount\n2024-01-05,1,1.50\n2024-01-06,2,2\n2024-01-06,3,4\n")
        self.write("accounts.csv", "code,name,unit,group\n1,Pay,A,x\n1,Pay,B,x\n2,Fee,A,x\n3,Rent,A,y\n")
        super_summary = self.dimensions(self.draft("ledger.csv", "accounts.csv"))["SuperSumery"]
        self.assertEqual([level["key"] for level in super_summary["hierarchies"][0]["levels"]], ["group"])
        self.assertEqual(self.amounts("[AccX].[AccX].[AccX].Members"), {("x",): decimal.Decimal("3.5"), ("y",): 4})

    def test_debit_and_credit_and_the_groups_of_cost_centres(self):
        self.write("ledger.csv", "date;account;cost centre;credit;debit\n01.02.2024;4000;1;5,00;\n28.02.2024;5000;2;;7,25\n"
                                 "28.02.2024;5000;3;1,5;2\n")
        self.write("centres.csv", "code;name;region\n1;One;North\n2;Two;South\n3;Three;South\n")
        self.assertEqual(self.draft("ledger.csv", "centres.csv")["cubes"][0]["measures"][0],
                         {"name": "Amount", "column": "debit", "minus": "credit", "decimals": 2})
        self.assertEqual(self.amounts("[OBS].[Level1].Members"), {("North",): -5, ("South",): decimal.Decimal("7.75")})
        self.assertEqual(self.value, "-5\n")
        for credit, debit, value in (("", "7,25", "7.25\n"), ("7,25", "", "-7.25\n")):
            self.write("ledger.csv", f'תאריך;חשבון;סכום זכות;"סכום\nחובה";יתרה\n01.02.2024;4000;{credit};{debit};7,25\n')
            measures = self.draft("ledger.csv", options=["--force"])["cubes"][0]["measures"]
            self.assertEqual([measure["name"] for measure in measures], ["Amount", "Debit", "Credit", "Lines"])
            self.assertEqual((measures[0]["column"], measures[0]["minus"], self.value), ("סכום\nחובה", "סכום זכות", value))

    def test_how_files_are_written(self):
        cases = [
            ("plain", "date,account,amount\n2024-01-31,1,1.5\n", "utf-8", (",", ".", "", "iso", "auto")),
            ("thousands", 'date,account,amount\n2024-01-31,1,"1,234"\n2024-01-31,2,"12,000"\n', "utf-8",
             (",", ".", ",", "iso", "auto")),
            ("three decimals", "date,account,amount,quantity\n2024-01-31,1,1234.50,0.125\n", "utf-8",
             (",", ".", "", "iso", "auto")),
            ("continental", "date;account;amount\n31.12.2024;1;1.234,50\n", "utf-8", (";", ",", ".", "dmy", "auto")),
            ("decimals in few lines", "date;account;amount\n" + "31.12.2024;1;7\n" * 200 + "31.12.2024;1;7,5\n", "utf-8",
             (";", ",", "", "dmy", "auto")),
            ("American", "date\taccount\tamount\n12/31/2024\t1\t$5.00\n", "utf-8", ("\t", ".", "", "mdy", "auto")),
            ("plain days", "date|account|amount\n20241231|1|5.00\n", "utf-8", ("|", ".", "", "iso", "auto")),
            ("accents", "date,account,account name,amount\n2024-01-31,1,Café,1.5\n", "cp1252", (",", ".", "", "iso", "windows-1252")),
            ("UTF-16", "date;account;amount\n2024-01-31;1;1,5\n", "utf-16", (";", ",", "", "iso", "auto")),
        ]
        for what, text, encoding, expected in cases:
            with self.subTest(what):
                table = self.draft(self.write("ledger.csv", text, encoding), options=["--force"])["tables"]["ledger"]
                self.assertEqual(tuple(table[key] for key in ("delimiter", "decimal", "thousands", "dates", "encoding")), expected)

    def test_a_few_values_that_are_none_are_told(self):
        self.write("ledger.csv", "date,account,amount\n" + "2024-01-31,1,1.5\n" * 300 + "2024-01-31,1,TBD\n,1,2\nx\ny\n")
        status, output, errors = self.run_qel("cube", "draft", "ledger.csv", "-o", "d.json")
        faults = ['2 lines cannot be used, first line 304 (expected 3 fields, found 1)',
                  '1 value of "amount" cannot be used, line 302 ("TBD")', '1 line without "date" cannot be used, line 303']
        self.assertEqual((status, errors), (0, "".join(f"qel cube draft: ledger.csv: {fault}\n" for fault in faults)))
        self.assertIn("".join(f"    // {fault}: build with --skip-bad-lines, or mend the file\n" for fault in faults),
                      (self.path / "d.json").read_text())
        self.assertEqual(self.run_qel(*shlex.split(output.splitlines()[1])[1:])[2],
                         "qel cube build: 4 lines could not be used; they are in d-skipped.csv\n")

    def test_a_title_and_a_total_are_no_lines_of_a_ledger(self):
        text = ('דוח תנועות;;;;\r\n;;;;\r\nתאריך;חשבון;שם חשבון;חובה;זכות\r\n01.02.2024;10;בנק בע"מ;1.234,50 ש"ח;\r\n'
                '29.02.2024;20;"מס ""א""";;₪ 0,50\r\nסה"כ;;;1.234,50;0,50\r\n')
        self.write("t.csv", text, "windows-1255")
        status, output, errors = self.run_qel("cube", "draft", "t.csv", "-o", "draft.json")
        self.assertEqual((status, errors), (0, "qel cube draft: t.csv: 1 line that looks like a total cannot be used, line 6\n"))
        for command in output.splitlines()[1:]:
            status, value, _ = self.run_qel(*shlex.split(command)[1:])
            self.assertEqual(status, 0)
        self.assertEqual(value, "1234.5\n")
        self.assertEqual(self.amounts("[AccX].[AccX].[AccX].Members"), {("10",): decimal.Decimal("1234.5"), ("20",): decimal.Decimal("-0.5")})
        draft = (self.path / "draft.json").read_text(encoding="utf-8")
        (self.path / "draft.json").write_text(draft.replace(', "skipLines": 2', ""), encoding="utf-8")
        build = ("cube", "build", "draft.json", "-o", "draft.cub")
        self.assertIn('these seem to stand in line 3: set "skipLines": 2 in the table "t"', self.run_qel(*build)[2])
        (self.path / "draft.json").write_text(draft, encoding="utf-8")
        self.assertIn('t.csv, line 6, column תאריך: expected a date such as 31/12/2024, found "סה"כ"; the line looks like a total',
                      self.run_qel(*build)[2])

    def test_guesses_are_told(self):
        cases = [("date,amount\n2024-01-01,5\n", []),
                 ("date,code,amount\n" + "2024-01-01,a,5\n2024-01-01,b,1\n" * 3, ["this one is a guess"]),
                 ("date,account,account name,amount\n2024-01-01,1,a,5\n2024-01-01,1,b,5\n", ["several names"]),
                 ("date,account,amount\n05/01/2024,1,5\n", ["look whether"])]
        told = ["this one is a guess", "several names", "look whether"]
        for text, expected in cases:
            self.draft(self.write("ledger.csv", text), options=["--force"])
            draft = (self.path / "draft.json").read_text(encoding="utf-8")
            self.assertEqual([words for words in told if words in draft], expected, text)

    def test_refusals_write_nothing(self):
        self.write("ledger.csv", "date,account,amount\n2024-01-31,1,1.5\n")
        self.write("accounts.csv", "code,name\n1,Sales\n")
        self.write("book.csv", "PK\x03\x04")
        self.write("old.json", "mine")
        cases = [(("ledger.csv", "-o", "old.json"), 1, "old.json exists already; --force replaces it"),
                 (("ledger.csv", "-o", "ledger.csv", "--force"), 1, "ledger.csv is one of the files to read"),
                 (("accounts.csv", "-o", "d.json"), 1, "accounts.csv: 1 lines; columns (by its first line) \"code\", \"name\"; of dates: none; of "
                                                        "numbers: \"code\""),
                 (("none.csv", "-o", "d.json"), 1, "none.csv"), (("book.csv", "-o", "d.json"), 1, "save the sheet as CSV"),
                 (("ledger.csv", "-o", "none/d.json"), 1, "none/d.json"), (("ledger.csv",), 2, "--output")]
        before = {file.name: file.read_bytes() for file in self.path.iterdir()}
        for arguments, expected, part in cases:
            status, output, errors = self.run_qel("cube", "draft", *arguments)
            self.assertEqual((status, output), (expected, ""), arguments)
            self.assertIn(part, errors)
        self.assertEqual({file.name: file.read_bytes() for file in self.path.iterdir()}, before)


if __name__ == "__main__":
    QEL = sys.argv[1]
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
