#!/usr/bin/env python3
"""Runs qel over a real server as a person does. QEL_SERVER is its address, QEL_CUBE the file it was filled from."""
import csv
import os
import pathlib
import re
import subprocess
import sys
import unittest

from server_proxy import Proxy

QEL = ""
BUSY = ('6111', '6121', '2121')  # accounts with postings in every month
CUBE, SERVER = os.environ["QEL_CUBE"], os.environ["QEL_SERVER"]
LEDGER = pathlib.Path(__file__).resolve().parents[4] / "examples" / "ledger"


def run(*arguments, stdin=""):
    servers = {server for text in (stdin, *map(str, arguments)) for server in re.findall(r"https?://[^\s\"/]+", text)}
    options = [word for server in servers for word in ("--allow-server", server)]
    done = subprocess.run([QEL, *options, *arguments], input=stdin.encode(), capture_output=True, timeout=600)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def formula(source, account="All", month=1, cube="LedgerFNC", firm="All", level="All", member="All", group="All",
            group_member="All", measure="Amount", first_month=None, function="QelFuncDemo"):
    return (f'={function}("{source}","{cube}",{{"OBS"}},{{"1"}},{{"{level}"}},{{"{member}"}},{{"All"}},"{group}",'
            f'"{group_member}","{account}","{measure}","All","All","All","{firm}","All",'
            f'"01/{first_month or month:02}/2024","28/{month:02}/2024")')


def same(local, served):
    """Whether two values are equal up to rounding. Of errors only the kind is compared, because numbers differ by provider."""
    try:
        return abs(float(local) - float(served)) < 0.0005
    except ValueError:
        return local.split(" ")[0] == served.split(" ")[0]


class ServedCube(unittest.TestCase):
    def assert_same(self, formulas, local, served):
        self.assertEqual(len(local), len(formulas))
        self.assertEqual(len(served), len(formulas))
        for text, expected, value in zip(formulas, local, served):
            self.assertTrue(same(expected, value), f"{value} instead of {expected}: {text}")

    def sheet(self, source):
        """A sheet's formulas: a table, totals, other and unknown members, names, and a formula over the cube file."""
        with open(LEDGER / "accounts.csv", encoding="utf-8") as file:
            accounts = [row["code"] for row in csv.DictReader(file)][:40]
        formulas = [formula(source, account, month) for account in [*accounts, "9999", "]"] for month in range(1, 13)]
        formulas += [formula(source, account, 12, first_month=1) for account in accounts]
        formulas += [formula(source, firm=firm, month=3, first_month=2) for firm in ("10", "20", "99")]
        formulas += [formula(source, level="Level3", member=name, month=6)
                     for name in ("Be'er Sheva", "Afula \u00a0Big\u00a0", "Lod [A]", "Office", "nowhere")]
        formulas += [formula(source, group="SuperSum1", group_member=str(group)) for group in range(10)]
        formulas += [formula(source, cube="LedgerHebrewFNC", account=account) for account in accounts[:3]]
        formulas += [formula(source, measure=measure) for measure in ("Lines", "Quantity", "None")]
        formulas += [f'=QelName("{source}","LedgerFNC","SuperSum2","11")', formula(CUBE, BUSY[0]),
                     formula(source, month=2, first_month=3), formula(source, cube="NoSuchCube")]
        return formulas

    def test_many_formulas_at_once_are_what_each_is_alone(self):
        formulas, local = self.sheet(SERVER), self.sheet(CUBE)
        status, output, errors = run("eval", stdin="\n".join(formulas))
        self.assertEqual((status, errors), (0, ""))
        self.assert_same(formulas, run("eval", stdin="\n".join(local))[1].splitlines(), output.splitlines())
        some = formulas[::29]
        alone = [run("eval", text)[1].strip() for text in some]
        self.assert_same(some, alone, output.splitlines()[::29])

    def test_few_statements_are_sent_for_many_cells(self):
        proxy = Proxy(SERVER)
        self.addCleanup(proxy.listener.close)
        formulas = [formula(proxy.address, account, month) for account in BUSY for month in range(1, 13)]
        run("eval", *formulas)
        self.assertLess(proxy.requests, 25, "the cube's description and one statement, not one per cell")

    def test_a_lost_server_is_opened_afresh(self):
        proxy = Proxy(SERVER)
        self.addCleanup(proxy.listener.close)
        expected = run("eval", formula(CUBE, BUSY[0]))[1].strip()
        self.assertNotEqual(float(expected), 0)
        with subprocess.Popen([QEL, "eval", "--allow-server", proxy.address], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as cells:
            def value():
                cells.stdin.write(formula(proxy.address, BUSY[0]) + "\n")
                cells.stdin.flush()
                return cells.stdout.readline().strip()
            self.assertTrue(same(expected, value()))
            proxy.drop_after = 0
            self.assertRegex(value(), "^#(ERR|err) -")
            proxy.drop_after = None
            self.assertTrue(same(expected, value()))
            cells.stdin.close()

    def test_a_sheet_stays_right_when_its_batch_fails_half_way(self):
        proxy = Proxy(SERVER)
        self.addCleanup(proxy.listener.close)
        formulas = [formula(proxy.address, account, month) for account in BUSY for month in range(1, 13)]
        local = [text.replace(proxy.address, CUBE) for text in formulas]
        expected = run("eval", *local)[1].splitlines()
        for requests in (9, 12, 14, 16):
            proxy.requests, proxy.drop_after = 0, requests
            values = run("eval", *formulas)[1].splitlines()
            self.assertEqual(len(values), len(expected))
            for value, right in zip(values, expected):
                self.assertTrue(same(right, value) or value.startswith("#"), f"{value} instead of {right}")

    def test_server_check(self):
        status, output, errors = run("server", "check", SERVER, "ledgerfnc")
        self.assertEqual((status, errors), (0, ""), output)
        for words in ("answered in", "Mondrian", "catalog:  LedgerFNC: LedgerFNC", "LedgerHebrewFNC: LedgerHebrewFNC",
                      "has everything that the formulas name", "formula:"):
            self.assertIn(words, output)
        status, output, errors = run("server", "check", SERVER, "Nothing")
        self.assertEqual(status, 1)
        self.assertIn("no catalog 'Nothing'", errors)
        status, _, errors = run("server", "check", CUBE)
        self.assertEqual(status, 2)
        self.assertIn("http://", errors)

    def test_faults_carry_the_servers_message(self):
        status, _, errors = run("mdx", SERVER, "LedgerFNC", "SELECT {[Nothing]} ON COLUMNS FROM LedgerFNC")
        self.assertEqual(status, 1)
        self.assertRegex(errors, "The server says: .*Nothing")


if __name__ == "__main__":
    QEL = sys.argv.pop(1)
    unittest.main()
