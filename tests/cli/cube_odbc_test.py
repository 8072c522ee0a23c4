#!/usr/bin/env python3
"""Builds cubes from the tables of SQLite and PostgreSQL, through their ODBC drivers."""
import contextlib
import csv
import json
import os
import pathlib
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

QEL = ""
LEDGER = pathlib.Path(__file__).resolve().parent.parent.parent / "examples" / "ledger"
PASSWORD = "s3cr;t}ב"  # what the syntax of connections gives a meaning


class Postgres:
    """A server of its own in a folder, which asks for a password. It does not run as the administrator."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="qel-test-", dir="/tmp"))  # a socket's path is short
        self.programs = max(pathlib.Path("/usr/lib/postgresql").glob("*/bin"))
        self.as_user = []
        if os.geteuid() == 0:
            shutil.chown(self.folder, "postgres")
            self.as_user = ["runuser", "-u", "postgres", "--"]
        (self.folder / "password").write_text(PASSWORD, encoding="utf-8")
        self.run("initdb", "-D", self.folder / "data", "-U", "reader", "-A", "scram-sha-256", "--no-sync", "-E", "UTF8",
                 "--locale=C", "--pwfile", self.folder / "password")
        self.start()

    def run(self, program, *arguments):
        subprocess.run([*self.as_user, self.programs / program, *arguments], check=True, stdout=subprocess.DEVNULL,
                       cwd=self.folder, timeout=120)

    def start(self):
        self.run("pg_ctl", "-D", self.folder / "data", "-w", "-l", self.folder / "log", "-o",
                 f"-F -k {self.folder} -c listen_addresses=", "start")

    def stop(self):
        self.run("pg_ctl", "-D", self.folder / "data", "-m", "immediate", "stop")

    def execute(self, sql):
        subprocess.run([self.programs / "psql", "-q", "-h", self.folder, "-U", "reader", "-d", "postgres", "-v", "ON_ERROR_STOP=1"],
                       input=sql, text=True, check=True, env={**os.environ, "PGPASSWORD": PASSWORD}, timeout=120)

    def remove(self):
        with contextlib.suppress(subprocess.CalledProcessError):
            self.stop()
        shutil.rmtree(self.folder)

    @property
    def connection(self):
        return (f"Driver=PostgreSQL Unicode;Server={self.folder};Database=postgres;UID=reader;PWD=${{LEDGER_PASSWORD}};"
                "UseDeclareFetch=1;Fetch=100")


class Databases(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Postgres()
        cls.addClassCleanup(cls.server.remove)

    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        self.sqlite = f"Driver=SQLite3;Database={self.path / 'ספר.db'}"
        self.environment = {**os.environ, "LEDGER_PASSWORD": PASSWORD}

    def start_qel(self, *arguments):
        return subprocess.Popen([QEL, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                cwd=self.path, env=self.environment)

    def run_qel(self, *arguments):
        with self.start_qel(*arguments) as qel:
            output, errors = qel.communicate(timeout=120)
        return qel.returncode, output, errors

    def query_sqlite(self, script):
        with contextlib.closing(sqlite3.connect(self.path / "ספר.db")) as database:
            database.executescript(script)

    def define(self, connection, query="SELECT * FROM lines", **table):
        """A definition of one table with accounts, days and amounts."""
        (self.path / "books.json").write_text(json.dumps({
            "tables": {"lines": {"odbc": connection, "query": query, **table}},
            "cubes": [{"name": "Books", "facts": "lines",
                       "dimensions": [{"name": "Account", "column": "account"},
                                      {"name": "Date", "column": "day", "calendar": {"periods": "days"}}],
                       "measures": [{"name": "Amount", "column": "amount"}]}]}), encoding="utf-8")

    def build(self, *options):
        return self.run_qel("cube", "build", "books.json", "--output", "books.cub", *options)

    def load_example(self):
        """Puts the example's files into both databases: texts in the one, dates and exact numbers in the other."""
        for file in LEDGER.glob("*.csv"):
            with open(file, encoding="utf-8", newline="") as lines:
                header, *rows = csv.reader(lines)
            types = {"date": "date", "amount": "numeric(18, 2)", "quantity": "numeric"} if file.stem == "ledger" else {}
            columns = ", ".join(f'"{column}" {types.get(column, "text")}' for column in header)
            self.server.execute(f"CREATE TABLE {file.stem} ({columns});\n"
                                f"\\copy {file.stem} FROM '{file}' (FORMAT csv, HEADER)\n")
            with contextlib.closing(sqlite3.connect(self.path / "ספר.db")) as database, database:
                database.execute(f"CREATE TABLE {file.stem} ({columns.replace('numeric', 'text')})")
                database.executemany(f"INSERT INTO {file.stem} VALUES ({', '.join('?' * len(header))})", rows)

    def test_the_example_gives_what_its_files_give(self):
        self.load_example()
        self.assertEqual(self.run_qel("cube", "build", LEDGER / "ledger.json", "--output", "files.cub")[0], 0)
        text = (LEDGER / "ledger.json").read_text(encoding="utf-8")
        statement = ("SELECT {[Date].[Year].Members} ON 0, NON EMPTY CrossJoin([Accounts].[AccountNames].Members, [Firma].Members) ON 1 "
                     "FROM CUBE WHERE [Measures].[MEASURE]")
        for database, connection in (("sqlite", self.sqlite), ("postgres", self.server.connection)):
            (self.path / f"{database}.json").write_text(re.sub(
                r'"file": "(\w+)\.csv"', lambda table: f'"odbc": "{connection}", "query": "SELECT * FROM {table[1]}"', text),
                encoding="utf-8")
            status, output, errors = self.run_qel("cube", "build", f"{database}.json", "--output", f"{database}.cub")
            self.assertEqual((status, errors), (0, ""), database)
            self.assertIn("lines read 52134, kept 52134, skipped 0", output)
            self.assertEqual(self.run_qel("cube", "verify", f"{database}.cub")[0], 0)
            for measure in ("Amount", "Quantity"):
                for cube in ("LedgerFNC", "LedgerHebrewFNC"):
                    asked = statement.replace("CUBE", cube).replace("MEASURE", measure)
                    expected, found = (self.run_qel("mdx", file, cube, asked, "--json") for file in ("files.cub", f"{database}.cub"))
                    self.assertEqual(expected[0], 0, expected[2])
                    self.assertEqual(found, expected, (database, measure, cube))

    def test_odd_values(self):
        self.query_sqlite("""CREATE TABLE lines (account text, day text, amount);
            INSERT INTO lines VALUES ('תל "אביב"; ''א''', '2024-01-31 12:30:00', '1.10'), ('𝄞]', '2024-02-29', -3),
                                     (NULL, '2024-02-29', 0.25), (' b' || char(160), '2024-03-01', NULL), ('"c', 'x', 1)""")
        self.define(self.sqlite)
        status, _, errors = self.build("--skip-bad-lines", "bad.csv")
        self.assertEqual((status, errors), (0, "qel cube build: 1 line could not be used; it is in bad.csv\n"))
        rows = json.loads(self.run_qel("mdx", "books.cub", "Books", "SELECT [Account].[Account].Members ON 0 FROM Books",
                                       "--json")[1])
        self.assertEqual([member["members"][0]["name"] for member in rows["axes"][0]], ["All", "b", 'תל "אביב"; \'א\'', "𝄞]"])
        self.assertEqual(rows["cells"], [[-1.65, 0, 1.1, -3]])
        self.assertIn('skipped_line,skipped_reason,"account","day","amount"\n5,', (self.path / "bad.csv").read_text("utf-8"))

    def test_what_cannot_be_read_is_told(self):
        self.query_sqlite(f"""CREATE TABLE lines (account text, day text, amount);
            INSERT INTO lines VALUES ('a', '2024-01-31', '1.10'), ('b', '31/02/2024', '2'), ('c', '2024-01-01', '1,5');
            CREATE TABLE large (account text, day text, amount decimal(18, 2));
            INSERT INTO large VALUES ('a', '2024-01-31', 9999999999999.99), ('a', '2024-01-31', -12345678901234.56);
            CREATE TABLE long AS SELECT '{"x" * 9000}' AS account, '2024-01-31' AS day, 1 AS amount""")
        server = self.server.connection
        cases = [
            (self.sqlite, "SELECT * FROM lines", 'table "lines", row 2, column day: '),
            (self.sqlite, "SELECT * FROM lines WHERE account = 'c'", 'table "lines", row 1, column amount: expected an amount'),
            (self.sqlite, "SELECT account FROM lines", 'table "lines": there is no column "day"; the columns are "account" (error'),
            (self.sqlite, "SELECT * FROM long", 'table "lines", row 1: column account: a text of more than 8192 bytes'),
            (self.sqlite, "SELECT * FROM missing", "no such table: missing"),
            (self.sqlite, "CREATE TABLE made (a text)", "the query gives no rows; it must be a SELECT"),
            ("Driver=Nowhere", "SELECT 1", '"odbcinst -q -d" lists the drivers, "odbcinst -q -s" the data sources'),
            ("DSN=nowhere", "SELECT 1", '"odbcinst -q -s"'),
            (self.sqlite, "SELECT * FROM lines WHERE account = '-'", 'table "lines" (its query answers no rows), column day: '),
            (self.sqlite, "SELECT 'a' AS account, '2024-01-31' AS day, 1e13 AS amount", "make it exact in the query, in SQLite with "
             "printf('%.2f', amount)"),
            (self.sqlite, "SELECT * FROM large", 'table "lines", row 2, column amount: the number -12345678901234.6 comes from '),
            (server, "SELECT 'a' AS account, '2024-01-31' AS day, 1e18::float8 AS amount", "CAST(amount AS DECIMAL(19, 2))"),
            (server, "SELECT 1/0 AS account", "division by zero"),
            (server.replace("PASSWORD", "WORD"), "SELECT 1", "books.json: tables.lines.odbc: the environment variable LEDGER_WORD"),
            (server.replace("${LEDGER_PASSWORD}", "{open;sesame}"), "SELECT 1", "tables.lines.odbc: holds a password"),
        ]
        for connection, query, message in cases:
            with self.subTest(query=query, connection=connection):
                self.define(connection, query)
                status, output, errors = self.build()
                self.assertEqual((status, output), (1, ""))
                self.assertIn(message, errors)
                self.assertFalse((self.path / "books.cub").exists())
        self.define(self.sqlite, "SELECT * FROM made")
        self.assertIn("no such table: made", self.build()[2], "a query that was refused has no effect")
        self.define(server)
        # The second one is a word of the database's message.
        for wrong, told in (("wrong{;}pass", "password authentication failed"), ("authentication", r"password \*\*\* failed")):
            self.environment["LEDGER_PASSWORD"] = wrong
            status, _, errors = self.build()
            self.assertEqual(status, 1)
            self.assertRegex(errors, 'table "lines": cannot connect: .*' + told)
            self.assertNotIn(wrong, errors)
        for key, message in (("file", "not both"), ("delimiter", 'unknown key "delimiter"')):
            self.define(server, **{key: ";"})
            self.assertIn(message, self.build()[2])

    def test_a_database_that_goes_away_leaves_the_old_cube(self):
        self.query_sqlite("CREATE TABLE lines AS SELECT 'a' AS account, '2024-01-31' AS day, 7 AS amount")
        self.define(self.sqlite)
        self.assertEqual(self.build()[0], 0)
        before = (self.path / "books.cub").read_bytes()
        slow = ("SELECT n::text AS account, date '2024-01-31' AS day, n AS amount, pg_sleep(0.002) "
                "FROM generate_series(1, 100000) AS n")
        self.define(self.server.connection, slow)
        for end in ("server", "interrupt"):
            with self.subTest(end=end), self.start_qel("cube", "build", "books.json", "--output", "books.cub") as qel:
                time.sleep(3)  # some blocks of rows
                self.assertIsNone(qel.poll())
                self.server.stop() if end == "server" else qel.send_signal(signal.SIGINT)
                _, errors = qel.communicate(timeout=30)
                self.assertNotEqual(qel.returncode, 0)
                self.assertRegex(errors, r'table "lines": after row [1-9]\d* of the answer: ' if end == "server" else "stop|interrupt|ended")
                self.assertEqual((self.path / "books.cub").read_bytes(), before)
                self.assertEqual(sorted(file.suffix for file in self.path.iterdir()), [".cub", ".db", ".json"])
            if end == "server":
                self.server.start()


if __name__ == "__main__":
    QEL = os.path.abspath(sys.argv.pop())
    unittest.main()
