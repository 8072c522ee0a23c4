#!/usr/bin/env python3
"""From a ledger to its figures with the qel program: warnings, totals, reasons for zeros."""
import decimal
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

QEL = ""
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BOOKS = ROOT / "tests" / "helpers" / "books"


def run(*arguments, env=None):
    done = subprocess.run([QEL, *map(str, arguments)], capture_output=True, timeout=120, env={**os.environ, **(env or {})})
    return done.returncode, done.stdout.decode(), done.stderr.decode()


class InFolder(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        self.cube = self.path / "c.cub"

    def write(self, name, text):
        (self.path / name).write_bytes(text if isinstance(text, bytes) else text.encode())

    def build(self, *options, dimensions, csv=None, facts="ledger", **tables):
        """Of the tables ledger.csv and the others, which are given as keys of theirs."""
        tables = {"ledger": {}, **tables}
        self.write("c.json", json.dumps({
            "csv": csv or {}, "tables": {name: {"file": f"{name}.csv", **keys} for name, keys in tables.items()},
            "cubes": [{"name": "C", "facts": facts, "dimensions": dimensions,
                       "measures": [{"name": "Amount", "column": "amount"}, {"name": "Lines", "aggregate": "count"}]}]}))
        return run("cube", "build", self.path / "c.json", "-o", self.cube, *options)


class Warnings(InFolder):
    LEVELS = [{"name": "L1", "key": "unit"}, {"name": "L2", "key": "service"}]
    OWN_TABLE = {"name": "O", "column": "service", "table": "ledger", "key": "service",
                 "hierarchies": [{"name": "H", "levels": LEVELS}]}
    GROUPS = {**OWN_TABLE, "hierarchies": [{"name": "H", "levels": LEVELS[:1]}]}
    DATES = {"name": "Date", "column": "date", "calendar": {"periods": "months"}}
    ACTX = {"name": "ActX", "column": "unit", "table": "ledger", "key": "unit",
            "hierarchies": [{"name": "OBSx", "levels": [{"name": "N", "key": "unit"}, {"name": "M", "key": "service"}]}]}

    def test_each_is_told_accepted_and_refused(self):
        cases = [
            ("severalParents", "unit,service,amount\nA,s,1.50\nB,s,2\nB,t,4\n", self.GROUPS, {},
             r'\[O\]\.\[H\]: one value has several parents of the column service, first "s" under "A" and "B"; '
             r"Amount 3\.50 counts in each"),
            ("equalNames", "unit,service,amount\nA,s,1\nB,s,2\n", {**self.OWN_TABLE, "column": ["unit", "service"],
                                                                  "key": ["unit", "service"]}, {},
             r'\[L2\]: several members have one name: "s" under "A" and "B"\. A formula .*"accept": "equalNames" in the dimension'),
            ("equalNames", "unit,amount\nacme,1\nACME,2\n", {"name": "O", "column": "unit"}, {},
             '"acme" and "ACME"|"ACME" and "acme"'),
            ("dateOrder", "date,amount\n03/04/2024,1\n01/12/2024,2\n", self.DATES, {"dates": "dmy"}, "03/04/2024"),
        ]
        for kind, ledger, dimension, csv, pattern in cases:
            self.write("ledger.csv", ledger)
            status, _, errors = self.build(dimensions=[dimension], csv=csv)
            self.assertEqual(status, 0, errors)
            self.assertRegex(errors, rf"warning \({kind}\): .*{pattern}")
            self.assertIn("qel cube build: 1 warning;", errors)
            self.cube.unlink()
            status, _, errors = self.build("--strict", dimensions=[dimension], csv=csv)
            self.assertEqual((status, list(self.path.glob("c.cub*"))), (1, []), kind)
            self.assertRegex(errors, pattern)
            status, _, errors = self.build("--strict", dimensions=[{**dimension, "accept": [kind]}], csv=csv)
            self.assertEqual((status, errors), (0, ""), kind)

    def test_valid_input_gives_no_warning(self):
        for ledger, dimension, csv in (
                ("unit,service,amount\nA,s,1\nA,t,2\nB,u,4\n", self.OWN_TABLE, {}),
                ("date,amount\n03/04/2024,1\n13/04/2024,2\n", self.DATES, {"dates": "dmy"}),
                ("date,amount\n01/04/2024,1\n01/05/2024,2\n", self.DATES, {"dates": "dmy"})):
            self.write("ledger.csv", ledger)
            self.assertEqual(self.build(dimensions=[dimension], csv=csv)[::2], (0, ""), ledger)

    def test_dates_that_formulas_cannot_read(self):
        self.write("ledger.csv", "date,unit,service,amount\n2024-01-15,A,s,1\n2024-02-16,A,s,2\n")
        days = {"name": "Date", "column": "date", "calendar": {"periods": "days", "quarters": False}}
        status, _, errors = self.build(dimensions=[days, self.ACTX])
        self.assertEqual((status, self.cube.exists()), (1, False))
        self.assertIn('"quarters": true', errors)
        self.assertEqual(self.build(dimensions=[days])[0], 0, "no formula reads it")
        self.write("months.csv", "code,y,q,m\n2024-01-15,2024,Q1,Jan\n2024-02-16,2024,Q1,2\n")
        months = {"name": "Date", "column": "date", "table": "months", "key": "code", "hierarchies": [
            {"name": "Date", "levels": [{"name": "Y", "key": "y"}, {"name": "Q", "key": "q"}, {"name": "M", "key": "m"}]}]}
        status, _, errors = self.build(dimensions=[months, self.ACTX], months={})
        self.assertEqual(status, 0, errors)
        self.assertRegex(errors, r"warning \(dateMembers\): .*1 of the 2 members of \[M\] cannot be read as months, first .*Jan")


class Totals(InFolder):
    def test_they_are_those_of_the_files(self):
        files = {"ledger": ["1.10", "2.25", "x", "-0.05"], "more": ["1000000000.01", "7"]}
        for name, amounts in files.items():
            self.write(f"{name}.csv", "firm,amount\n" + "".join(f"a,{amount}\n" for amount in amounts))
        status, output, errors = self.build("--skip-bad-lines", self.path / "bad.csv", more={}, facts=["ledger", "more"],
                                            dimensions=[{"name": "Firm", "column": "firm"}])
        self.assertEqual(status, 0, errors)
        good = {name: [decimal.Decimal(amount) for amount in amounts if amount != "x"] for name, amounts in files.items()}
        rows = [[f"{name}.csv", len(files[name]), len(good[name]), len(files[name]) - len(good[name]), sum(good[name]),
                 len(good[name])] for name in files]
        rows.append(["total", *(sum(column) for column in list(zip(*rows))[1:])])
        told = run("cube", "info", self.cube, "--totals")[1]
        self.assertEqual([line.split() for line in told.splitlines()[2:]],
                         [[str(cell if not isinstance(cell, decimal.Decimal) else cell.quantize(decimal.Decimal("0.01")))
                           for cell in row] for row in rows])
        self.assertIn(told, output)


class SeveralColumns(InFolder):
    def test_a_value_counts_under_its_own_parent(self):
        self.write("ledger.csv", "unit,service,amount\nA,s,1\nB,s,2\nB,t,4\nB,,8\n,,16\n")
        levels = [{"name": "L1", "key": "unit"}, {"name": "L2", "key": "service"}]
        own = {"name": "O", "column": ["unit", "service"], "accept": "equalNames", "hierarchies": [{"name": "O", "levels": levels}]}
        for dimension in (own, {**own, "table": "ledger", "key": ["unit", "service"]},
                          {"name": "O", "column": ["unit", "service"], "accept": "equalNames"}):
            status, _, errors = self.build(dimensions=[dimension])
            self.assertEqual((status, errors), (0, ""), dimension)
            cells = run("mdx", self.cube, "C", "SELECT {[O].[All].[A].[s],[O].[All].[B].[s],[O].[All].[B].[t],[O].[All].[B],"
                                               "[O].[All]} ON 0 FROM C", "--json")[1]
            self.assertEqual(json.loads(cells)["cells"], [[1, 2, 4, 14, 31]])
        self.write("other.csv", "u,s\nA,s\n")
        status, _, errors = self.build(dimensions=[{**own, "table": "other", "key": ["u", "s"], "hierarchies": [
            {"name": "O", "levels": [{"name": "L1", "key": "u"}, {"name": "L2", "key": "s"}]}]}], other={})
        self.assertEqual(status, 1)
        self.assertIn('line 3, column unit+service: "B / s" is not in the table of dimension O', errors)


class Reasons(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        cls.cube = cls.path / "books.cub"
        cls.built = run("cube", "build", BOOKS / "books.json", "-o", cls.cube)

    def formula(self, arguments=18, **changes):
        """The books' whole amount, but for the changes; without the last arguments if there are fewer."""
        values = {"cube": f'"{self.cube}"', "name": '"BooksFNC"', "obs": '{"OBS"}', "number": '{"1"}', "level": '{"All"}',
                  "member": '{"All"}', "activity": '{"All"}', "group": '"All"', "seif": '"All"', "account": '"All"',
                  "measure": '"Amount"', "set": '""', "plbs": '""', "rh": '""', "firm": '""', "opening": '""',
                  "start": '"01/01/2024"', "end": '"31/03/2024"', **changes}
        return f"=QelF1({','.join(list(values.values())[:arguments])})"

    def test_explain_says_why_a_value_is_0(self):
        cases = [
            ("behind the last period's first day", dict(start="", end='"15/04/2024"'), r'set To_Date or From_Date to "01/04/2024"'),
            ("From_Date behind it", dict(start='"02/04/2024"', end='"30/04/2024"'), r'set it to "01/04/2024"'),
            ("reversed", dict(start='"02/04/2024"', end='"01/04/2024"'), "From_Date, 2 April 2024, is later than To_Date, 1 April"),
            ("seventeen arguments", dict(arguments=17), "has 17 of 18 arguments"),
            ("a plain text", dict(obs='"OBS"'), r'ObsName: no key; write it in braces'),
            ("no such number", dict(number='{"9"}'), r'ObsNum: "OBS" of \[ActX\]\.\[OBSx\] has no member "9"; .*"1"'),
            ("no such level", dict(level='{"Levle2"}', member='{"Main"}'), r'ObsLevel: .*no level "Levle2"; did you mean "Level2"'),
            ("no such member", dict(level='{"Level2"}', member='{"Mian"}'), r'ObsMember: .* "Mian"; did you mean "Main"\?'),
            ("a parent", dict(level='{"Level2"}', member='{"north"}'), r'\[Level1\] has one; set ObsLevel to "Level1"'),
            ("no such account", dict(account='"4001"'), r'Accounts: .* "4001"; did you mean "4000"'),
            ("no such group", dict(group='"SuperSum1"', seif='"3"'), r'Seif_level: .*has no member "3"'),
            ("no such dimension", dict(plbs='"P"'), r"Plbs: the cube has no dimension \[Plbs\]"),
            ("no such measure", dict(measure='"Amont"'), r'Measure: .*did you mean "Amount"'),
            ("nothing together", dict(account='"5100"', firm='"20"', activity='{"S"}'), r'without ActivityList "S" it is 0\.3'),
        ]
        for what, changes, reason in cases:
            status, output, errors = run("explain", self.formula(**changes))
            self.assertEqual((status, errors), (0, ""), what)
            self.assertRegex(output, rf"value: +0\n(.*\n)*why: .*{reason}", what)
        notes = [
            (dict(member='{"Main"}'), 'ObsMember "Main" is ignored, because ObsLevel is "All"'),
            (dict(start='"01/13/2011"'), 'From_Date "01/13/2011" is read as 13 January 2011'),
            (dict(start='"02/01/2024"'), r"periods: +2, from .*\[2\] to .*\[3\]\nnote: .*\[1\] is left out"),
            (dict(start='"15/01/2024"', end='"20/01/2024"'), r"periods: +one, .*\[1\]\nnote: .*no period starts"),
        ]
        for changes, note in notes:
            self.assertRegex(run("explain", self.formula(**changes))[1], note)
        self.assertNotRegex(run("explain", self.formula())[1], "why:|note:")

    def test_the_date_rules_are_true(self):
        rules = run("explain", "--dates")[1]
        self.assertIn(rules, (ROOT / "docs" / "dates.md").read_text())
        months = ["January", "February", "March", "April"]
        amounts = dict(zip(months, map(decimal.Decimal, ("-1000.30", "-199.95", "200.30", "70.00"))))
        rows = re.findall(r"^(\S+(?: 10:00)?) +(\S+)  +(.+)$", rules[rules.index("From_Date "):], re.M)[1:]
        self.assertEqual(len(rows), 18)
        for start, end, counts in rows:
            named = re.match(rf"({'|'.join(months)})(?: to ({'|'.join(months)}))?", counts)
            first, last = (months.index(named[1]), months.index(named[2] or named[1])) if named else (0, -1)
            expected = sum(amounts[month] for month in months[first:last + 1])
            dates = [f'"{date}"' if date != "(omitted)" else "" for date in (start, end)]
            value = run("eval", self.formula(start=dates[0], end=dates[1]))[1]
            self.assertEqual(decimal.Decimal(value), expected, (start, end, counts))

    def test_eval_fails_for_hidden_errors_and_says_why(self):
        good, empty, wrong = self.formula(), self.formula(start="", end='"15/04/2024"'), self.formula(account='"4001"')
        name = f'=QelName("{self.cube}","BooksFNC","SuperSum1",77)'
        self.assertEqual(run("eval", "--strict", good, empty), (0, "-999.95\n0\n", ""))
        status, output, errors = run("eval", "--strict", good, wrong, name)
        self.assertEqual((status, output), (1, "-999.95\n0\n-\n"))
        self.assertRegex(errors, r'^qel eval: formula 2: Accounts: .*"4000".*\nqel eval: formula 3: .+\n$')
        status, output, _ = run("eval", "--why", good, empty, wrong)
        self.assertEqual(status, 0)
        self.assertRegex(output, r'^-999\.95\n0\twithout From_Date, .*"01/04/2024"\n0\tAccounts: .*"4000".*\n$')

    def test_eval_compares_with_another_file(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        for file in BOOKS.iterdir():
            (folder / file.name).write_bytes(file.read_bytes().replace(b"-1000.10", b"-1000.35"))
        run("cube", "build", folder / "books.json", "-o", folder / "other.cub")
        name = f'=QelName("{self.cube}","BooksFNC","SuperSum1","1")'
        sales, unknown = self.formula(account='"4000"'), self.formula(account='"4001"')
        status, output, errors = run("eval", "--against", folder / "other.cub", sales, name, unknown)
        self.assertEqual((status, output), (0, "-1500.3\t-1500.55\t0.25\nRevenue\tRevenue\t\n0\t0\t0\n"))
        self.assertIn("2 zeros are shown instead of an error, first at formula 3", errors)
        status, output, errors = run("eval", "--strict", "--against", folder / "nowhere.cub", sales)
        self.assertEqual((status, output), (1, ""))
        self.assertIn("nowhere.cub", errors)

    def test_check_says_what_does_not_work(self):
        status, output, errors = run("cube", "check", self.cube, "booksfnc")
        self.assertEqual((status, errors), (1, ""))
        self.assertRegex(output, r"missing: +no dimension \[RH\]: RH is always All\n")
        self.assertIn("no hierarchy [Activities].[ActivityNames]: activities cannot be listed", output)
        ledger = self.path / "ledger.cub"
        status, output, errors = run("cube", "build", "--strict", ROOT / "examples" / "ledger" / "ledger.json", "-o", ledger)
        self.assertEqual((status, errors), (0, ""))
        status, output, _ = run("cube", "check", ledger)
        self.assertEqual((status, output.count("has everything that the formulas name")), (0, 2), output)
        self.assertRegex(output, r"formula: +OBS OBS 1, \d\d/\d\d/\d{4}: -?\d")


class Files(InFolder):
    FIRM = [{"name": "Firm", "column": "firm"}]

    def test_skipped_lines_carry_their_number_and_reason(self):
        self.write("ledger.csv", 'firm;amount\na;1\nb;"x"\nc\n')
        status, _, errors = self.build("--skip-bad-lines", self.path / "bad.csv", dimensions=self.FIRM)
        self.assertEqual(status, 0, errors)
        self.assertEqual((self.path / "bad.csv").read_text(),
                         'skipped_line;skipped_reason;firm;amount\n3;"column amount: expected an amount such as 1234.56, with at '
                         'most 2 decimals, found ""x""";b;"x"\n4;"expected 2 fields, found 1";c\n')

    def test_ledgers_as_they_come(self):
        hebrew = "חברה;סכום\nאבג;1,50\nדה;-2,25\n"
        same = ({"אבג": 1.5, "דה": -2.25}, {"decimal": ","})
        cases = [
            ("windows-1255", hebrew.encode("cp1255"), {"encoding": "windows-1255"}, *same),
            ("ISO-8859-8", hebrew.encode("iso8859-8"), {"encoding": "ISO-8859-8"}, *same),
            ("UTF-16 by its mark", hebrew.encode("utf-16"), {}, *same),
            ("a sep= line", ("sep=;\r\n" + hebrew).encode(), {}, *same),
            ("a column twice, unused", "חברה,x,x,סכום\nא,,,$1.50\nא,,,(2 $)\n".encode(), {}, {"א": -0.5}, {}),
        ]
        for what, text, keys, expected, csv in cases:
            self.write("ledger.csv", text)
            keys = {**keys, "columns": {"firm": "חברה", "amount": "סכום"}}
            status, _, errors = self.build(dimensions=self.FIRM, csv=csv, ledger=keys)
            self.assertEqual((status, errors), (0, ""), what)
            answer = json.loads(run("mdx", self.cube, "C", "SELECT [Measures].[Amount] ON 0, [Firm].[Firm].Members ON 1 FROM C",
                                    "--json")[1])
            values = {place["members"][0]["caption"]: cells[0] for place, cells in zip(answer["axes"][1], answer["cells"])}
            self.assertEqual(values, {"All": sum(expected.values()), **expected}, what)

    def test_faults_name_their_remedy(self):
        cases = [
            (b"PK\x03\x04rest", {}, "is a workbook or an archive, not CSV; save the sheet as CSV"),
            ("firm,amount\nא,1\n".encode("cp1255"), {}, 'set "encoding", such as "windows-1255"'),
            ("firm,amount\na,1\n", {"encoding": "klingon"}, 'cannot read the encoding "klingon"'),
            ("firm:amount\na:1\n", {}, 'set "delimiter"'),
            ('firm,amount\na,"1,234.5"\n', {}, 'set "decimal": ".", "thousands": ","'),
            ("firm,amount\na,1.005\n", {}, 'set "decimals": 3'),
            ('firm,amount\na,5 ab.\n', {}, 'take "ab" away: beside an amount only a currency may stand'),
            ("firm,amount\na,$5\na,€5\n", {}, '"€5" is in €, and amounts before it are in $'),
            ("firm,firm,amount\na,b,1\n", {}, 'two columns are named "firm"'),
        ]
        for text, csv, remedy in cases:
            self.write("ledger.csv", text)
            status, _, errors = self.build(dimensions=self.FIRM, csv=csv)
            self.assertEqual(status, 1, remedy)
            self.assertIn(remedy, errors)
        self.write("ledger.csv", "firm,amount\na,$5\n")
        self.write("more.csv", "firm,amount\na,5 NIS\n")
        self.assertIn('more.csv, line 2, column amount: "5 NIS" is in ₪, and amounts before it are in $',
                      self.build(dimensions=self.FIRM, facts=["ledger", "more"], more={})[2])
        self.write("ledger.csv", "date,amount\n31/12/2024,1\n")
        dates = [{"name": "Date", "column": "date", "calendar": {"periods": "months"}}]
        self.assertIn('set "dates": "dmy" in the table "ledger"', self.build(dimensions=dates)[2])
        self.write("ledger.csv", "date,amount\n")
        self.assertIn("facts of ledger.csv (it has no lines below its header), column date: there are no dates",
                      self.build(dimensions=dates)[2])
        self.write("ledger.csv", "firm,amount\na,1")
        self.assertIn("warning (lastLine): ", self.build(dimensions=self.FIRM)[2])
        self.assertEqual(self.build(dimensions=self.FIRM, ledger={"accept": "lastLine"})[2], "")
        self.write("ledger.csv", "firm,amount\nבית,1\n".encode("cp1255"))
        self.assertIn('warning (encoding): ', self.build(dimensions=self.FIRM, ledger={"encoding": "windows-1252"})[2])
        for keys in ({"encoding": "windows-1252", "accept": ["encoding", "noRows"]}, {"encoding": "windows-1255"}):
            self.assertEqual(self.build(dimensions=self.FIRM, ledger=keys)[2], "", keys)

    def test_a_protected_cube_stays(self):
        self.write("ledger.csv", "firm,amount\na,1\n")
        self.write("c.cub", "mine")
        self.cube.chmod(0o440)
        status, _, errors = self.build(dimensions=self.FIRM)
        self.assertEqual((status, self.cube.read_text()), (1, "mine"))
        self.assertIn("is write-protected", errors)
        self.assertEqual(self.build("--force", dimensions=self.FIRM)[0], 0)
        self.assertEqual(self.cube.stat().st_mode & 0o777, 0o440)

    def test_words_and_settings(self):
        self.write("ledger.csv", "firm,amount\na,1\n")
        errors = self.build(dimensions=[{**self.FIRM[0], "captoin": "x"}], ledger={"fille": "y"})[2]
        self.assertIn('tables.ledger: unknown key "fille"; did you mean "file"?\n', errors)
        self.assertIn('unknown key "captoin"; did you mean "caption"?', errors)
        self.assertEqual(self.build(dimensions=self.FIRM)[0], 0)
        settings = self.path / "config" / "qel"
        settings.mkdir(parents=True)
        (settings / "servers.ini").mkdir()
        env = {"XDG_CONFIG_HOME": str(self.path / "config")}
        self.assertEqual(run("cube", "info", self.cube, env=env)[0], 0)
        status, output, _ = run("members", self.cube, "C", "--kind", "obs-levels", "--obs", "1", "--firma=", "--sub-member=", env=env)
        self.assertNotEqual(status, 2, output)


if __name__ == "__main__":
    QEL = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main(verbosity=2)
