#!/usr/bin/env python3
"""Runs qel over a server whose facts lie on several PostgreSQL servers (scripts/mondrian/shards.py)."""
import json
import os
import pathlib
import re
import subprocess
import sys
import time
import unittest

import server_program_test as served

PROGRAMS = max(pathlib.Path("/usr/lib/postgresql").glob("*/bin"))
PORTS, DATA = os.environ["QEL_PORTS"].split(), os.environ["QEL_DATA"].split()
AS_USER = ["runuser", "-u", "postgres", "--"] if os.geteuid() == 0 else []
COORDINATOR, SHARD = 0, 2  # a server's place in QEL_PORTS
VIEW = "ledgerfnc_facts__flat2"


def control(number, *action):
    """Stops or starts a server."""
    subprocess.run([*AS_USER, PROGRAMS / "pg_ctl", "-D", DATA[number], "-w", *action], check=True,
                   stdout=subprocess.DEVNULL, cwd="/", timeout=60)


def run_at(number, *statements):
    commands = [word for statement in statements for word in ("-c", statement)]
    return subprocess.run([PROGRAMS / "psql", "-XqAt", "-v", "ON_ERROR_STOP=1", "-h", "127.0.0.1", "-p", PORTS[number], "-U", "cubes",
                           "-d", "postgres", *commands], check=True, capture_output=True, text=True, timeout=60).stdout


def values(formulas):
    return served.run("eval", stdin="\n".join(formulas))[1].splitlines()


class SpreadFacts(unittest.TestCase):
    sheet, assert_same = served.ServedCube.sheet, served.ServedCube.assert_same

    @classmethod
    def setUpClass(cls):
        # Every statement's plan is written to the coordinator's log.
        settings = ("session_preload_libraries = auto_explain", "auto_explain.log_min_duration = 0", "auto_explain.log_verbose = on")
        run_at(COORDINATOR, "LOAD 'auto_explain'", *(f"ALTER SYSTEM SET {setting}" for setting in settings), "SELECT pg_reload_conf()")
        while not run_at(COORDINATOR, "SHOW session_preload_libraries").strip():
            time.sleep(0.1)

    def assert_right_or_error(self, right, values):
        """A month on a server that lives may have its sum."""
        self.assertEqual(len(values), len(right))
        wrong = [value for value, expected in zip(values, right) if not served.same(expected, value)]
        self.assertGreaterEqual(len(wrong), len(right) // 3)
        for value in wrong:
            self.assertRegex(value, "^#(err|ERR) -")

    def test_values_are_those_of_the_cube_file_and_shards_do_the_sums(self):
        formulas = self.sheet(served.SERVER)
        formulas += [served.formula(served.SERVER, month=month, firm=firm, measure=measure, group="SuperSum1", group_member=group)
                     for month in range(1, 13) for firm in ("All", "20") for measure in ("Amount", "Lines") for group in "128"]
        log = pathlib.Path(DATA[COORDINATOR] + ".log")
        before = log.stat().st_size
        self.assert_same(formulas, values([text.replace(served.SERVER, served.CUBE) for text in formulas]), values(formulas))
        logged = log.read_bytes()[before:].decode().split("Query Text: ")[1:]
        plans = [plan for plan in logged if "Foreign Scan" in plan and "__sums" not in plan]
        self.assertGreater(len(plans), 10)
        self.assertTrue(any("__sums" in plan for plan in logged), "names need no facts")
        for plan in plans:
            for statement in re.findall("Remote SQL: (.*)", plan):
                self.assertRegex(statement, r"sum\(.* GROUP BY", plan)

    def test_sums_of_all_months(self):
        # The first has all levels that its view shows, where the OLAP server might take rows for sums.
        for columns, rows in (("[MoneyType].[MoneyType]", "[Cost_Centers].[Cost_Center]"), ("[Measures]", "[Firma].[Firma]"),
                              ("[Measures]", "[Date].[Quarter]"), ("[Firma].[Firma]", "[Date].[Year]")):
            mdx = f"SELECT {{{columns}.Members}} ON COLUMNS, {{{rows}.Members}} ON ROWS FROM LedgerFNC"
            local, spread = (json.loads(served.run("mdx", source, "LedgerFNC", "--json", mdx)[1])["cells"]
                             for source in (served.CUBE, served.SERVER))
            self.assertGreater(len(local), 1)
            for right, row in zip(local, spread, strict=True):
                self.assertTrue(all(map(served.same, map(str, right), map(str, row))), f"{rows}: {row} instead of {right}")

    def test_a_shard_that_dies_gives_errors_and_no_smaller_sums(self):
        formulas = [served.formula(served.SERVER, account, month).replace("2024", "2023")
                    for account in served.BUSY for month in range(1, 13)]
        right = values([text.replace(served.SERVER, served.CUBE) for text in formulas])
        # A statement stands still at this shard when the others have answered.
        view = run_at(SHARD, f"SELECT pg_get_viewdef('{VIEW}')").rstrip("; \n")
        replace = f"CREATE OR REPLACE VIEW {VIEW} AS "
        run_at(SHARD, f"{replace} {view} CROSS JOIN (SELECT pg_sleep(60)) s")
        with subprocess.Popen([served.QEL, "eval", "--allow-server", served.SERVER], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              text=True) as recalculation:
            recalculation.stdin.write("\n".join(formulas))
            recalculation.stdin.close()
            while not run_at(SHARD, "SELECT pid FROM pg_stat_activity WHERE wait_event = 'PgSleep'").strip():
                time.sleep(0.1)
            control(SHARD, "-m", "immediate", "stop")
            self.assert_right_or_error(right, recalculation.stdout.read().splitlines())
        self.assert_right_or_error(right, values(formulas))
        control(SHARD, "-l", f"{DATA[SHARD]}.log", "-o", os.environ["QEL_OPTIONS"].split("\n")[SHARD], "start")
        run_at(SHARD, replace + view)
        self.assert_same(formulas, right, values(formulas))


if __name__ == "__main__":
    served.QEL = sys.argv.pop(1)
    unittest.main()
