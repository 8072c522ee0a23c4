#!/usr/bin/env python3
"""Prints a profit and loss statement of the example group.

Every name and every number comes from one QelName or QelF1 formula, as it would stand in a worksheet's cell;
the script only lays them out, turns the ledger's signs (income is a credit, so negative) and adds subtotals.
"""

import argparse
import calendar
import os
import subprocess
import sys
from decimal import Decimal

CLASS = "=OrmFunctionQel4.OrmQelFunction."

# (summary groups shown line by line, the group that totals them, the subtotal after it)
SECTIONS = [
    (["41", "42", "43", "44"], "4", None),
    (["51", "52"], "5", ("Gross profit", "רווח גולמי")),
    (["61", "62", "63", "64"], "6", ("Operating profit", "רווח תפעולי")),
    (["71", "72"], "7", ("Profit before tax", "רווח לפני מס")),
    (["81"], "8", None),
]
NET_PROFIT = ("Net profit", "רווח נקי")
YEAR_TOTAL = ("Year", "שנה")


def text(value):
    return '"' + value.replace('"', '""') + '"'


def name_formula(cube, group):
    level = "SuperSum%d" % len(group)
    return f"{CLASS}QelName({cube},{text(level)},{text(group)})"


def value_formula(cube, options, period, group=None):
    """The sum of a summary group, or without one of all profit and loss accounts."""
    level, member = ("SuperSum%d" % len(group), group) if group else ("All", "")
    plbs = "All" if group else "P"
    (first_year, first_month), (last_year, last_month) = period
    last_day = calendar.monthrange(last_year, last_month)[1]
    return (
        f'{CLASS}QelF1({cube},{{"OBS"}},{{{text(options.obs_number)}}},{{"All"}},{{"All"}},{{"All"}},'
        f'{text(level)},{text(member)},"All","Amount","All",{text(plbs)},"All",{text(options.firm)},"All",'
        f"DATE({first_year},{first_month},1),DATE({last_year},{last_month},{last_day}))"
    )


def periods_of(options):
    """(heading, ((year, month), (year, month))) of every column, the whole year last."""
    year = options.year
    length = 1 if options.by == "months" else 3
    columns = []
    for first in range(1, 13, length):
        heading = f"{first:02}/{year}" if length == 1 else f"Q{(first + 2) // 3} {year}"
        columns.append((heading, ((year, first), (year, first + length - 1))))
    columns.append((f"{YEAR_TOTAL[options.hebrew]} {year}", ((year, 1), (year, 12))))
    return columns


def run_qel(options, *arguments, **streams):
    try:
        return subprocess.run([options.qel, *arguments], stdout=subprocess.PIPE, encoding="utf-8", check=False, **streams)
    except OSError as error:
        sys.exit(f"Cannot run the formula evaluator: {error}; name it with --qel.")


def require_cube(options):
    """Formulas show a cube that cannot be read as 0; here its fault is told."""
    info = run_qel(options, "cube", "info", options.cube, stderr=subprocess.PIPE)
    if info.returncode != 0:
        sys.exit(info.stderr.strip())


def evaluate(options, formulas):
    """The values of the formulas, by one run of the evaluator."""
    require_cube(options)
    run = run_qel(options, "eval", input="\n".join(formulas) + "\n")
    values = run.stdout.splitlines()
    if run.returncode != 0 or len(values) != len(formulas):
        sys.exit(f"{options.qel} gave {len(values)} values for {len(formulas)} formulas, status {run.returncode}")
    return dict(zip(formulas, values))


def statement(options):
    """The rows of the statement: (name, amounts, is a total)."""
    cube = f"{text(options.cube)},{text('LedgerHebrewFNC' if options.hebrew else 'LedgerFNC')}"
    periods = [period for _, period in periods_of(options)]
    groups = [group for lines, total, _ in SECTIONS for group in lines + [total]]
    names = {group: name_formula(cube, group) for group in groups}
    amounts = {group: [value_formula(cube, options, period, group) for period in periods] for group in groups}
    net = [value_formula(cube, options, period) for period in periods]
    formulas = list(names.values()) + [formula for row in amounts.values() for formula in row] + net
    if options.formulas:
        print("\n".join(formulas), flush=True)
        sys.exit(0)
    values = evaluate(options, formulas)

    def amounts_of(row):
        # A cell holds a double; the ledger is in cents.
        return [-Decimal(values[formula]).quantize(Decimal("0.01")) for formula in row]

    rows = []
    so_far = [Decimal(0)] * len(periods)
    for lines, total, subtotal in SECTIONS:
        rows += [("  " + values[names[group]], amounts_of(amounts[group]), False) for group in lines]
        section = amounts_of(amounts[total])
        so_far = [a + b for a, b in zip(so_far, section)]
        rows.append((values[names[total]], section, True))
        if subtotal:
            rows.append((subtotal[options.hebrew], so_far, True))
    net_profit = amounts_of(net)
    if not any(net_profit):
        sys.exit(f"No profit and loss amounts in {options.cube} for {options.year}.")
    if net_profit != so_far:
        sys.exit(f"The groups sum to {so_far}, but the profit and loss accounts to {net_profit}.")
    rows.append((NET_PROFIT[options.hebrew], net_profit, True))
    return rows


def show(options, rows):
    headings = [heading for heading, _ in periods_of(options)]
    shown = [(name, [f"{amount:,.0f}" for amount in amounts], total) for name, amounts, total in rows]
    widths = [max(len(row[1][i]) for row in shown + [("", headings, False)]) + 2 for i in range(len(headings))]
    name_width = max(len(name) for name, _, _ in shown) + 2

    def line(name, cells):
        padded = [cell.rjust(width) for cell, width in zip(cells, widths)]
        # Hebrew is read from the right: the names stand there, and time runs leftwards.
        return "".join(reversed(padded)) + "  " + name if options.hebrew else name.ljust(name_width) + "".join(padded)

    rule = "-" * (name_width + sum(widths))
    unit = "בשקלים" if options.hebrew else "in shekels"
    print(line(unit, headings))
    print(rule)
    for name, cells, total in shown:
        print(line(name, cells))
        if total:
            print(rule)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cube", help="the cube file built from ledger.json")
    parser.add_argument("--qel", default="qel", help="the formula evaluator (default: %(default)s on the path)")
    parser.add_argument("--year", type=int, default=2025)
    parser.add_argument("--by", choices=["quarters", "months"], default="quarters")
    parser.add_argument("--firm", default="All", help="a firm's code: 10, 20 or 30 (default: all)")
    parser.add_argument("--obs-number", default="1", help="1 the whole group, 2 to 5 a business line")
    parser.add_argument("--hebrew", action="store_true", help="Hebrew names, from the Hebrew cube")
    parser.add_argument("--formulas", action="store_true", help="print the formulas instead of evaluating them")
    options = parser.parse_args()
    try:
        show(options, statement(options))
        sys.stdout.flush()
    except BrokenPipeError:  # the reader, as head does, has seen enough
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())


if __name__ == "__main__":
    main()
