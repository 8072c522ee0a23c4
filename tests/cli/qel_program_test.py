#!/usr/bin/env python3
"""Runs the built qel program as a person does: what it prints where, and how it ends."""
import contextlib
import fcntl
import json
import os
import pathlib
import pty
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

QEL = ""
BOOKS = pathlib.Path(__file__).resolve().parent.parent / "helpers" / "books"


def run(*arguments, stdin="", cwd=None):
    data = stdin if isinstance(stdin, bytes) else stdin.encode()
    done = subprocess.run([QEL, *map(str, arguments)], input=data, capture_output=True, cwd=cwd, timeout=120)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def value_formula(cube_file, cube="BooksFNC", name='{"OBS"}', number='{"1"}', level='{"All"}', member='{"All"}',
                  activity='{"All"}', group="All", group_member="All", account="All", measure="Amount", firm="All",
                  dates='"01/01/2024","31/12/2024"', function="QelF1"):
    return (f'=OrmFunctionQel4.OrmQelFunction.{function}("{cube_file}", "{cube}", {name},{number},{level}, {member},'
            f'{activity},"{group}","{group_member}","{account}","{measure}","All","All","All","{firm}","All",{dates})')


def copy_books(folder, lines):
    """The books with more lines in their ledger."""
    shutil.copytree(BOOKS, folder)
    with open(folder / "ledger.csv", "a") as ledger:
        ledger.write(lines)


