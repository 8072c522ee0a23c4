#!/usr/bin/env python3
"""Opens the wizards from a script, like a workbook's macro, and uses them like a person.

A VBScript client calls the server with a cell of a sheet; dialog_person, another process, types, chooses
and clicks in the dialog. The formula that lands in the cell is evaluated by qel and must give what the dialog showed.
With --pictures, the dialogs are also photographed on their way.
"""

import argparse
import itertools
import pathlib
import shutil
import signal
import subprocess
import sys
import time

from screen import ROOT, Screen, windows_path

SCRIPT = """Option Explicit
Dim log, sheet, server, result
Set log = CreateObject("Scripting.FileSystemObject").CreateTextFile("%(seen)s", True, True)
Set sheet = CreateObject("QelTest.Sheet")
Set server = CreateObject("OrmFunctionQel4.OrmQelFunction")
result = server.%(member)s(sheet.ActiveCell)
log.WriteLine sheet.Log
log.WriteLine "result " & result
log.WriteLine "done"
log.Close
"""

OK = "1"
EXISTS = ("answer", OK) # the report that the local database exists already, whenever a wizard opens it
FUNCTION, NAME = ("function", "ShowFormGetVal"), ("name", "ShowFormQelName")


class Failure(Exception):
    pass


def require(what, found, wanted):
    if found != wanted:
        raise Failure(f"{what}: {found!r}, not {wanted!r}")


def require_number(found, shown):
    require("the value", float(found), float(shown))
    if float(found) == 0:
        raise Failure("a value of 0 would show nothing")


class Bench:
    """A new user's machine for one case: empty settings, a cube and a sheet."""

    def __init__(self, screen, options, name):
        self.screen, self.options = screen, options
        self.folder = screen.folder / name
        shutil.rmtree(self.folder, ignore_errors=True)
        (self.folder / "suite").mkdir(parents=True)
        (screen.component / "Lang.rs").unlink(missing_ok=True)
        screen.use_suite_folder(self.folder / "suite")
        self.cubes = screen.drive / "Cubes"
        shutil.rmtree(self.cubes, ignore_errors=True)
        self.cubes.mkdir()
        self.cube = self.cubes / "Ledger.cub"
        shutil.copy(screen.folder / "ledger.cub", self.cube)
        self.calls = itertools.count(1)

    def be_hebrew(self):
        (self.folder / "suite" / "Qel.ini").write_text("[Qel]\r\nQelUILanguage=1\r\n")
        (self.screen.component / "Lang.rs").write_text("read by the provider of saved recordsets")

    def call(self, wizard, *steps):
        """Calls the member while the person acts. Returns the lines that the person saw and the lines written to the sheet."""
        form, member = wizard
        base = self.folder / f"call{next(self.calls)}"
        paths = {kind: base.with_suffix("." + kind) for kind in ("vbs", "sheet", "steps", "seen")}
        paths["vbs"].write_text(SCRIPT % {"member": member, "seen": windows_path(paths["sheet"])},
                                encoding="ascii", newline="\r\n")
        paths["steps"].write_text("".join("\t".join(step) + "\n" for step in steps), encoding="utf-8", newline="\n")
        person = self.screen.start(self.options.bin / "dialog_person.exe", form, windows_path(paths["steps"]),
                                   windows_path(paths["seen"]))
        host = self.screen.start("cscript", windows_path(paths["vbs"]))
        try:
            self.photograph(steps, person)
            person.wait(timeout=300)
            seen = paths["seen"].read_text(encoding="utf-8").splitlines()
            if seen[-1:] != ["done"]:
                raise Failure(f"the person was disappointed: {seen}")
            host.wait(timeout=60)
        finally:
            for process in (person, host):
                self.screen.end(process)
        sheet = paths["sheet"].read_text(encoding="utf-16").splitlines()
        if sheet[-1:] != ["done"]:
            raise Failure(f"the script ended early: {sheet}")
        return seen[:-1], sheet[:-1]

    def photograph(self, steps, person):
        for ready in [self.posix(step[1]) for step in steps if step[0] == "hold"]:
            while not ready.exists():
                if person.poll() is not None:
                    return # it was disappointed before
                time.sleep(0.05)
            time.sleep(1) # until everything is drawn
            self.screen.take_picture(ready.with_suffix(""))
            ready.unlink()

    @staticmethod
    def posix(path):
        return pathlib.Path(path.removeprefix("Z:").replace("\\", "/"))

    def picture(self, name):
        if self.options.pictures is None:
            return []
        return [("hold", windows_path(self.options.pictures / (name + ".png.ready")))]

    def value_of(self, formula):
        formula = formula.replace(self.path(), str(self.cube))
        done = subprocess.run([self.options.qel, "eval", formula], capture_output=True, text=True, timeout=60)
        return done.stdout.strip()

    @staticmethod
    def path(name="Ledger.cub"):
        return "C:\\Cubes\\" + name


