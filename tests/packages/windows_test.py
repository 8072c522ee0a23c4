#!/usr/bin/env python3
"""Installs what a release has for Windows under Wine, uses it, and looks for what stays behind.

windows_test.py DIST CONTENTS [--stub STUB]: DIST is made by scripts/package, CONTENTS is what its installer holds. With a
STUB, the installer is made again with it: for a Wine that runs no 32-bit programs, amd64-unicode.
"""
import argparse
import getpass
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time
import unittest
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
ANSWERS = ["-1826089.27", "Fixed assets"]  # of docs/excel.md
SCRIPT = """Set qel = CreateObject("OrmFunctionQel4.OrmQelFunction")
cube = WScript.Arguments(0)
WScript.Echo qel.QelF1(cube, "LedgerFNC", Array("OBS"), Array("1"), Array("All"), Array("All"), Array("All"), "All", "", _
    "All", "Amount", "All", "P", "All", "All", "All", #1/1/2024#, #12/31/2024#)
WScript.Echo qel.QelName(cube, "LedgerFNC", "SuperSum1", "1")
If WScript.Arguments.Count > 1 Then
    Set files = CreateObject("Scripting.FileSystemObject")
    Do Until files.FileExists(WScript.Arguments(1))
        WScript.Sleep 100
    Loop
End If
"""
UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\OrmFuncQel4"
EXCEL = r"HKCU\Software\Microsoft\Office\16.0\Excel\Options"
ADD_INS = ["/R other.xlam", '/A "OrmFunctionQel4.OrmQelFunction"']  # of Excel, while ours is installed
OF_WINE = re.compile(r"\\Wine\\MenuFiles|\\Control\\Video|4D36E968-E325-11CE-BFC1-08002BE10318", re.IGNORECASE)  # shortcuts, displays
PENDING = re.compile(r'"PendingFileRenameOperations"=(.*\\\n)*.*\n?')  # what Windows deletes when it starts next:
UNTIL_THE_NEXT_START = re.compile(r"/Temp/~nsu\w+\.tmp(/|$)")  # where an uninstaller's copy of itself ran


def make_setup(version, target):
    stub = [OPTIONS.stub] if OPTIONS.stub else []
    subprocess.run([ROOT / "packaging/windows/make-setup", OPTIONS.contents, version, target, *stub], check=True)
    return target


