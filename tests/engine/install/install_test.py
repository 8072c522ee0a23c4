#!/usr/bin/env python3
"""Installs the engine, builds the programs of docs/embedding.md with it and compares their answers with qel's."""
import argparse
import csv
import json
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[3]
STATEMENT = """SELECT {[Measures].[Amount]} ON COLUMNS, [SuperSumery].[SumeryName].[SuperSum1Name].Members ON ROWS
               FROM [LedgerFNC] WHERE ([Date].[2024])"""


def run(*command, status=0):
    done = subprocess.run([str(word) for word in command], capture_output=True, encoding="utf-8", timeout=300)
    assert done.returncode == status, f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}"
    return done.stdout if status == 0 else done.stderr


def sources_of(page):
    """The files that the page shows: "`name`" in the text, then a block of code."""
    shown = re.findall(r"`([\w.]+)`[^`]*\n```\w+\n(.*?)^```", page.read_text(encoding="utf-8"), re.S | re.M)
    return dict(shown)


class Embedding(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.folder = pathlib.Path(cls.temporary.name)
        for component in "engine", "programs":
            run("cmake", "--install", OPTIONS.build, "--component", component, "--prefix", cls.folder / component)
        source, cls.build = cls.folder / "source", cls.folder / "build"
        source.mkdir()
        for name, text in sources_of(ROOT / "docs/embedding.md").items():
            (source / name).write_text(text, encoding="utf-8")
        run("cmake", "-S", source, "-B", cls.build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={cls.folder / 'engine'}",
            f"-DCMAKE_CXX_COMPILER={OPTIONS.compiler}", f"-DCMAKE_CXX_FLAGS={OPTIONS.flags}",
            "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        run("cmake", "--build", cls.build)
        cls.cube = cls.folder / "ledger.cub"
        cls.report = run(cls.build / "nightly", ROOT / "examples/ledger/ledger.json", cls.cube,
                         cls.folder / "rejected.csv", cls.folder / "exported")

    def test_the_programs_answer_as_qel_does(self):
        qel = self.folder / "programs/bin/qel"
        expected = list(csv.reader(run(qel, "mdx", self.cube, "LedgerFNC", STATEMENT, "--csv").splitlines()))[1:]
        answer = [line.rsplit(": ", 1) for line in
                  run(self.build / "totals", self.cube, "LedgerFNC", STATEMENT).splitlines()]
        self.assertGreater(len(expected), 1)
        self.assertEqual([(name, float(value)) for name, value in answer],
                         [(name, float(value)) for name, value in expected])
        self.assertTrue(any(float(value) % 1 for _, value in answer))

    def test_a_build_is_reported_and_exported(self):
        self.assertRegex(self.report, r"^\d+ lines kept, 0 rejected\nLedgerFNC: 26067 facts\n")
        for name in "LedgerFNC.xml", "tables.sql", "rows.sql":
            self.assertIn(name + "\n", self.report)
            self.assertTrue((self.folder / "exported" / name).stat().st_size)

    def test_a_fault_is_told(self):
        fault = run(self.build / "totals", self.cube, "LedgerFNC", "SELECT [Nowhere] ON ROWS", status=1)
        self.assertIn("line 1, column", fault)

    def test_a_consumer_gets_the_public_headers_and_no_flags(self):
        headers = {path.relative_to(ROOT / "engine/include") for path in (ROOT / "engine/include").rglob("*.h")}
        engine = self.folder / "engine"
        self.assertEqual({path.relative_to(engine / "include") for path in engine.rglob("*.h")}, headers)
        page = (ROOT / "docs/embedding.md").read_text(encoding="utf-8")
        self.assertEqual(set(re.findall(r"^\| `(\w+\.h)`", page, re.M)), {path.name for path in headers})
        for command in json.loads((self.build / "compile_commands.json").read_text()):
            self.assertNotRegex(command["command"], r"-Werror|-Wall")
        for script in engine.rglob("*.cmake"):
            self.assertNotIn(str(ROOT), script.read_text(encoding="utf-8"))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("compiler")
    parser.add_argument("--flags", default="")
    OPTIONS = parser.parse_args()
    unittest.main(argv=["install_test"])
