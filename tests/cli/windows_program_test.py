#!/usr/bin/env python3
"""qel.exe under Wine beside the native qel: the same bytes in files and pipes, over paths as only Windows has them."""
import os
import pathlib
import pty
import random
import select
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests" / "server"))
import script_values_test as script

NATIVE = WINDOWS = PREFIX = ""
FORMULAS = 10_000
BOOKS = ROOT / "tests" / "helpers" / "books"


def run(program, *arguments, stdin=b"", cwd=None):
    done = subprocess.run([program, *map(str, arguments)], input=stdin, capture_output=True, cwd=cwd, timeout=300)
    return done.returncode, done.stdout, done.stderr


def in_console(folder, *arguments, keys=lambda shown: b""):
    """The status, and what a console has shown; `keys` tells which to press once it has shown so much."""
    child, console = pty.fork()
    if child == 0:
        os.chdir(folder)
        os.environ["TERM"] = "xterm"  # a dumb one gets no progress line
        os.execv(ROOT / "scripts" / "wine", ["wine", os.environ["QEL_WINDOWS_PROGRAM"], *arguments])
    shown = b""
    while True:
        if select.select([console], [], [], 0.05)[0]:
            try:
                shown += os.read(console, 4096)
            except OSError:  # closed
                break
        os.write(console, keys(shown))
    os.close(console)
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), shown.decode()


class Console(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))

    def test_letters(self):
        status, shown = in_console(self.path, "cube", "verify", "ספר.cub")
        self.assertEqual((status, "'ספר.cub' does not exist" in shown), (1, True), shown)

    def write_long_build(self):
        (self.path / "long.csv").write_text("code,amount\n" + "7,1\n" * 4_000_000)
        (self.path / "long.json").write_text('''{"tables": {"t": {"file": "long.csv"}}, "cubes": [{"name": "LongFNC",
            "facts": ["t"], "dimensions": [{"name": "D", "column": "code"}],
            "measures": [{"name": "M", "column": "amount"}]}]}''')
        (self.path / "long.cub").write_text("the old file")

    def assert_old_file_alone(self):
        self.assertEqual(sorted(file.name for file in self.path.iterdir()), ["long.csv", "long.cub", "long.json"])
        self.assertEqual((self.path / "long.cub").read_text(), "the old file")

    def test_control_c_ends_a_build_and_leaves_the_old_file(self):
        self.write_long_build()
        once = iter([b"\x03"])
        keys = lambda shown: next(once, b"") if b"Reading long.csv" in shown and any(self.path.glob("*.tmp")) else b""
        status, shown = in_console(self.path, "cube", "build", "long.json", "-o", "long.cub", keys=keys)
        self.assertEqual((status, "interrupted; the cube file is as it was" in shown), (1, True), shown)
        self.assert_old_file_alone()

    def test_closing_the_window_ends_a_build_and_leaves_the_old_file(self):
        self.write_long_build()
        program = pathlib.Path(os.environ["QEL_WINDOWS_PROGRAM"])
        command = f'"Z:{program}" cube build long.json -o long.cub'.replace("/", "\\")
        status, _, errors = run(ROOT / "scripts" / "wine", program.parent / "console_closer.exe", "*.tmp", command, cwd=self.path)
        self.assertEqual((status, errors), (1, b"qel: interrupted; the cube file is as it was\n"))
        self.assert_old_file_alone()


