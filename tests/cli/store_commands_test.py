#!/usr/bin/env python3
"""Runs qel's settings, lang and members commands as a new user does, over the example ledger."""
import csv
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

QEL = ""
EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples"


def read_csv(table):
    with open(EXAMPLES / "ledger" / f"{table}.csv", encoding="utf-8-sig", newline="") as file:
        return list(csv.DictReader(file))


class WithLedger(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-store-")))
        cls.cube = cls.path / "ledger.cub"
        cls.environment = dict(os.environ, XDG_CONFIG_HOME=str(cls.path / "config"))
        cls.ran = cls.run_qel("cube", "build", EXAMPLES / "ledger" / "ledger.json", "--output", cls.cube)

    @classmethod
    def run_qel(cls, *arguments):
        done = subprocess.run([QEL, *map(str, arguments)], capture_output=True, env=cls.environment, timeout=120)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def setUp(self):
        self.assertEqual(self.ran[0], 0, self.ran[2])

    def good(self, *arguments):
        status, output, messages = self.run_qel(*arguments)
        self.assertEqual(status, 0, f"{arguments}: {messages}")
        return output, messages

    def members(self, kind, *options, cube="LedgerFNC"):
        output, messages = self.good("members", self.cube, cube, "--kind", kind, *options)
        return [line.split("\t") for line in output.splitlines()], messages


class Members(WithLedger):
    def test_every_kind_lists_what_the_ledger_has(self):
        cases = [
            ("accounts", ["--obs", "OBS"], ["1111", "Land and buildings"]),
            ("accounts", ["--obs", "OBS", "--firma", "All"], ["1111", "Land and buildings"]),
            ("obs", ["--obs", "OBS", "--level", "Level1"], ["North"]),
            ("obs", ["--obs", "OBS", "--sub-member", "1", "--level", "level3"], ["Afula \"Big\""]),
            ("summary-codes", ["--obs", "OBS", "--level", "SuperSum1"], ["1", "Fixed assets"]),
            ("summary-names", ["--obs", "OBS", "--level", "SuperSum1Name"], ["Fixed assets"]),
            ("summary", ["--level", "SuperSum2"], ["11", "Property and equipment"]),
        ]
        for kind, options, first in cases:
            with self.subTest(kind=kind, options=options):
                rows, _ = self.members(kind, *options)
                self.assertIn(first, rows)

    def test_lists_agree_with_the_csv_files(self):
        lines = read_csv("ledger")
        numbered = {row["code"] for row in read_csv("obs_numbers") if row["obs_name"] == "OBS"}
        under_obs = [line for line in lines if line["obs_number"] in numbered]
        cases = [
            ("accounts", ["--obs", "OBS"], {line["account"] for line in under_obs}),
            ("accounts", ["--obs", "OBS", "--firma", "20"],
             {line["account"] for line in under_obs if line["firm"] == "20"}),
            ("cost-centers", [], {line["cost_centre"] for line in lines}),
            ("activities", ["--obs", "OBS"], {line["activity"] for line in under_obs}),
        ]
        for kind, options, expected in cases:
            with self.subTest(kind=kind, options=options):
                rows, messages = self.members(kind, *options)
                self.assertTrue(expected)
                self.assertEqual({row[0] for row in rows}, expected)
                self.assertIn(f": {len(rows)}\n", messages)

    def test_a_recordset_has_a_field_for_each_level(self):
        rows, _ = self.members("accounts", "--obs", "OBS", "--recordset")
        self.assertEqual(rows[0][:2], ["[Accounts].[AccountCodes].[AccountCode].[MEMBER_CAPTION]",
                                       "[Accounts].[AccountNames].[AccountName].[MEMBER_CAPTION]"])
        codes, _ = self.members("account-codes", "--obs", "OBS", "--recordset")
        self.assertEqual(len(rows), len(codes))
        groups, _ = self.members("summary", "--obs", "OBS", "--firma", "10", "--level", "SuperSum1", "--recordset")
        self.assertTrue(any(row[:2] == ["Fixed assets", "Fixed assets"] for row in groups[1:]))
        self.assertEqual(self.members("obs-levels", "--obs", "OBS", "--sub-member", "1")[0], [["3"]])

    def test_the_statement_alone(self):
        output, _ = self.good("members", self.cube, "LedgerFNC", "--kind", "obs", "--obs", "OBS", "--level", "Level2",
                              "--sub-member", "1", "--statement")
        self.assertEqual(output, "SELECT {[MoneyType]} on columns, non empty{[OBS].[Level2].members }on rows FROM "
                                 "LedgerFNC WHERE [ActX].[OBSx].[All].[OBS].[1]\n")

    def test_another_list_than_was_meant_is_told(self):
        centres, _ = self.members("cost-centers", "--obs", "OBS")
        rows, messages = self.members("obs", "--obs", "OBS", "--level", "lev")
        self.assertEqual(rows, centres)
        self.assertTrue(messages.startswith("qel: 'lev' does not begin with \"level\", so cost centres are listed\n"))

    def test_a_user_without_settings_gets_the_list_too(self):
        environment = {name: value for name, value in self.environment.items() if name not in ("HOME", "XDG_CONFIG_HOME")}
        done = subprocess.run([QEL, "members", self.cube, "LedgerFNC", "--kind", "summary", "--level", "SuperSum1"],
                              capture_output=True, env=environment, timeout=120, check=True)
        self.assertRegex(done.stderr.decode(), r"^Summary Group: \d+\n$")

    def test_what_cannot_be_listed_fails_with_the_reason(self):
        cases = [
            ("a firm after the closed slicer", ["--kind", "summary", "--level", "SuperSum1", "--firma", "10"], 1),
            ("a sub-member after the closed slicer",
             ["--kind", "summary-codes", "--obs", "OBS", "--level", "SuperSum1", "--sub-member", "1"], 1),
            ("an unknown level", ["--kind", "obs", "--obs", "OBS", "--level", "Level9"], 1),
            ("All in other letters is a firm", ["--kind", "accounts", "--obs", "OBS", "--firma", "aLL "], 1),
            ("an empty sub-member", ["--kind", "activities", "--obs", "OBS", "--sub-member", ""], 1),
            ("no OBS number", ["--kind", "accounts"], 2),
            ("an unknown kind", ["--kind", "acounts", "--obs", "OBS"], 2),
            ("no such recordset", ["--kind", "summary-codes", "--obs", "OBS", "--level", "SuperSum1", "--recordset"], 2),
        ]
        for what, options, expected in cases:
            with self.subTest(what):
                status, output, messages = self.run_qel("members", self.cube, "LedgerFNC", *options)
                self.assertEqual((status, output), (expected, ""), messages)
                self.assertGreater(len(messages), 20)


class Settings(WithLedger):
    def settings(self):
        return {line.split("\t")[0]: line.split("\t")[1:] for line in self.good("settings")[0].splitlines()}

    def test_a_new_user_sets_the_suite_up_and_lists_accounts_in_hebrew(self):
        self.assertEqual(self.settings()["MDBPath"][0], "(not set)")
        status, _, messages = self.run_qel("settings", "set", "QelUILanguage", "1")
        self.assertEqual(status, 1)
        self.assertIn("settings set MDBPath", messages)

        suite = self.path / "הנהלת חשבונות"
        self.good("settings", "set", "mdbpath", f"{suite}/")
        self.good("settings", "set", "QelUILanguage", "1")
        self.good("settings", "set", "FileCube", self.cube)
        self.assertEqual((suite / "Cub.ini").read_text(), f"[FileCube]\nF={self.cube}\n")
        rows, messages = self.members("accounts", "--obs", "OBS", cube="LedgerHebrewFNC")
        self.assertIn(["1111", "קרקע ומבנים"], rows)
        self.assertEqual(messages, f"רשימת חשבונות: {len(rows)}\n")

        self.assertIn("missing; engine: SQLite", self.settings()["local database"][1])
        self.good("settings", "make-database")
        status, _, messages = self.run_qel("settings", "make-database")
        self.assertEqual(status, 1)
        self.assertIn("already exists", messages)
        shown = self.settings()
        self.assertEqual(shown["MDBPath"][0], str(suite))
        self.assertEqual(shown["QelUILanguage"], ["1", f"[Qel] of {suite}/Qel.ini"])
        self.assertEqual(shown["FileCube"][0], str(self.cube))
        self.assertTrue(shown["local database"][1].startswith("there; engine: SQLite"))

        (suite / "QelFunction17.mdb").write_bytes(b"\0\1\0\0Standard Jet DB\0")
        self.assertIn("Microsoft Jet", self.settings()["local database"][1])
        (suite / "Qel.ini").write_text("[Qel]\nQelUILanguage 1\n")
        status, _, messages = self.run_qel("settings", "set", "QelUILanguage", "0")
        self.assertEqual(status, 1)
        self.assertIn("line 2", messages)
        self.assertEqual((suite / "Qel.ini").read_text(), "[Qel]\nQelUILanguage 1\n")

    def test_wrong_settings_change_nothing(self):
        kept = self.path / "kept"
        self.good("settings", "set", "MDBPath", kept)
        (self.path / "file").write_text("")
        before = (self.path / "config" / "qel" / "settings.ini").read_bytes()
        for name, value, expected in [("QelUILanguage", "he", 2), ("MdbPaths", "/x", 2), ("TempPath", "", 2),
                                      ("TempPath", " ", 2), ("MDBPath", f"{self.path}/two\nlines", 2),
                                      ("MDBPath", "/proc/none/such", 1), ("MDBPath", self.path / "file", 1)]:
            with self.subTest(name):
                status, _, messages = self.run_qel("settings", "set", name, value)
                self.assertEqual(status, expected, messages)
                self.assertEqual((self.path / "config" / "qel" / "settings.ini").read_bytes(), before)
        self.assertEqual(self.settings()["MDBPath"][0], str(kept))
        self.assertEqual(list(self.path.glob("two*")), [])
        self.good("settings", "set", "MDBPath", f"  {kept} ")
        self.assertEqual(self.settings()["MDBPath"][0], str(kept))

    def test_a_configuration_folder_that_cannot_be_made_is_named(self):
        (self.path / "no folder").write_text("")
        environment = dict(self.environment, XDG_CONFIG_HOME=str(self.path / "no folder"))
        done = subprocess.run([QEL, "settings", "set", "TempPath", "/x"], capture_output=True, text=True,
                              env=environment, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"^qel: the folder [^\n]*no folder/qel cannot be made: [^\n]+\n$")

    def test_files_that_cannot_be_understood_are_told(self):
        suite = self.path / "told"
        self.good("settings", "set", "MDBPath", suite)
        self.assertEqual(self.good("settings")[1], "")
        (suite / "Cub.ini").write_bytes(b"\0\1junk\n")
        (suite / "Qel.ini").mkdir()
        _, messages = self.good("settings")
        self.assertRegex(messages, r"^qel: [^\n]*Qel\.ini' cannot be read: it is a folder\.\nqel: [^\n]*Cub\.ini' is left[^\n]* line 1 [^\n]*\n$")


class Lang(WithLedger):
    def test_the_example_is_whole_and_faults_are_listed(self):
        example = EXAMPLES / "lang" / "Lang.rs"
        output, _ = self.good("lang", "check", example)
        self.assertRegex(output, r"^language 0: (\d+) rows\nlanguage 1: \1 rows\n$")
        text = example.read_text(encoding="utf-8")
        broken = self.path / "Lang.rs"
        broken.write_text(text.replace("lId='1' sId='1480'", "lId='1' sId='1481'"), encoding="utf-8")
        status, output, _ = self.run_qel("lang", "check", broken)
        self.assertEqual(status, 1)
        self.assertIn("  missing: 1480\n  more than once: 1481\n", output)
        for what, content in [("cut off", text[:900]), ("binary", "TG!\0"), ("empty", ""),
                              ("no number", text.replace("sId", "number"))]:
            with self.subTest(what):
                broken.write_text(content, encoding="utf-8")
                status, output, messages = self.run_qel("lang", "check", broken)
                self.assertEqual((status, output), (1, ""))
                self.assertIn(str(broken), messages)


if __name__ == "__main__":
    QEL = sys.argv.pop(1)
    unittest.main()