def written(sheet):
    """The formula in the cell, and the argument text that the call returned."""
    formula, result = sheet
    return formula.removeprefix("R3C2 formula "), result.removeprefix("result ")


def choose_cube(bench, cube):
    return [("click", "CmdCubeFile"), ("file", bench.path()), ("expect", "txtCubeFile", bench.path()),
            ("choose", "cboDatabaseList", cube)]


def nothing_is_written_when_cancelled(bench):
    for i, end in enumerate((("click", "CmdCancel"), ("close",), ("key", "txtCubeFile", "esc"))):
        _, sheet = bench.call(FUNCTION, *([EXISTS] if i else []), end, ("gone",))
        require(f"the sheet after {end}", sheet, ["", "result  "])


def wrong_files_are_told(bench):
    (bench.cubes / "poem.cub").write_text("This is no cube.")
    (bench.cubes / "Ledger.txt").write_text("Nor is this.")
    seen, sheet = bench.call(
        FUNCTION,
        ("click", "CmdOK"), ("answer", OK),
        ("type", "txtCubeFile", bench.path("Ledger.txt")), ("click", "Command2"), ("answer", OK), ("answer", OK),
        ("type", "txtCubeFile", bench.path("poem.cub")), ("key", "txtCubeFile", "tab"), ("answer", OK),
        ("type", "txtCubeFile", bench.path()), ("click", "CmdOK"), # which the file's lists had not been shown for
        ("expect", "cboDatabaseList", "LedgerFNC"), ("click", "CmdCancel"), ("gone",))
    require("the box of no file", seen[0], "box\tChoose a Cube Name and a Cube File")
    require("the box of a wrong name", seen[2], "box\tUnvalid Name for File Cube")
    for box in (seen[1], seen[3]): # the machine's provider on a file that is not a cube
        if not box.startswith("box\tError : ") or "|Module : frmFuncQelWiz|" not in box:
            raise Failure(f"this is no report: {box}")
    require("the sheet", sheet, ["", "result  "])