class Windows(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-windows-")))
        home = cls.folder / "home"  # Wine puts shortcuts there
        home.mkdir()
        cls.environment = {**os.environ, "QEL_WINEPREFIX": str(cls.folder / "prefix"), "HOME": str(home)}
        cls.drive = cls.folder / "prefix" / "drive_c"
        cls.addClassCleanup(cls.wine, "--stop")
        cls.version = next(OPTIONS.dist.glob("OrmFuncQel4-*-windows.zip")).name.split("-")[1]
        cls.earlier = make_setup("1.0.0", cls.folder / "earlier.exe")
        cls.setup = OPTIONS.dist / f"OrmFuncQel4-{cls.version}-setup.exe"
        if OPTIONS.stub:
            cls.setup = make_setup(cls.version, cls.folder / "setup.exe")
        cls.script = cls.folder / "client.vbs"
        cls.script.write_text(SCRIPT, encoding="ascii", newline="\r\n")
        cls.wine("--start")
        cls.suite = cls.drive / "Suite"
        shutil.copytree(ROOT / "tests" / "wizard" / "first_release", cls.suite)
        cls.system("reg", "add", r"HKCU\Software\QRN\Pralix 17", "/v", "MDBPath", "/d", r"C:\Suite", "/f")
        # What Windows has, and a new Wine has not.
        (cls.drive / "users" / getpass.getuser() / "AppData/Local/Programs").mkdir(parents=True, exist_ok=True)
        for key in (r"Classes\CLSID", r"Classes\Interface", r"Classes\TypeLib", UNINSTALL[9:].rpartition("\\")[0]):
            cls.system("reg", "add", r"HKCU\Software" + "\\" + key, "/f")
        cls.system("reg", "add", r"HKCU\Software\Qel", "/v", "Kept", "/d", "a setting", "/f")
        cls.system("reg", "add", EXCEL, "/v", "OPEN", "/d", ADD_INS[0], "/f")
        cls.system("reg", "add", r"HKCU\Environment", "/v", "Path", "/d", r"C:\tools", "/f")
        for bits in (64, 32):  # their first run registers something of theirs
            cls.system("cscript", "//nologo", f"Z:{cls.script}", "none", bits=bits)

    @classmethod
    def system(cls, program, *arguments, bits=64):
        """A program of Windows, in one bitness. Wine for both is a 32-bit program, which has its own view of folders."""
        if OPTIONS.stub:
            return cls.wine(program, *arguments)
        return cls.wine("cmd", "/c", f"C:\\windows\\{'syswow64' if bits == 32 else 'sysnative'}\\{program}.exe", *arguments)

    @classmethod
    def wine(cls, *arguments):
        done = subprocess.run([ROOT / "scripts" / "wine", *arguments], env=cls.environment, capture_output=True, text=True,
                              timeout=300, check=False)
        return done.returncode, done.stdout.replace("\r", "")

    def run_setup(self, program, *words):
        status, output = self.wine(program, "/S", *words)
        self.assertEqual(status, 0, output)

    def registry(self):
        """Keys with their values."""
        exported = self.folder / "registry.reg"
        self.assertEqual(self.wine(r"C:\windows\regedit.exe", "/E", f"Z:{exported}")[0], 0)
        blocks = exported.read_text(encoding="utf-16").split("\n\n[")
        keys = {key: values for key, _, values in (block.partition("]\n") for block in blocks) if not OF_WINE.search(key)}
        return {key: PENDING.sub("", values).strip() for key, values in keys.items()}

    def left(self):
        files = {path.relative_to(self.drive).as_posix() for path in self.drive.rglob("*")}
        kept = {(path.name, path.read_bytes()) for path in self.suite.iterdir()}  # settings, selections, a cube
        return {name for name in files if not UNTIL_THE_NEXT_START.search(name)} | kept, self.registry()

    def assert_nothing_left_since(self, before):
        files, registry = self.left()
        self.assertEqual(files ^ before[0], set())
        self.assertEqual({key for key in registry.keys() | before[1].keys() if registry.get(key) != before[1].get(key)}, set())

    def assert_values(self, cube):
        for bits in (64,) if OPTIONS.stub else (64, 32):
            status, output = self.system("cscript", "//nologo", f"Z:{self.script}", cube, bits=bits)
            self.assertEqual((status, output.split("\n")[:2]), (0, ANSWERS), bits)

    def installed(self, hive):
        """The uninstaller's entry: its values by name."""
        text = self.system("reg", "query", hive + "\\" + UNINSTALL)[1]
        return dict(re.findall(r"^ +(\w+) +REG_\w+ +(.*)$", text, re.MULTILINE))

    def excels_add_ins(self):
        return re.findall(r"^ +OPEN\d* +REG_SZ +(.*)$", self.system("reg", "query", EXCEL)[1], re.MULTILINE)

    def uninstall(self, hive):
        """As Windows does, without questions."""
        program, words = re.match(r'"(.*?)" (.*)', self.installed(hive)["QuietUninstallString"]).groups()
        uninstaller = self.drive / program[3:].replace("\\", "/")
        self.run_setup(program, *words.split())
        for _ in range(300):  # it goes on as a copy of itself
            if not uninstaller.parent.exists() and not self.installed(hive):
                return
            time.sleep(0.1)

    def test_all_users(self):
        before = self.left()
        self.run_setup(self.earlier, "/AllUsers")
        self.assertEqual(self.installed("HKLM")["DisplayVersion"], "1.0.0")
        self.run_setup(self.setup, "/PATH")  # where the earlier one is
        self.run_setup(self.setup)  # again, with the same choice
        entry = self.installed("HKLM")
        self.assertEqual(self.system("cmd", "/c", "qel --version"), (0, f"qel {self.version}\n"))
        self.assertEqual(entry["DisplayVersion"], self.version)
        self.assertIn("odd.cub", self.system("cmd", "/c", "qel settings")[1])
        self.assertEqual(self.system("cmd", "/c", r"qel cube verify C:\Suite\odd.cub")[0], 0)
        self.assert_values(entry["InstallLocation"] + r"\example\ledger.cub")
        self.uninstall("HKLM")
        self.assert_nothing_left_since(before)

    def test_one_user(self):
        before = self.left()
        self.run_setup(self.earlier)
        self.run_setup(self.setup)
        self.assertEqual(self.excels_add_ins(), ADD_INS)
        location = self.installed("HKCU")["InstallLocation"]
        server = (location + r"\x64\OrmFuncQel4.dll").replace("\\", "\\\\")
        registered = {key.split("\\")[0] for key, values in self.registry().items() if server in values}
        self.assertEqual(registered, {"HKEY_USERS"})
        self.uninstall("HKCU")
        self.assert_nothing_left_since(before)

    def test_a_program_holds_the_file_during_an_upgrade(self):
        before = self.left()
        self.run_setup(self.setup, "/AllUsers", r"/D=C:\Held")
        release = self.folder / "release"
        holder = subprocess.Popen([ROOT / "scripts" / "wine", "cscript", "//nologo", f"Z:{self.script}", r"C:\Held\example\ledger.cub",
                                   f"Z:{release}"], env=self.environment, stdout=subprocess.PIPE, text=True)
        self.addCleanup(holder.wait)
        self.addCleanup(release.touch)
        self.assertEqual([holder.stdout.readline().strip() for _ in ANSWERS], ANSWERS)
        self.run_setup(self.setup)
        self.assert_values(r"C:\Held\example\ledger.cub")
        release.touch()
        holder.communicate(timeout=60)
        (self.drive / "Held" / "mine.xlsx").touch()
        self.run_setup(r"C:\Held\uninstall.exe", "/AllUsers", r"_?=C:\Held")
        self.assertEqual({path.name for path in (self.drive / "Held").iterdir()}, {"mine.xlsx", "uninstall.exe"})
        for path in (self.drive / "Held").iterdir():
            path.unlink()
        (self.drive / "Held").rmdir()
        self.assert_nothing_left_since(before)

    def test_archive(self):
        before = self.left()
        with zipfile.ZipFile(OPTIONS.dist / f"OrmFuncQel4-{self.version}-windows.zip") as archive:
            archive.extractall(self.drive)
        there = f"C:\\OrmFuncQel4-{self.version}"
        for folder in ("x64",) if OPTIONS.stub else ("x64", "x86"):
            self.assertEqual(self.system("cmd", "/c", rf"{there}\{folder}\qel.exe --version"), (0, f"qel {self.version}\n"))
        self.assertEqual(self.system("cmd", "/c", there + r"\install.cmd", "/allusers")[0], 0)
        self.assert_values(there + r"\example\ledger.cub")
        self.assertEqual(self.system("cmd", "/c", there + r"\uninstall.cmd", "/allusers")[0], 0)
        shutil.copytree(self.drive / there[3:], self.drive / "Earlier")
        for folder in (r"C:\Earlier", there):  # an upgrade: the newer one is registered in place of the earlier one
            self.assertEqual(self.system("cmd", "/c", folder + r"\install.cmd")[0], 0)
            self.assertEqual(self.excels_add_ins(), ADD_INS)
        self.assertNotIn("Earlier", "".join(self.registry().values()))
        self.assertEqual(self.system("cmd", "/c", there + r"\uninstall.cmd")[0], 0)
        for folder in ("Earlier", there[3:]):
            shutil.rmtree(self.drive / folder)
        self.assert_nothing_left_since(before)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("dist", type=pathlib.Path)
    parser.add_argument("contents", type=pathlib.Path)
    parser.add_argument("--stub")
    OPTIONS, others = parser.parse_known_args()
    unittest.main(argv=["windows_test.py", *others])
