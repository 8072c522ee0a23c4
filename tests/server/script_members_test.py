#!/usr/bin/env python3
"""Calls every member of both classes from VBScript and checks what the script sees, errors included."""

import argparse
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

SCRIPT = """Option Explicit
On Error Resume Next
Dim o, second, t, f, v, keys
Sub Check(what, found, wanted)
  If found = wanted Then WScript.Echo "ok " & what Else WScript.Echo "WRONG " & what & ": " & found
  Err.Clear
End Sub
f = "  %s "
Set o = CreateObject("OrmFunctionQel4.OrmQelFunction")
Check "created", Err.Number, 0
v = o.QelName(f, "LedgerFNC", "SuperSum1", "1")
Check "QelName", v, "Fixed assets"
Check "text by reference", f, "%s"
Check "RetQelName", o.RetQelName("no such.cub", "x", "SuperSum1", "1"), "-"
o.g_cubeFile = "x": o.G_CUBENAME = "y": o.ResQel = "z": o.iShowDetail = 1: o.iLang = -1
Check "properties", o.g_cubefile & o.g_CubeName & o.iShowDetail & o.iLang, "xy1-1"
keys = Array("OBS")
v = o.QelF1(f, "LedgerFNC", keys, Array("1"), Array("All"), Array("All"), Array("All"), "All", "", "All", "Amount", _
  "All", "P", "All", "All", "All", DateSerial(2024, 1, 1), DateSerial(2024, 12, 31))
Check "value", v, -1826089.27
Set second = CreateObject("OrmFunctionQel4.OrmQelFunction")
Set second = Nothing
Check "after another object's end", o.QeL1(f, "LedgerFNC", keys, 1, Array("All"), Array("All"), Array("All"), "All", _
  "", "All", "Amount", "All", "P", "All", "All", "All", DateSerial(2024, 1, 1), DateSerial(2024, 12, 31)), v
Check "dates the wrong way round", o.QelFuncDemo(f, "LedgerFNC", keys, Array("1"), Array("All"), Array("All"), _
  Array("All"), "All", "", "All", "Amount", "All", "P", "All", "All", "All", DateSerial(2024, 2, 1), _
  DateSerial(2024, 1, 1)), "#ERR 11111111"
v = o.QelF1(f, "LedgerFNC", Array(1, 2, 3, 4, 5, 6, 7), 1, 1, 1, 1, "", "", "", "", "", "", "", "", "")
Check "seven keys", Hex(Err.Number) & " " & Err.Description, "80040001 To many dimensions"
v = o.QelName(f)
Check "too few arguments", Err.Number, 450
v = o.QelName(f, "a", "b", "c", "d")
Check "too many arguments", Err.Number, 450
Set t = CreateObject("OrmFunctionQel4.ClTimming")
t.Start
t.Finish
Check "ClTimming", t.ElapsedTime >= 0 And t.ElapsedTime < 5, True
WScript.Echo "done"
"""
CHECKS = SCRIPT.count("\nCheck ")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--cube", required=True, type=pathlib.Path)
    cube = parser.parse_args().cube
    windows_path = "Z:" + str(cube).replace("/", "\\")
    script = cube.with_name("members.vbs")
    script.write_text(SCRIPT % (windows_path, windows_path), encoding="ascii", newline="\r\n")
    done = subprocess.run([ROOT / "scripts" / "wine", "cscript", "//nologo", "Z:" + str(script)], capture_output=True,
                          text=True, stdin=subprocess.DEVNULL, timeout=120)
    print(done.stdout)
    right = sum(line.startswith("ok ") for line in done.stdout.splitlines())
    print(f"{right} of {CHECKS} checks right")
    return 0 if right == CHECKS and done.stdout.rstrip().endswith("done") else 1


if __name__ == "__main__":
    sys.exit(main())
