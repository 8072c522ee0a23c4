#!/usr/bin/env python3
"""Calls the server from VBScript and compares each value with what qel prints for the same formula."""

import argparse
import csv
import datetime
import functools
import pathlib
import random
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LEDGER = ROOT / "examples" / "ledger"
COUNT = 200


@functools.cache
def codes(table):
    with open(LEDGER / f"{table}.csv", encoding="utf-8", newline="") as rows:
        return list(csv.DictReader(rows))


class Date(datetime.date):
    """A date argument. Texts and lists are passed as they are."""


def value_call(pick, function, cube):
    """Random arguments of one value formula."""
    some = lambda table, column, chance: pick.choice(codes(table))[column] if pick.random() < chance else "All"
    level, member = "All", "All"
    if pick.random() < 0.25:
        level = pick.choice(["Level1", "Level2", "Level3", "Cost_Centers"])
        row = pick.choice(codes("obs"))
        member = {"Level1": row["level1"], "Level2": row["level2"], "Level3": row["code"]}.get(
            level, pick.choice(codes("cost_centres"))["code"])
    summary, account = ("All", ""), some("accounts", "code", 0.2)
    if account == "All" and pick.random() < 0.5:
        depth = pick.choice("123")
        summary = (f"SuperSum{depth}", pick.choice(codes("accounts"))[f"group{depth}"])
    year, month, length = pick.choice([2023, 2024, 2025]), pick.randint(1, 12), pick.choice([1, 3, 12, 12, 40])
    first = Date(year, month, 1)
    last = Date(year + (month + length - 2) // 12, (month + length - 2) % 12 + 1, pick.randint(1, 28))
    return (function, cube, ["OBS"], [pick.choice(["1", "1", "1", "2", "3"])], [level], [member],
            [some("activities", "code", 0.08)], *summary, account, pick.choice(["Amount", "Quantity", "Lines"]),
            some("money_sets", "code", 0.1), some("plbs", "code", 0.1), some("rh", "code", 0.05),
            some("firms", "code", 0.15), some("opening_balance", "code", 0.15), first, last)


def name_call(pick):
    depth = pick.choice("123")
    code = pick.choice(codes("accounts"))[f"group{depth}"]
    return (pick.choice(["QelName", "RetQelName"]), "LedgerFNC", f"SuperSum{depth}",
            pick.choice([code, code, "Sales", "x'y\"z"]))


def calls():
    pick = random.Random(4)
    for number in range(COUNT):
        cube = pick.choice(["LedgerFNC", "LedgerHebrewFNC"])
        if number % 8 == 7:
            yield name_call(pick)
        else:
            yield value_call(pick, pick.choice(["QelF1", "qelf1", "QeL1", "QelFuncDemo"]), cube)


def quoted(text):
    return '"' + text.replace('"', '""') + '"'


def formula_argument(value):
    if isinstance(value, list):
        return "{" + ",".join(map(quoted, value)) + "}"
    return f"DATE({value.year},{value.month},{value.day})" if isinstance(value, Date) else quoted(value)


def vbs_argument(value):
    if isinstance(value, list):
        return "Array(" + ",".join(map(vbs_argument, value)) + ")"
    if isinstance(value, Date):
        return f"DateSerial({value.year},{value.month},{value.day})"
    return quoted(value)


def written(call, cube_path, argument):
    function, *arguments = call
    return f"{function}({','.join(argument(value) for value in [cube_path, *arguments])})"


# One value per line, with texts marked. The last line shows that the script did not end early.
VBS = """Option Explicit
Dim o
Set o = CreateObject("OrmFunctionQel4.OrmQelFunction")
Sub Show(x)
  If VarType(x) = 8 Then WScript.Echo "text " & x Else WScript.Echo x
End Sub
%s
WScript.Echo "done"
"""


def run_script(folder, name, text):
    path = folder / name
    path.write_text(text, encoding="ascii", newline="\r\n")
    windows_path = "Z:" + str(path).replace("/", "\\")
    done = subprocess.run([ROOT / "scripts" / "wine", "cscript", "//nologo", windows_path], capture_output=True,
                          stdin=subprocess.DEVNULL, timeout=300)
    lines = done.stdout.decode("ascii", "replace").split("\r\n")
    if done.returncode != 0 or lines[-2:] != ["done", ""]:
        sys.exit(f"{name} ended early (status {done.returncode}) after {len(lines) - 1} lines: {lines[-3:]}")
    return lines[:-2]


def value_of(line):
    return line.removeprefix("text ") if line.startswith("text ") else float(line)


def expected_value(text, call):
    is_text = call[0] in ("QelName", "RetQelName") or text.startswith("#")
    return text if is_text else float(text)


def evaluate(qel, cube, listed):
    """The values that qel prints for the calls as formulas."""
    formulas = "\n".join("=OrmFunctionQel4.OrmQelFunction." + written(call, str(cube), formula_argument)
                         for call in listed)
    done = subprocess.run([qel, "eval"], input=formulas, capture_output=True, text=True, timeout=300, check=True)
    return [expected_value(text, call) for text, call in zip(done.stdout.splitlines(), listed, strict=True)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--qel", required=True)
    parser.add_argument("--cube", required=True, type=pathlib.Path)
    parser.add_argument("--folder", required=True, type=pathlib.Path)
    options = parser.parse_args()

    cube = "Z:" + str(options.cube).replace("/", "\\")
    listed = list(calls())
    expected = evaluate(options.qel, options.cube, listed)
    script = VBS % "\n".join(f"Show o.{written(call, cube, vbs_argument)}" for call in listed)
    values = [value_of(line) for line in run_script(options.folder, "values.vbs", script)]
    differences = [f"{call}\n  gives {value!r}, qel {wanted!r}"
                   for call, value, wanted in zip(listed, values, expected, strict=True) if value != wanted]
    nonzero = sum(isinstance(value, float) and value != 0 for value in expected)
    print(*differences, f"{len(listed)} formulas, {nonzero} numbers other than 0, {len(differences)} differences", sep="\n")
    if nonzero < COUNT / 4:
        sys.exit("too few values are other than 0 for the comparison to show anything")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
