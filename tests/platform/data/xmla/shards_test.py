#!/usr/bin/env python3
"""Runs qel over a server whose facts lie on several PostgreSQL servers (scripts/mondrian/shards.py)."""
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


def control(number, *action):
    """Stops or starts a server; 0 is the coordinator."""
    subprocess.run([*AS_USER, PROGRAMS / "pg_ctl", "-D", DATA[number], "-w", "-m", "immediate", *action], check=True,
                   stdout=subprocess.DEVNULL, cwd="/", timeout=60)


def run_at_coordinator(*statements):
    commands = [word for statement in statements for word in ("-c", statement)]
    subprocess.run([PROGRAMS / "psql", "-Xq", "-v", "ON_ERROR_STOP=1", "-h", "127.0.0.1", "-p", PORTS[0], "-U", "cubes", "-d", "postgres",
                    *commands], check=True, stdout=subprocess.DEVNULL, timeout=60)


class SpreadFacts(unittest.TestCase):
    sheet = served.ServedCube.sheet

    @classmethod
    def setUpClass(cls):
        # Every statement's plan is written to the coordinator's log.
        settings = ("session_preload_libraries = auto_explain", "auto_explain.log_min_duration = 0", "auto_explain.log_verbose = on")
        run_at_coordinator("LOAD 'auto_explain'", *(f"ALTER SYSTEM SET {setting}" for setting in settings), "SELECT pg_reload_conf()")
        time.sleep(1)

    def values(self, source, formulas):
        status, output, _ = served.run("eval", stdin="\n".join(formulas))
        self.assertEqual(len(output.splitlines()), len(formulas), source)
        return output.splitlines()

    def test_values_are_those_of_the_cube_file_and_shards_do_the_sums(self):
        formulas = self.sheet(served.SERVER)
        right = self.values("file", self.sheet(served.CUBE))
        for text, expected, value in zip(formulas, right, self.values("server", formulas)):
            self.assertTrue(served.same(expected, value), f"{value} instead of {expected}: {text}")
        plans = [plan for plan in pathlib.Path(DATA[0] + ".log").read_text().split("Query Text: ")[1:] if "Foreign Scan" in plan]
        self.assertGreater(len(plans), 10)
        for plan in plans:
            for remote in re.findall("Remote SQL: (.*)", plan):
                self.assertRegex(remote, r"sum\(.* GROUP BY", plan)


if __name__ == "__main__":
    served.QEL = sys.argv.pop(1)
    unittest.main()