def the_formula_gives_the_value_shown(bench):
    steps = [*choose_cube(bench, "LedgerFNC"),
             ("choose", "ComLevel", "OBS levels"), ("choose", "ComOBSData", "Centre"), ("click", "ComAddOBS"),
             ("expect", "ListObs", "Centre"),
             ("choose", "ComAccX", "SuperSum2"), ("choose", "ComMember", "41 - Sale of goods"), ("click", "CheckAcc"),
             ("type", "ListAccount", "4111"), ("key", "ListAccount", "enter"),
             ("type", "TxtDate(0)", "1/1/2024"), ("type", "TxtDate(1)", "12/12/2024"),
             ("click", "Command1"), ("click", "Command1"), *bench.picture("function-wizard"),
             ("read", "ListAccount"), ("read", "TxtCalc"), ("click", "CmdOK"), EXISTS, ("gone",)]
    seen, sheet = bench.call(FUNCTION, *steps)
    formula, result = written(sheet)
    shown = seen[1].split("\t")[1]
    print(f"    {formula} shows {shown}")
    require("the report", seen[2].split("|")[2].split("\\")[-1], "QelFunction17.mdb' already exists.")
    require("the formula", formula, f"=OrmFunctionQel4.OrmQelFunction.QelF1({result})")
    value = bench.value_of(formula)
    require_number(value, shown)

    # The next time the dialog shows the same choices, and the other button writes them as a table.
    seen, sheet = bench.call(FUNCTION, EXISTS, ("expect", "txtCubeFile", bench.path()), ("expect", "ListObs", "Centre"),
                             ("expect", "TxtDate(1)", "12/12/2024"), ("click", "Command1"), ("expect", "TxtCalc", shown),
                             ("click", "Command2"), EXISTS, ("gone",))
    require("the result", sheet[-1], f"result {result}")
    require("what is formatted", sheet[0].split(" ", 1)[1], "format @")
    if "R3C2 = Cube" not in sheet or f"R3C3 = {bench.path()}" not in sheet:
        raise Failure(f"the table lacks its first row: {sheet}")


def a_member_that_was_only_shown_gives_way_to_the_next_one(bench):
    bench.call(FUNCTION, *choose_cube(bench, "LedgerFNC"), ("choose", "ComLevel", "Cost centres"),
               ("choose", "ComOBSData", "1110 - Haifa, sales floor"), ("click", "CmdOK"), EXISTS, ("gone",))
    seen, sheet = bench.call(FUNCTION, EXISTS, ("choose", "ComOBSData", "1120 - Karmi'el"),
                             ("type", "TxtDate(1)", "12/12/2024"), ("click", "Command1"), ("read", "TxtCalc"),
                             ("click", "CmdOK"), EXISTS, ("gone",))
    formula, _ = written(sheet)
    if '{"1120"}' not in formula:
        raise Failure(f"the dialog showed 1120: {formula}")
    require_number(bench.value_of(formula), seen[1].split("\t")[1])
    bench.call(FUNCTION, EXISTS, ("choose", "ComLevel", "OBS levels"), ("choose", "ComOBSData", "South & Negev"),
               ("click", "ComAddOBS"), ("expect", "ListObs", "South & Negev"), ("choose", "ComLevel", "All"),
               ("expect", "ListObs", ""), ("choose", "ComLevel", "OBS levels"), ("expect", "ListObs", "South & Negev"),
               ("click", "CmdCancel"), ("gone",))


def a_remembered_file_that_is_gone_is_told(bench):
    bench.call(FUNCTION, *choose_cube(bench, "LedgerFNC"), ("click", "CmdOK"), EXISTS, ("gone",))
    bench.cube.unlink()
    seen, sheet = bench.call(FUNCTION, ("answer", OK), EXISTS, ("expect", "txtCubeFile", ""), ("click", "CmdCancel"),
                             ("gone",))
    require("the box", seen[:1], [f"box\t{bench.path()} File Not Found"])
    require("the sheet", sheet, ["", "result  "])


def a_name_is_written(bench):
    steps = [*choose_cube(bench, "LedgerFNC"), ("choose", "ComDim", "SuperSum2"),
             ("type", "cmbmember", "Sale of g"), ("key", "cmbmember", "enter"), *bench.picture("name-wizard"),
             ("expect", "TxtName", "Sale of goods"), ("read", "TxtName"), ("click", "CmdOK"), EXISTS, ("gone",)]
    seen, sheet = bench.call(NAME, *steps)
    formula, _ = written(sheet)
    require("the name", bench.value_of(formula), seen[0].split("\t")[1])


