#!/usr/bin/env python3
"""Calls every member of both classes from VBScript and JScript and checks what the script sees, errors included."""

import argparse
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

VBS = """Option Explicit
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

JS = """var f = "%s", right;
function check(what, found, wanted) {
  WScript.Echo((found === wanted ? "ok " : "WRONG ") + what + ": " + found);
}
function error(work) {
  try { work(); return "none"; } catch (e) { return (e.number >>> 0).toString(16) + " " + e.description; }
}
function list() { // JScript's own arrays are objects; a dictionary's items are an array of variants
  var items = new ActiveXObject("Scripting.Dictionary");
  for (var i = 0; i < arguments.length; i++) items.Add(i, arguments[i]);
  return items.Items();
}
function day(year, month, date) { return month + "/" + date + "/" + year; } // in the locale's form
var o = new ActiveXObject("OrmFunctionQel4.OrmQelFunction");
check("QelName", o.QelName(f, "LedgerFNC", "SuperSum1", "1"), "Fixed assets");
check("a Hebrew name", escape(o.QelName(f, "LedgerHebrewFNC", "SuperSum1", "4")), "%%u05D4%%u05DB%%u05E0%%u05E1%%u05D5%%u05EA");
check("RetQelName", o.retqelname("no such.cub", "x", "SuperSum1", "1"), "-");
o.g_cubeFile = "x"; o.G_CUBENAME = "y"; o.ResQel = "z"; o.iShowDetail = 1; o.iLang = -1;
check("properties", o.g_cubefile + o.g_CubeName + o.iShowDetail + o.iLang, "xy1-1");
var all = list("All");
check("value", o.QelF1(f, "LedgerFNC", list("OBS"), list("1"), all, all, all, "All", "", "All", "Amount",
  "All", "P", "All", "All", "All", day(2024, 1, 1), day(2024, 12, 31)), -1826089.27);
check("dates the wrong way round", o.QelFuncDemo(f, "LedgerFNC", list("OBS"), list("1"), all, all, all, "All", "",
  "All", "Amount", "All", "P", "All", "All", "All", day(2024, 2, 1), day(2024, 1, 1)), "#ERR 11111111");
check("seven keys", error(function () { o.QelF1(f, "LedgerFNC", list(1, 2, 3, 4, 5, 6, 7), 1, 1, 1, 1, "", "", "", "",
  "", "", "", "", ""); }), "80040001 To many dimensions");
check("too few arguments", /^(8002000e|800a01c2)/.test(error(function () { o.QelName(f); })), true);
var t = new ActiveXObject("OrmFunctionQel4.ClTimming");
t.Start();
t.Finish();
check("ClTimming", t.ElapsedTime >= 0 && t.ElapsedTime < 5, true);
WScript.Echo("done");
"""


def checks_right(script, text, calls):
    """Whether every check of the script succeeded."""
    script.write_text(text, encoding="ascii", newline="\r\n")
    done = subprocess.run([ROOT / "scripts" / "wine", "cscript", "//nologo", "Z:" + str(script)], capture_output=True,
                          text=True, stdin=subprocess.DEVNULL, timeout=120)
    print(done.stdout)
    right = sum(line.startswith("ok ") for line in done.stdout.splitlines())
    print(f"{script.name}: {right} of {calls} checks right")
    return right == calls and done.stdout.rstrip().endswith("done")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--cube", required=True, type=pathlib.Path)
    cube = parser.parse_args().cube
    path = "Z:" + str(cube).replace("/", "\\")
    scripts = [(cube.with_name("members.vbs"), VBS % (path, path), VBS.count("\nCheck ")),
               (cube.with_name("members.js"), JS % path.replace("\\", "\\\\"), JS.count("\ncheck("))]
    return 0 if all([checks_right(*script) for script in scripts]) else 1


if __name__ == "__main__":
    sys.exit(main())