class WithBooks(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        cls.cube = cls.path / "books.cub"
        cls.built = run("cube", "build", BOOKS / "books.json", "--output", cls.cube)

    def setUp(self):
        self.assertEqual(self.built[0], 0, self.built[2])

    def formula(self, **changes):
        return value_formula(self.cube, **changes)


class Eval(WithBooks):
    def test_values_of_every_kind_of_selection(self):
        cases = [
            ("the whole year", {}, "-929.95"),
            ("an account", dict(account="4000"), "-1500.3"),
            ("a quarter of an account", dict(account="5100", dates='"01/01/2024","31/03/2024"'), "0.3"),
            ("cents that doubles cannot hold", dict(account="4000", dates='"01/01/2024","31/01/2024"'), "-1000.3"),
            ("a cost centre", dict(level='{"Cost_Centers"}', member='{"200"}'), "-300"),
            ("a level's member under two parents", dict(level='{"Level2"}', member='{"main"}'), "-930.05"),
            ("a name with an apostrophe", dict(level='{"Level2"}', member='{"Karmi\'el"}'), "-0.2"),
            ("quotes carried as no-break blanks", dict(level='{"Level2"}', member='{"Say \u00a0]\u00a0 & go"}'), "0.3"),
            ("a summary group", dict(group="SuperSum1", group_member="2"), "570.35"),
            ("an activity", dict(activity='{"W"}'), "270.3"),
            ("a firm", dict(firm="20"), "-299.7"),
            ("another measure", dict(measure="Lines"), "7"),
            ("no start date", dict(dates=',"29/02/2024"'), "-199.95"),
            ("dates as numbers and DATE", dict(dates='45292,DATE(2024,1,31)'), "-1000.3"),
            ("outside the cube's dates", dict(dates='"01/01/2020","31/12/2020"'), "0"),
            ("nothing booked", dict(account="4000", dates='"01/04/2024","30/04/2024"'), "0"),
            ("a number as the OBS number", dict(number="1"), "-929.95"),
            ("an error masked as 0", dict(account="9999"), "0"),
            ("the start after the end", dict(dates='"01/03/2024","01/02/2024"'), "0"),
            ("the start after the end, unmasked",
             dict(function="QelFuncDemo", dates='"01/03/2024","01/02/2024"'), "#ERR 11111111"),
            ("an outdated cube", dict(cube="FlatFNC"), "Outdated Cube Version"),
            ("the cube's name in another letter case", dict(cube="bookSfnc"), "-929.95"),
        ]
        formulas = [self.formula(**changes) for _, changes, _ in cases]
        status, output, errors = run("eval", *formulas)
        self.assertEqual((status, errors), (0, "qel eval: 2 zeros are shown instead of an error, first at formula 18; "
                                               "qel explain with the formula tells the error\n"))
        for (what, _, expected), value in zip(cases, output.splitlines(), strict=True):
            self.assertEqual(value, expected, what)

    def test_names(self):
        name = lambda kind, key: f'=OrmFunctionQel4.OrmQelFunction.QelName("{self.cube}","BooksFNC","{kind}",{key})'
        status, output, _ = run("eval", name("SuperSum1", 2), name("SuperSum1", '"Sales"'), name("Accounts", 1),
                                name("SuperSum1", 77))
        self.assertEqual((status, output), (0, "הוצאות\nSales\n\n-\n"))

    def test_standard_input_with_bom_blank_lines_and_failures(self):
        lines = ["\ufeff" + self.formula(account="4000"), "", "  ", "=QelF1(", self.formula(name="{1,2,3,4,5,6,7}"),
                 self.formula(account="5100")]
        status, output, errors = run("eval", stdin="\r\n".join(lines))
        self.assertEqual(output.splitlines(), ["-1500.3", "#VALUE!", "#VALUE!", "70.3"])
        self.assertEqual(status, 1)
        self.assertIn("line 4: ", errors)
        self.assertIn("line 5: To many dimensions", errors)
        self.assertEqual(len(errors.splitlines()), 2)

    def test_date_order(self):
        changes = dict(account="4000", dates='"02/01/2024","02/29/2024"')
        self.assertEqual(run("--date-order", "mdy", "eval", self.formula(**changes))[1], "-500\n")
        self.assertEqual(run("eval", "--date-order", "MDY", self.formula(**changes))[1], "-500\n")
        status, output, errors = run("eval", self.formula(dates='"31/31/2024",'))
        self.assertEqual((status, output), (1, "#VALUE!\n"))
        self.assertIn("formula 1: Argument 17 (From_Date)", errors)

    def test_a_relative_path_starts_at_the_current_folder(self):
        self.assertEqual(run("eval", value_formula(" books.cub "), cwd=self.path)[1], "-929.95\n")

    def test_a_backslash_stands_between_the_parts_of_a_cube_path(self):
        path = str(self.cube).replace("/", "\\")
        self.assertEqual(run("eval", value_formula(path))[1], "-929.95\n")
        self.assertEqual(run("mdx", path, "BooksFNC", "SELECT FROM BooksFNC")[0], 0)
        for command in ("info", "verify"):
            self.assertEqual(run("cube", command, path)[0], 0, command)

    def test_a_value_is_there_before_the_next_formula_is_written(self):
        with subprocess.Popen([QEL, "eval"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as program:
            for account, expected in (("4000", b"-1500.3\n"), ("5100", b"70.3\n")):
                program.stdin.write(self.formula(account=account).encode() + b"\n")
                program.stdin.flush()
                self.assertEqual(program.stdout.readline(), expected)
            program.stdin.close()
            self.assertEqual(program.wait(timeout=60), 0)

    def test_output_that_cannot_be_written_fails(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([QEL, "eval", self.formula()], stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"standard output", done.stderr)

    def test_input_that_cannot_be_read_is_no_end(self):
        for command in (("eval",), ("mdx", self.cube, "BooksFNC", "-")):
            folder = os.open("/", os.O_RDONLY)
            try:
                done = subprocess.run([QEL, *command], stdin=folder, capture_output=True, text=True, timeout=60)
            finally:
                os.close(folder)
            self.assertEqual((done.returncode, done.stdout), (1, ""), command)
            self.assertIn("standard input cannot be read", done.stderr, command)


class Definitions(WithBooks):
    """What the definition of a cube can say besides the columns of its tables."""

    def build(self, *replacements):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        copy_books(folder / "books", "")
        definition = folder / "books" / "books.json"
        text = definition.read_text(encoding="utf-8")
        for part, replacement in replacements:
            self.assertIn(part, text)
            text = text.replace(part, replacement, 1)
        definition.write_text(text, encoding="utf-8")
        return folder / "c.cub", run("cube", "build", definition, "--output", folder / "c.cub")

    def test_calculations_are_listed_and_asked_as_stored_members(self):
        cube, (status, _, errors) = self.build(('"BooksFNC",', """"BooksFNC",
            "calculatedMembers": [{"name": "[Measures].[Turned]", "formula": "-[Measures].[Amount]",
                                   "format": "#,##0.00", "solveOrder": 2}],
            "namedSets": [{"name": "Firms", "formula": "[Firma].Children"}],"""))
        self.assertEqual((status, errors), (0, ""))
        lines = [line.split() for line in run("cube", "info", cube)[1].splitlines()]
        self.assertIn(["[Measures].[Turned]", "-[Measures].[Amount]", "#,##0.00", "2"], lines)
        self.assertIn(["Firms", "[Firma].Children"], lines)
        self.assertEqual(run("cube", "verify", cube)[0], 0)
        self.assertEqual(run("eval", value_formula(cube, measure="Turned", account="4000"))[1], "1500.3\n")
        self.assertEqual(run("mdx", cube, "BooksFNC", "--csv",
                             "SELECT {[Measures].[Turned]} ON 0, Firms ON 1 FROM BooksFNC")[1],
                         "Firma,Turned\n10,630.25\n20,299.70\n")

    def test_calculations_that_do_not_fit_are_refused(self):
        cube, (status, _, errors) = self.build(('"BooksFNC",', '''"BooksFNC",
            "calculatedMembers": [{"name": "[Measures].[Net]", "formula": "[Measures].[Amont]"}],'''))
        self.assertEqual(status, 1)
        self.assertIn("books.json: cubes[0].calculatedMembers[0]: the cube's definition of [Measures].[Net], line 1, "
                      "column 12: [Measures] has no member [Amont]", errors)
        self.assertFalse(cube.exists())

    def test_months_have_names_in_a_second_calendar_too(self):
        months = ["January", "February", "\u05de\u05e8\u05e5", "April", "May", "June", "July", "August", "September",
                  "October", "November", "December"]
        calendar = '"calendar": { "periods": "months", "quarters": true'
        named = f'{calendar}, "monthNames": {json.dumps(months)} }} }}'
        cube, (status, _, errors) = self.build(
            ('{ "file": "ledger.csv" }', '{ "file": "ledger.csv", "columns": { "date": "date", "due": "date" } }'),
            (f'{{ "name": "Date", "column": "date", {calendar} }} }}',
             f'{{ "name": "Date", "column": "date", {named}, {{ "name": "Due", "column": "due", {named}'))
        self.assertEqual((status, errors), (0, ""))
        self.assertEqual(run("mdx", cube, "BooksFNC", "--csv",
                             "SELECT {[Measures].[Amount]} ON 0, CrossJoin([Date].[Month].Members, {[Due].[2024].[Q1]}) "
                             "ON 1 FROM BooksFNC")[1],
                         "Month,Quarter,Amount\nJanuary 2024,2024-Q1,-1000.30\nFebruary 2024,2024-Q1,-199.95\n"
                         "\u05de\u05e8\u05e5 2024,2024-Q1,200.30\nApril 2024,2024-Q1,\n")
        self.assertEqual(run("eval", value_formula(cube, dates='"01/01/2024","29/02/2024"'))[1],
                         run("eval", self.formula(dates='"01/01/2024","29/02/2024"'))[1])

    def test_parallel_periods_keep_the_day_of_the_month(self):
        cube, (status, _, errors) = self.build(('"periods": "months"', '"periods": "days", "from": "2024-01-01", "to": "2025-12-31"'))
        self.assertEqual((status, errors), (0, ""))
        self.assertEqual(run("mdx", cube, "BooksFNC", "--csv", "--names", "key",
                             "SELECT {[Measures].[Amount]} ON 0, {ParallelPeriod([Date].[Quarter], 1, [Date].[2025].[Q1].[3].[29]), "
                             "ParallelPeriod([Date].[Year], 1, [Date].[2025].[Q1].[3].[1]), ParallelPeriod([Date].[Month], 1, "
                             "[Date].[2025].[Q1].[3].[31])} ON 1 FROM BooksFNC")[1], "Day,Amount\n2024-12-29,\n2024-03-01,\n")


class ChangedCube(WithBooks):
    """A program that reads formulas while their cube changes."""
    JANUARY = dict(account="4000", dates='"01/01/2024","31/01/2024"')
    NEXT_YEAR = dict(account="4000", dates='"01/01/2025","31/01/2025"')

    def asked_twice(self, change):
        """The two formulas' values before and after `change(cube, new cube, folder)`, and what was told of errors."""
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        copy_books(folder / "books", "2025-01-05,4000,A1,100,S,10,-5.00\n2024-01-06,4000,A1,100,S,10,-1.00\n")
        file, new = folder / "a.cub", folder / "new.cub"
        shutil.copy(self.cube, file)
        self.assertEqual(run("cube", "build", folder / "books" / "books.json", "--output", new)[0], 0)
        formulas = [value_formula(file, **changes) for changes in (self.JANUARY, self.NEXT_YEAR)]
        with subprocess.Popen([QEL, "eval"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True) as program:
            def values():
                program.stdin.write("\n".join(formulas) + "\n")
                program.stdin.flush()
                return [program.stdout.readline().strip() for _ in formulas]
            before = values()
            change(file, new, folder)
            time.sleep(0.2)  # a person's pause before the next recalculation
            after = values()
            shutil.copy(self.cube, file)
            time.sleep(0.2)
            self.assertEqual(values(), before, "the old content again")
            program.stdin.close()
            self.assertEqual(program.wait(timeout=60), 0)
            return before, after, program.stderr.read()

    def test_the_next_recalculation_shows_the_new_data(self):
        old, new, none = ["-1000.3", "0"], ["-1001.3", "-5"], ["0", "0"]
        cases = [
            ("replaced", lambda file, fresh, folder: fresh.rename(file), new),
            ("rewritten in place", lambda file, fresh, folder: file.write_bytes(fresh.read_bytes()), new),
            ("touched", lambda file, fresh, folder: os.utime(file), old),
            ("another mode", lambda file, fresh, folder: file.chmod(0o640), old),
            ("another name beside it", lambda file, fresh, folder: os.link(file, folder / "other.cub"), old),
            ("cut short", lambda file, fresh, folder: os.truncate(file, 5000), none),
            ("replaced by half a file", lambda file, fresh, folder: (os.truncate(fresh, 5000), fresh.rename(file)), none),
            ("moved away", lambda file, fresh, folder: file.rename(folder / "other.cub"), none),
        ]
        for what, change, expected in cases:
            with self.subTest(what):
                before, after, errors = self.asked_twice(change)
                self.assertEqual((before, after), (old, expected))
                self.assertEqual("shown instead of an error, first at line 3" in errors, expected == none, errors)

    def test_reads_can_be_verified(self):
        self.assertEqual(run("eval", "--verify-reads", self.formula()), (0, "-929.95\n", ""))


class HostileTexts(WithBooks):
    """Names that would move a terminal's cursor, colour it, or turn its text around."""
    NAME = "red\x1b[31m\x9b1m\u202egnp\u2066\x07\u200e\u05d0\u200f"
    SHOWN = "red [31m 1mgnp \u200e\u05d0\u200f"

    def on_terminal(self, *command):
        main, terminal = pty.openpty()
        program = subprocess.Popen([QEL, *map(str, command)], stdout=terminal, stderr=terminal)
        os.close(terminal)
        shown = b""
        with contextlib.suppress(OSError):  # the terminal's end
            while part := os.read(main, 65536):
                shown += part
        os.close(main)
        self.assertEqual(program.wait(timeout=60), 0, command)
        return shown.decode().replace("\r\n", "\n")

    def test_reach_no_terminal(self):
        folder = self.path / "hostile"
        copy_books(folder, "")
        for file in ("accounts.csv", "books.json"):
            text = (folder / file).read_text(encoding="utf-8")
            text = text.replace("Sales", self.NAME).replace('"Lines"', json.dumps(self.NAME))
            (folder / file).write_text(text, encoding="utf-8")
        cube = folder / "b.cub"
        self.assertEqual(run("cube", "build", folder / "books.json", "--output", cube)[0], 0)
        table = ("mdx", cube, "BooksFNC", "SELECT {[Measures].[Amount]} ON 0, "
                                          "{[Accounts].[AccountNames].[AccountName].Members} ON 1 FROM BooksFNC")
        for command in (table, (*table, "--csv"), ("cube", "info", cube),
                        ("cube", "info", cube, "--members", "AccountName", "--cube", "BooksFNC")):
            shown = self.on_terminal(*command)
            self.assertIn(self.SHOWN, shown, command)
            self.assertNotRegex(shown, "[\x00-\x08\x0b-\x1f\x7f-\x9f\u202a-\u202e\u2066-\u2069]", command)
        self.assertIn(self.NAME, run(*table, "--csv")[1], "data for programs stays as it is")
        errors = run("mdx", cube, "BooksFNC", f"SELECT {{[Accounts].[{self.NAME}?]}} ON 0 FROM BooksFNC")[2]
        self.assertIn(self.SHOWN, errors, "a message, wherever it goes")


class Explain(WithBooks):
    def test_shows_keys_texts_and_value(self):
        status, output, errors = run("explain", self.formula(
            number="1", level='{"Cost_Centers"}', member='{"200"}', account="5000", dates='"01/02/2024","31/03/2024"'))
        self.assertEqual((status, errors), (0, ""))
        before, rest = output.split("---- statement ----\n")
        statement, after = rest.split("\n---- end of statement ----\n")
        self.assertIn("LastPeriods(2,[Date].[All].[2024].[Q1].[3])", statement)
        self.assertIn("[Cost_Centers].[All].[200],[Accounts].[AccountCodes].[All].[5000])", statement)
        answer = json.loads(run("mdx", self.cube, "BooksFNC", "-", "--json", stdin=statement)[1])
        self.assertEqual(answer["cells"], [[200]], "as it is sent")
        lines = dict(line.split(":", 1) for line in (before + after).splitlines())
        shown = {label: text.strip() for label, text in lines.items()}
        self.assertEqual([shown[label] for label in ("ObsName keys", "ObsNum keys", "value", "lines")],
                         ['"OBS"', '"1"', "200", "1"])
        self.assertEqual(shown["ObsMember"].split(", ")[0], "[Cost_Centers].[All].[200]")
        self.assertRegex(shown["rule"], "its first day lies within From_Date and To_Date")
        self.assertIn(f";Data Source={self.cube};Initial Catalog=BooksFNC;", shown["connection"])
        self.assertNotIn("masked error", shown)
        for label in ("open", "first call", "compose and run"):
            self.assertRegex(shown[label], r"^\d+\.\d µs")

    def test_tells_what_the_formula_masks(self):
        cases = [
            ("an unknown account", self.formula(account="9999"), "0", r"masked error: +#ERR -\d+\n.*9999"),
            ("an unknown level", self.formula(level='{"Levle2"}', member='{"x"}'), "0",
             r"masked error: +#ERR 3265\n.*no level 'Levle2'"),
            ("an unknown cube", self.formula(cube="Nope"), "0", r"masked error: +#err -\d+\n.*Nope.*BooksFNC"),
            ("reversed dates", self.formula(dates='"01/03/2024","01/02/2024"'), "0",
             r"masked error: +#ERR 11111111 .*later"),
            ("a name that is not there", f'=QelName("{self.cube}","BooksFNC","SuperSum1",77)', "-", r"reason: +\S"),
        ]
        for what, formula, value, pattern in cases:
            status, output, _ = run("explain", formula)
            self.assertEqual(status, 0, what)
            self.assertRegex(output, rf"value: +{value}\n", what)
            self.assertRegex(output, pattern, what)

    def test_tells_why_no_statement_was_sent(self):
        reason = "no statement was sent: the dates lie outside the cube's, "
        cases = [
            ("before", self.formula(dates='"01/01/2020","31/12/2020"'), True),
            ("after", self.formula(dates='"01/01/2031","31/12/2031"'), True),
            ("no dates", self.formula(dates=","), True),
            ("inside", self.formula(), False),
            ("reversed", self.formula(dates='"01/03/2024","01/02/2024"'), False),
        ]
        for what, formula, told in cases:
            output = run("explain", formula)[1]
            self.assertEqual(reason in output, told, f"{what}: {output}")
        output = run("--date-order", "ymd", "explain", self.formula(dates=","))[1]
        self.assertRegex(output, reason + r"2024/01/01 to 2024/\d\d/01\n")

    def test_tells_of_keys_that_are_not_used(self):
        note = r"note: +only the first key of ObsNum is used\n"
        self.assertRegex(run("explain", self.formula(number='{"1","2"}'))[1], note)
        self.assertNotRegex(run("explain", self.formula())[1], r"note:")

    def test_a_plain_text_is_no_key(self):
        self.assertRegex(run("explain", self.formula(level='"Level1"'))[1], r"ObsLevel keys: +\(empty\)\n")

    def test_a_failed_call(self):
        status, output, errors = run("explain", self.formula(activity="{1,2,3,4,5,6,7}"))
        self.assertEqual((status, output.split()[-1]), (1, "#VALUE!"))
        self.assertIn("To many dimensions", errors)


class Mdx(WithBooks):
    STATEMENT = ("SELECT {[Measures].[Amount],[Measures].[Lines]} ON COLUMNS, "
                 "{[Accounts].[AccountNames].[AccountName].Members} ON ROWS FROM BooksFNC WHERE ([Firma].[20])")

    def test_table(self):
        self.assertEqual(run("mdx", self.cube, "BooksFNC", self.STATEMENT), (0, (
            "AccountName        Amount  Lines\n"
            "Sales             -500.00      1\n"
            'Wages, "regular"   200.00      1\n'
            "Rent                 0.30      1\n"), ""))

    def test_csv_from_standard_input(self):
        status, output, _ = run("mdx", self.cube, "BooksFNC", "-", "--csv", stdin="\ufeff" + self.STATEMENT)
        self.assertEqual((status, output), (0, 'AccountName,Amount,Lines\nSales,-500.00,1\n"Wages, ""regular""",200.00,1\n'
                                               "Rent,0.30,1\n"))

    def test_names_and_decimals(self):
        statement = ("WITH MEMBER [Measures].[Share] AS '[Measures].[Amount] / 3' "
                     "SELECT {[Measures].[Amount],[Measures].[Share]} ON 0, CrossJoin({[Date].[2024].[Q1].[1]}, "
                     "{[Accounts].[AccountCodes].[4000]}) ON 1 FROM BooksFNC")
        amounts = "-1000.30,-333.433333333333\n"
        date, account = "[Date].[All].[2024].[Q1].[1]", "[Accounts].[AccountCodes].[All].[4000]"
        for names, headings, row in [("caption", "Amount,Share", "2024-01,Sales,"), ("name", "Amount,Share", "1,4000,"),
                                     ("KEY", "Amount,Share", "2024-01,4000,"),
                                     ("unique", "[Measures].[Amount],[Measures].[Share]", f"{date},{account},")]:
            self.assertEqual(run("mdx", self.cube, "BooksFNC", statement, "--csv", "--names", names)[1],
                             f"Month,AccountCode,{headings}\n{row}{amounts}", names)
        member = json.loads(run("mdx", self.cube, "BooksFNC", statement, "--json")[1])["axes"][1][0]["members"][0]
        self.assertEqual(member, {"name": "1", "caption": "1", "uniqueName": date, "level": "Month", "depth": 3,
                                  "key": "2024-01"})
        self.assertEqual(run("mdx", self.cube, "BooksFNC", statement, "--names", "codes")[0], 2)

    def test_the_name_of_a_set_takes_little_memory(self):
        def kilobytes(firms):
            statement = f"WITH MEMBER [Measures].[n] AS Count({firms}) SELECT {{[Measures].[n]}} ON 0 FROM BooksFNC"
            with subprocess.Popen([QEL, "mdx", self.cube, "BooksFNC", statement], stdout=subprocess.PIPE) as program:
                self.assertEqual(program.stdout.read().split(), [b"n", b"2"])
                _, status, used = os.wait4(program.pid, 0)
                program.returncode = os.waitstatus_to_exitcode(status)
            self.assertEqual(program.returncode, 0)
            return used.ru_maxrss

        firms = "Filter([Firma].Children AS s, s.CurrentOrdinal < 2)"
        self.assertLess(kilobytes(firms), kilobytes("[Firma].Children") + 50_000)

    def test_json_has_null_for_an_empty_cell(self):
        statement = self.STATEMENT.replace("[Firma].[20]", "[Firma].[10]")
        status, output, _ = run("mdx", self.cube, "BooksFNC", statement, "--json")
        document = json.loads(output)
        self.assertEqual(status, 0)
        self.assertEqual(document["cells"], [[-1000.3, 2], [300.05, 1], [70, 1]])
        self.assertEqual(document["axes"][1][0]["members"][0]["caption"], "Sales")
        statement = self.STATEMENT.replace("[Firma].[20]", "[Firma].[20],[Cost_Centers].[100]")
        self.assertEqual(json.loads(run("mdx", self.cube, "BooksFNC", statement, "--json")[1])["cells"][0][0], None)

    def test_more_axes_than_two(self):
        statement = ("SELECT {[Firma].[10],[Firma].[20]} ON 0, {[Measures].[Amount],[Measures].[Lines]} ON 1, "
                     "{[Accounts].[AccountNames].[Sales],[Accounts].[AccountNames].[Rent]} ON 2 FROM BooksFNC")
        self.assertEqual(run("mdx", self.cube, "BooksFNC", statement, "--csv")[1], (
            "AccountName,MeasuresLevel,10,20\n"
            "Sales,Amount,-1000.30,-500.00\nSales,Lines,2,1\nRent,Amount,70.00,0.30\nRent,Lines,1,1\n"))
        document = json.loads(run("mdx", self.cube, "BooksFNC", statement, "--json")[1])
        self.assertEqual([len(axis) for axis in document["axes"]], [2, 2, 2])
        self.assertEqual(document["cells"], [[[-1000.3, -500], [2, 1]], [[70, 0.3], [1, 1]]])


class Cube(WithBooks):
    def test_build_tells_totals_and_draws_no_bar_into_a_file(self):
        status, output, errors = self.built
        self.assertIn("lines read 14, kept 14, skipped 0", output)
        self.assertIn(f"{self.cube.stat().st_size} bytes", output)
        self.assertEqual(errors, "")

    def test_info(self):
        status, output, errors = run("cube", "info", self.cube)
        self.assertEqual((status, errors), (0, ""))
        self.assertIn(f"{self.cube.stat().st_size} bytes, 2 cubes", output)
        for pattern in (r"cube BooksFNC\n +7 facts, 8 dimensions, 2 measures", r"\[OBS\]\.\[OBS\]\.\[Level2\] +2 +4\n",
                        r"\[Date\]\.\[Date\]\.\[Month\] +3 +4\n", r"Amount \(default\) +sum +2\n", r"Lines +count",
                        r"sorted by \w+"):
            self.assertRegex(output, pattern)

    def test_members(self):
        status, output, _ = run("cube", "info", self.cube, "--members", "accountnames.AccountName")
        self.assertEqual(status, 0)
        self.assertEqual([line.split()[0] for line in output.splitlines()], ["name", "Sales", "Wages,", "Rent"])
        self.assertIn('Wages, "regular"  Wages, "regular"  5000', output)
        self.assertIn("[OBS].[All].[South].[Say \"]]\" & go]",
                      run("cube", "info", self.cube, "--members", "[OBS].[Level2]")[1])
        self.assertIn("[Date].[All].[2024].[Q1].[3]",
                      run("cube", "info", self.cube, "--members", "Month", "--cube", "booksfnc")[1])
        for level, part in (("Month", "Several levels"), ("[OBS].[Level9]", "no level"), ("[OBS", "without ']'"),
                            (("Month", "--cube", "Other"), "no cube 'Other'")):
            words = [level] if isinstance(level, str) else level
            status, output, errors = run("cube", "info", self.cube, "--members", *words)
            self.assertEqual((status, output), (1, ""), level)
            self.assertIn(part, errors)

    def test_verify(self):
        self.assertEqual(run("cube", "verify", self.cube), (0, f"{self.cube}: OK\n", ""))

    def test_verify_takes_no_quadratic_time_for_members_of_one_name(self):
        lines = range(40_000)
        (self.path / "facts.csv").write_text("code,amount\n" + "".join(f"{i},1\n" for i in lines))
        (self.path / "codes.csv").write_text("code,group,name\n" + "".join(f"{i},g{i},main\n" for i in lines))
        (self.path / "names.json").write_text(json.dumps({
            "tables": {"facts": {"file": "facts.csv"}, "codes": {"file": "codes.csv"}},
            "cubes": [{"name": "N", "facts": "facts", "measures": [{"name": "M", "column": "amount"}], "dimensions": [
                {"name": "D", "column": "code", "table": "codes", "key": "code", "hierarchies": [{"name": "H", "levels": [
                    {"name": "G", "key": "group"}, {"name": "C", "key": "code", "memberName": "name"}]}]}]}]}))
        started = time.monotonic()
        self.assertEqual(run("cube", "build", self.path / "names.json", "--output", self.path / "n.cub")[0], 0)
        self.assertEqual(run("cube", "verify", self.path / "n.cub")[0], 0)
        self.assertLess(time.monotonic() - started, 30)  # it took minutes

    def test_skipped_lines_are_written_aside_and_told(self):
        folder = self.path / "skip"
        bad = "2024-02-30,4000,A1,100,S,10,1.00\n2024-02-01,4000,A1,100,S,10,1.005\n"
        copy_books(folder, bad)
        status, output, errors = run("cube", "build", folder / "books.json", "--output", folder / "b.cub")
        self.assertEqual((status, output, (folder / "b.cub").exists()), (1, "", False))
        self.assertIn("ledger.csv, line 9", errors)
        status, output, errors = run("cube", "build", folder / "books.json", "-o", folder / "b.cub",
                                     "--skip-bad-lines", folder / "bad.csv")
        self.assertEqual(status, 0, errors)
        self.assertIn("lines read 18, kept 14, skipped 4", output)
        self.assertEqual(errors, f"qel cube build: 2 lines could not be used; they are in {folder / 'bad.csv'}\n")
        for line in bad.splitlines():
            self.assertIn(line, (folder / "bad.csv").read_text())
        self.assertEqual(run("eval", value_formula(folder / "b.cub"))[1], "-929.95\n")


class Interrupted(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        (self.path / "long.csv").write_text("code,amount\n" + "7,1\n" * 4_000_000)
        (self.path / "long.json").write_text(json.dumps({
            "tables": {"t": {"file": "long.csv"}},
            "cubes": [{"name": "LongFNC", "facts": ["t"], "dimensions": [{"name": "D", "column": "code"}],
                       "measures": [{"name": "M", "column": "amount"}]}]}))

    def test_a_build_takes_back_what_it_has_half_done(self):
        old = self.path / "long.cub"
        old.write_text("the old file")
        for request in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            build = subprocess.Popen([QEL, "cube", "build", self.path / "long.json", "--output", old],
                                     stderr=subprocess.PIPE)
            while build.poll() is None and not list(self.path.glob("*.tmp")):
                time.sleep(0.001)
            build.send_signal(request)
            _, errors = build.communicate(timeout=120)
            self.assertEqual((build.returncode, errors.decode()), (1, "qel: interrupted; the cube file is as it was\n"))
            self.assertEqual(sorted(file.name for file in self.path.iterdir()), ["long.csv", "long.cub", "long.json"])
        self.assertEqual(old.read_text(), "the old file")

    def test_a_limit_of_file_sizes_is_told(self):
        built = subprocess.run([QEL, "cube", "build", self.path / "long.json", "--output", self.path / "x.cub"],
                               capture_output=True, text=True, timeout=120,
                               preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096)))
        self.assertEqual(built.returncode, 1)
        self.assertIn("x.cub", built.stderr)
        self.assertIn("File too large", built.stderr)
        self.assertEqual(sorted(file.name for file in self.path.iterdir()), ["long.csv", "long.json"])

    def test_the_bar_fits_the_terminal(self):
        for columns, kind, widest in ((20, "xterm", 19), (200, "xterm", 60), (80, "dumb", 0)):
            main, terminal = pty.openpty()
            fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
            build = subprocess.Popen([QEL, "cube", "build", self.path / "long.json", "--output", self.path / "x.cub"],
                                     stdout=subprocess.DEVNULL, stderr=terminal, env={**os.environ, "TERM": kind})
            os.close(terminal)
            shown = b""
            with contextlib.suppress(OSError):  # the terminal's end
                while part := os.read(main, 4096):
                    shown += part
            os.close(main)
            self.assertEqual(build.wait(timeout=120), 0)
            lines = shown.decode().replace("\x1b[K", "").split("\r")
            self.assertLessEqual(max(map(len, lines)), widest, kind)
            self.assertEqual(any("#" in line for line in lines), kind != "dumb")


class WrongInput(WithBooks):
    def test_what_is_no_cube_is_named_with_its_fault(self):
        empty, text, cut, flipped = (self.path / name for name in ("empty.cub", "text.cub", "cut.cub", "flipped.cub"))
        good = self.cube.read_bytes()
        empty.write_bytes(b"")
        text.write_text("not a cube, just a text that is long enough to hold a header of sixty-four bytes or more\n")
        cut.write_bytes(good[:len(good) // 2])
        flipped.write_bytes(good[:-20] + bytes([good[-20] ^ 1]) + good[-19:])
        missing = self.path / "missing.cub"
        cases = [(missing, "does not exist"), (self.path, "is a folder"), (empty, "is empty"),
                 (text, "is not a cube"), (cut, "cut.cub")]
        for file, fault in cases:
            for command in (("cube", "info", file), ("cube", "verify", file),
                            ("mdx", file, "BooksFNC", "SELECT FROM BooksFNC")):
                status, output, errors = run(*command)
                self.assertEqual((status, output), (1, ""), command)
                self.assertIn(fault, errors, command)
                self.assertIn(str(file), errors, command)
                self.assertEqual(len(errors.splitlines()), 1, command)
        for command in ("info", "verify"):
            status, _, errors = run("cube", command, "http://server/msmdpump.dll")
            self.assertEqual(status, 1)
            self.assertIn("address of a server, where a cube file is needed", errors)
            self.assertEqual(run("eval", value_formula(file))[:2], (0, "0\n"))
            self.assertRegex(run("explain", value_formula(file))[1], rf"#err -\d+\nreason: .*{fault}")
        status, _, errors = run("cube", "verify", flipped)
        self.assertEqual(status, 1)
        self.assertIn("flipped.cub", errors)

    def test_wrong_things_asked(self):
        (self.path / "typo.json").write_text((BOOKS / "books.json").read_text().replace('"measures"', '"mesures"', 1))
        (self.path / "syntax.json").write_text('{ "cubes": [ }')
        quotes = self.path / "quotes"
        copy_books(quotes, '2024-02-01,"4000,A1,100,S,10,1\n')
        out = self.path / "never.cub"
        cases = [
            (("mdx", self.cube, "NopeFNC", "SELECT FROM NopeFNC"), ["NopeFNC", "BooksFNC"]),
            (("mdx", self.cube, "", "SELECT FROM BooksFNC"), ["No cube is named", "BooksFNC", "FlatFNC"]),
            (("mdx", self.cube, "BooksFNC", "SELECT FRM BooksFNC"), ["FRM"]),
            (("mdx", self.cube, "BooksFNC", ""), [""]),
            (("mdx", self.cube, "BooksFNC", "SELECT {[Firma].[99]} ON 0 FROM BooksFNC"), ["99"]),
            (("mdx", "a;b.cub", "BooksFNC", "SELECT FROM BooksFNC"), ["b.cub", "';'"]),
            (("cube", "build", self.path / "typo.json", "--output", out), ["cubes[0]", "measures"]),
            (("cube", "build", self.path / "syntax.json", "--output", out), ["syntax.json", "line 1"]),
            (("cube", "build", self.path / "none.json", "--output", out), ["none.json"]),
            (("cube", "build", self.path, "--output", out), [str(self.path)]),
            (("cube", "build", quotes / "books.json", "--output", out), ["ledger.csv", "line 9"]),
            (("cube", "build", BOOKS / "books.json", "--output", self.path / "no" / "x.cub"), ["x.cub"]),
            (("cube", "build", BOOKS / "books.json", "--output", self.path), [str(self.path)]),
        ]
        for command, parts in cases:
            status, output, errors = run(*command)
            self.assertEqual((status, output), (1, ""), command)
            self.assertTrue(errors.startswith("qel: "), errors)
            for part in parts:
                self.assertIn(part, errors, command)
        self.assertFalse(out.exists())

    def test_wrong_usage(self):
        cases = [((), ""), (("frobnicate",), "'frobnicate'"), (("eval", "--frob"), "--frob"), (("explain",), ""),
                 (("mdx", "a.cub"), ""), (("cube",), ""), (("cube", "frob"), "'frob'"), (("cube", "verify"), ""),
                 (("cube", "build", "a.json"), "--output"), (("cube", "build", "a.json", "-o", ""), "--output"),
                 (("mdx", "a", "b", "c", "--csv", "--json"), ""), (("explain", "=F()", "=G()"), "")]
        cases += [(("--date-order", order, "eval", "=F()"), f"--date-order takes dmy, mdy or ymd, not {order}\n")
                  for order in ("xyz", "0", "1")]
        for command, part in cases:
            status, output, errors = run(*command)
            self.assertEqual((status, output), (2, ""), command)
            self.assertNotEqual(errors, "", command)
            self.assertIn(part, errors, command)

    def test_help_and_version(self):
        for command in ((), ("eval",), ("explain",), ("mdx",), ("cube",), ("cube", "draft"), ("cube", "build"), ("cube", "info"),
                        ("cube", "verify")):
            status, output, errors = run(*command, "--help")
            self.assertEqual((status, errors), (0, ""), command)
            self.assertIn("Usage:", output, command)
            if command not in ((), ("cube",)):
                self.assertIn("Example", output, command)
        self.assertRegex(run("--version")[1], r"^qel \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    QEL = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main(verbosity=2)