def hebrew_is_mirrored_and_gives_the_same_values(bench):
    bench.be_hebrew()
    steps = [*choose_cube(bench, "LedgerHebrewFNC"), ("choose", "ComLevel", "מרכזי עלות"), ("click", "ComAddOBS"),
             ("type", "TxtDate(0)", "1/1/2024"), ("type", "TxtDate(1)", "12/12/2024"),
             ("click", "Command1"), ("click", "Command1"),
             *bench.picture("function-wizard-hebrew"),
             ("read", "TxtCalc"), ("click", "CmdOK"), EXISTS, ("gone",)]
    seen, sheet = bench.call(FUNCTION, *steps)
    formula, _ = written(sheet)
    print(f"    {formula} shows {seen[0]}")
    require_number(bench.value_of(formula), seen[0].split("\t")[1])
    steps = [EXISTS, *choose_cube(bench, "LedgerHebrewFNC"), ("choose", "ComDim", "SuperSum2"),
             ("type", "cmbmember", "41"),
             ("key", "cmbmember", "enter"), *bench.picture("name-wizard-hebrew"),
             ("expect", "TxtName", "מכירת סחורות"), ("read", "TxtName"), ("click", "CmdOK"), EXISTS, ("gone",)]
    seen, sheet = bench.call(NAME, *steps)
    formula, _ = written(sheet)
    require("the name", bench.value_of(formula), seen[1].split("\t")[1])


def print_times_of_wide_lists(bench):
    """With the cube of `qel-wizard-bench --keep-cube FILE`, whose accounts a person finds by typing."""
    shutil.copy(bench.options.time_lists, bench.cube)
    steps = [("expect", "txtCubeFile", ""), ("clock", "-"), *choose_cube(bench, "Oddfnc"), ("clock", "choose the cube"),
             ("click", "CheckAcc"), ("clock", "tick the accounts")]
    for typed in ("g", "golan 31", "149999", "no such account"):
        steps += [("type", "ListAccount", typed), ("clock", f"type '{typed}'")]
    steps += [("type", "ListAccount", "149999"), ("key", "ListAccount", "enter"), ("clock", "choose '149999'"),
              ("read", "ListAccount"), ("click", "CmdCancel"), ("gone",)]
    start = time.monotonic()
    seen, _ = bench.call(FUNCTION, *steps)
    print(f"the whole visit {time.monotonic() - start:.1f} s", *seen, sep="\n    ")


CASES = [nothing_is_written_when_cancelled, wrong_files_are_told, the_formula_gives_the_value_shown,
         a_member_that_was_only_shown_gives_way_to_the_next_one, a_remembered_file_that_is_gone_is_told, a_name_is_written, hebrew_is_mirrored_and_gives_the_same_values]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--qel", required=True, type=pathlib.Path)
    parser.add_argument("--bin", required=True, type=pathlib.Path, help="the folder of dialog_person.exe")
    parser.add_argument("--server", required=True, type=pathlib.Path, help="OrmFuncQel4.dll")
    parser.add_argument("--classes", required=True, type=pathlib.Path, help="dialog_test_classes.dll")
    parser.add_argument("--folder", required=True, type=pathlib.Path)
    parser.add_argument("--pictures", type=pathlib.Path, help="a folder for pictures of the dialogs")
    parser.add_argument("--time-lists", type=pathlib.Path, metavar="CUBE",
                        help="time the lists of a cube with very many accounts instead")
    parser.add_argument("--only", default="", help="a part of a case's name")
    options = parser.parse_args()

    folder = options.folder / "screen"
    folder.mkdir(parents=True, exist_ok=True)
    subprocess.run([options.qel, "cube", "build", ROOT / "examples" / "ledger" / "ledger.json", "--output",
                    folder / "ledger.cub"], check=True, stdout=subprocess.DEVNULL)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1)) # everything is ended then, too
    failures = 0
    with Screen(folder, options.server, options.classes) as screen:
        for case in [print_times_of_wide_lists] if options.time_lists else CASES:
            if options.only not in case.__name__:
                continue
            start = time.monotonic()
            try:
                case(Bench(screen, options, case.__name__))
                print(f"{case.__name__}: {time.monotonic() - start:.1f} s", flush=True)
            except (Failure, subprocess.TimeoutExpired) as failure:
                failures += 1
                print(f"{case.__name__} FAILED: {failure}", flush=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