class Windows(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        for name, program in (("native", NATIVE), ("windows", WINDOWS)):
            (cls.path / name).mkdir()
            for source in (ROOT / "examples" / "ledger" / "ledger.json", BOOKS / "books.json"):
                built = run(program, "cube", "build", source, "-o", f"{source.stem}.cub", cwd=cls.path / name)
                assert (built[0], built[2]) == (0, b""), built

    def same(self, *arguments, stdin=b""):
        """What both programs do, which is the same."""
        native, windows = (run(program, *arguments, stdin=stdin, cwd=self.path / name)
                           for name, program in (("native", NATIVE), ("windows", WINDOWS)))
        self.assertEqual(windows, native, arguments)
        return windows

    def test_cubes_have_the_same_bytes(self):
        for cube in ("ledger.cub", "books.cub"):
            self.assertEqual((self.path / "windows" / cube).read_bytes(), (self.path / "native" / cube).read_bytes(), cube)

    def test_formulas_have_the_same_values(self):
        pick = random.Random(19)
        formulas = []
        for number in range(FORMULAS):
            function, *arguments = script.value_call(pick, "QelF1", ("LedgerFNC", "LedgerHebrewFNC")[number % 2])
            formulas.append(f"={function}(\"ledger.cub\",{','.join(map(script.formula_argument, arguments))})\n")
        status, output, _ = self.same("eval", stdin="".join(formulas).encode())
        values = output.split()
        self.assertEqual((status, len(values)), (0, FORMULAS))
        self.assertGreater(len(set(values)), FORMULAS / 4)

    def test_texts_output_and_status_are_the_same(self):
        select = "SELECT {[Measures].[Amount]} ON 0, {[Accounts].[AccountNames].[AccountName].Members} ON 1 FROM LedgerHebrewFNC"
        for command in (
                ("mdx", "ledger.cub", "LedgerHebrewFNC", select), ("mdx", "ledger.cub", "LedgerHebrewFNC", "-", "--json"),
                ("cube", "info", "books.cub"), ("cube", "info", "books.cub", "--totals"), ("cube", "verify", "ledger.cub"),
                ("members", "ledger.cub", "LedgerFNC", "--kind", "cost-centers"),
                ("lang", "check", ROOT / "examples" / "lang" / "Lang.rs"), ("cube", "build", "--help"), ("mdx", "--help"),
                ("explain", "--dates"), ("check-workbook", ROOT / "examples" / "ledger" / "report.ods", "--json"), ("--version",),
                ("/x",), ("eval", "=F("), ("mdx", "ledger.cub", "Nope", "SELECT"),
                ("cube", "verify", "none.cub"), ("cube", "build", "none.json", "-o", "x.cub"), ("cube", "verify", "."),
                ("cube", "build", BOOKS / "books.json", "-o", "none/x.cub"), ("settings", "set", "QelUILanguage", "he")):
            self.same(*command, stdin=select.encode())
        for name, program in (("native", NATIVE), ("windows", WINDOWS)):
            self.assertEqual(run(program, "cube", "export", "books.cub", "--schema", "mondrian", "--sql", "sql",
                                 cwd=self.path / name)[::2], (0, b""), name)
        exported = [{file.relative_to(self.path / name): file.read_bytes() for file in (self.path / name / "sql").rglob("*.*")}
                    for name in ("native", "windows")]
        self.assertGreater(len(exported[0]), 3)
        self.assertEqual(*exported)

    def test_paths(self):
        share = pathlib.Path(PREFIX) / "dosdevices" / "unc" / "qel-test" / "share"
        share.parent.mkdir(parents=True, exist_ok=True)
        share.unlink(missing_ok=True)
        share.symlink_to(self.path)
        self.addCleanup(share.unlink)
        long = self.path.joinpath(*["a folder with a long name"] * 12)
        long.mkdir(parents=True)
        for what, path in (("Hebrew", self.path / "דוחות" / "ספר.cub"), ("a drive", f"Z:{self.path}\\drive.cub".replace("/", "\\")),
                           ("long", long / "books.cub"), ("a share", r"\\qel-test\share\books.cub")):
            with self.subTest(what):
                pathlib.Path(path).parent.mkdir(exist_ok=True) if isinstance(path, pathlib.Path) else None
                for again in (1, 2):  # over the first
                    status, output, errors = run(WINDOWS, "cube", "build", BOOKS / "books.json", "-o", path)
                    self.assertEqual((status, errors), (0, b""), again)
                    self.assertTrue(output.startswith(f"{path}: ".encode()), output)
                self.assertEqual(run(WINDOWS, "cube", "verify", path), (0, f"{path}: OK\n".encode(), b""))
                status, output, _ = run(WINDOWS, "mdx", path, "BooksFNC", "SELECT FROM BooksFNC", "--csv")
                self.assertEqual((status, output.split()[-1:]), (0, [b"-929.95"]))
        self.assertEqual([file.name for file in self.path.rglob("*.tmp")], [])


class Settings(unittest.TestCase):
    def test_they_are_those_of_the_add_in(self):
        key = r"HKCU\SOFTWARE\QRN\Pralix 17"
        registry = lambda *words: subprocess.run([ROOT / "scripts" / "wine", "reg", *words], capture_output=True, timeout=60)
        self.addCleanup(registry, "delete", key, "/f")
        with tempfile.TemporaryDirectory(prefix="qel-test-") as folder:
            suite = rf"Z:{folder}\הנהלת חשבונות".replace("/", "\\")
            for name, value in (("MDBPath", suite), ("QelUILanguage", "1"), ("FileCube", "ספר.cub")):
                self.assertEqual(run(WINDOWS, "settings", "set", name, value), (0, b"", b""))
            self.assertIn(pathlib.Path(folder).name.encode(), registry("query", key, "/v", "MDBPath").stdout)
            lines = {line.split("\t")[0]: line.split("\t")[1:] for line in run(WINDOWS, "settings")[1].decode().splitlines()}
            self.assertEqual(lines["MDBPath"], [suite, r"HKEY_CURRENT_USER\SOFTWARE\QRN\Pralix 17 of the registry"])
            self.assertEqual(lines["QelUILanguage"], ["1", rf"[Qel] of {suite}\Qel.ini"])
            self.assertEqual(lines["FileCube"][0], "ספר.cub")
            self.assertEqual(run(WINDOWS, "settings", "make-database")[0], 0)
            self.assertTrue((pathlib.Path(folder) / "הנהלת חשבונות" / "QelFunction17.mdb").read_bytes().startswith(b"SQLite"))


if __name__ == "__main__":
    NATIVE, WINDOWS = (str(pathlib.Path(argument).resolve()) for argument in sys.argv[1:3])
    PREFIX = os.environ.get("QEL_WINEPREFIX", ROOT / "build" / "wine")
    unittest.main(argv=sys.argv[:1], verbosity=2)
