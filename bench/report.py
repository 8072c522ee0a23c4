"""Writes the numbers of qel-bench --csv into the tables of docs/performance.md and the README, and plots them.

report.py NUMBERS.csv PERFORMANCE.md PLOT.svg README.md
"""

import csv
import math
import sys

BEGIN, END = "<!-- numbers -->", "<!-- end of numbers -->"

ROWS = [  # what the table says, where the number comes from, how it is written
    ("file, bytes per fact", "both", "bytes", "{:.0f}"),
    ("SQLite, bytes per fact (one cube's facts)", "both", "SQLite bytes", "{:.0f}"),
    ("open, ms", "both", "open ms", "{:.2f}"),
]
for cube in ("months", "days"):
    ROWS += [
        (f"{cube}: build, s elapsed, s CPU", cube, ("build seconds", "build processor seconds"), "{:.1f}"),
        (f"{cube}: build, MB of memory", cube, "build megabytes", "{:,.0f}"),
        (f"{cube}: formulas per second by the clock, 1 and 2 threads", cube, ("threads 1 per second", "threads 2 per second"), "{:,.0f}"),
        (f"{cube}: formulas per second, each one's best round", cube, "known per second", "{:,.0f}"),
        (f"{cube}: best rounds, median, p99 µs", cube, ("known median", "known p99"), "{:.1f}"),
        (f"{cube}: new formulas per second by the clock, pages not yet, already checked", cube, ("new per second", "checked per second"), "{:,.0f}"),
        (f"{cube}: engine alone, cells per second", cube, "engine per second", "{:,.0f}"),
        (f"{cube}: engine alone, median, p99 µs", cube, ("engine median", "engine p99"), "{:.1f}"),
        (f"{cube}: heap blocks, formula new, known, engine", cube, ("new allocations", "known allocations", "engine allocations"), "{:.0f}"),
        (f"{cube}: sheet of 834 × 12, recalculated, ms", cube, "sheet known ms", "{:.0f}"),
        (f"{cube}: sheet of 834 × 12, new, ms", cube, "sheet new ms", "{:.0f}"),
        (f"{cube}: slowest list of members, ms", cube, "slowest list ms", "{:.1f}"),
        (f"{cube}: first 100 lines of a cell, median, slowest, ms", cube, ("lines median ms", "lines slowest ms"), "{:.2f}"),
        (f"{cube}: SQLite, cells per second", cube, "SQLite per second", "{:,.0f}"),
        (f"{cube}: times faster than SQLite, formula, engine", cube, ("SQLite ratio formula", "SQLite ratio engine"), "{:,.0f}"),
        (f"{cube}: DuckDB, cells per second", cube, "DuckDB per second", "{:,.0f}"),
        (f"{cube}: times faster than DuckDB, formula, engine", cube, ("DuckDB ratio formula", "DuckDB ratio engine"), "{:,.0f}"),
        (f"{cube}: plain scan, cells per second", cube, "scan per second", "{:,.1f}"),
        (f"{cube}: times faster than a plain scan, formula, engine", cube, ("scan ratio formula", "scan ratio engine"), "{:,.0f}"),
    ]

SHORT_ROWS = [  # of the README
    ("formulas per second, by the clock", "months", "threads 1 per second", "{:,.0f}"),
    ("formulas per second, each one's best round", "months", "known per second", "{:,.0f}"),
    ("best rounds, median, p99 µs", "months", ("known median", "known p99"), "{:.1f}"),
    ("times SQLite's", "months", "SQLite ratio formula", "{:,.0f}"),
    ("times DuckDB's", "months", "DuckDB ratio formula", "{:,.0f}"),
    ("file, bytes per fact", "both", "bytes", "{:.0f}"),
    ("open, ms", "both", "open ms", "{:.1f}"),
]

LINES = [  # name, cube, what, colour: microseconds a cell are drawn
    ("formula, statement known", "known per second", "#1b6ca8"),
    ("engine alone", "engine per second", "#2a9d4a"),
    ("SQLite", "SQLite per second", "#c0392b"),
    ("DuckDB", "DuckDB per second", "#b8860b"),
    ("plain scan", "scan per second", "#7d3c98"),
]


def read(path):
    numbers = {}
    with open(path, encoding="utf-8", newline="") as file:
        for line in csv.DictReader(file):
            numbers[int(line["facts"]), line["cube"], line["what"]] = float(line["number"])
    return numbers


def table(numbers, sizes, rows):
    def cell(size, cube, what, form):
        names = what if isinstance(what, tuple) else (what,)
        found = [numbers.get((size, cube, name)) for name in names]
        return ", ".join("–" if number is None else form.format(number) for number in found)

    lines = ["| facts | " + " | ".join(f"{size:,}" for size in sizes) + " |", "| --- |" + " ---: |" * len(sizes)]
    for name, cube, what, form in rows:
        lines.append(f"| {name} | " + " | ".join(cell(size, cube, what, form) for size in sizes) + " |")
    return "\n".join(lines)


def plot(numbers, sizes):
    """Plots microseconds per cell (months cube) and bytes per fact against the facts; only the bytes are linear."""
    width, height, left, top = 420, 300, 70, 40
    span = max(math.log10(sizes[-1]) - math.log10(sizes[0]), 1)
    x = lambda panel, size: left + panel * (width + 90) + (math.log10(size) - math.log10(sizes[0])) / span * width
    y = lambda value: top + height - (math.log10(value) + 1) / 7 * height  # 0.1 µs to 1 s
    most = 400
    bytes_y = lambda value: top + height - value / most * height
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{2 * width + 290}" height="{height + 90}" '
        'font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<text x="{left}" y="20" font-size="14">µs per cell, random mix, cube by months</text>',
        f'<text x="{left + width + 90}" y="20" font-size="14">bytes per fact and cube</text>',
    ]
    for panel in (0, 1):
        for size in sizes:
            parts.append(f'<text x="{x(panel, size):.0f}" y="{top + height + 18}" text-anchor="middle">{size:,}</text>')
    for power in range(-1, 7):
        at = y(10.0**power)
        parts.append(f'<line x1="{left}" x2="{left + width}" y1="{at:.1f}" y2="{at:.1f}" stroke="#ddd"/>')
        parts.append(f'<text x="{left - 6}" y="{at + 4:.1f}" text-anchor="end">{10.0**power:,.{max(0, -power)}f}</text>')
    for value in range(0, most + 1, 100):
        at, start = bytes_y(value), left + width + 90
        parts.append(f'<line x1="{start}" x2="{start + width}" y1="{at:.1f}" y2="{at:.1f}" stroke="#ddd"/>')
        parts.append(f'<text x="{start - 6}" y="{at + 4:.1f}" text-anchor="end">{value}</text>')

    def line(points, colour, name, below=False):
        if points:
            path = " ".join(f"{a:.1f},{b:.1f}" for a, b in points)
            parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
            parts.extend(f'<circle cx="{a:.1f}" cy="{b:.1f}" r="3" fill="{colour}"/>' for a, b in points)
            at = points[-1][1] + (17 if below else -6)
            parts.append(f'<text x="{points[-1][0] + 6:.0f}" y="{at:.0f}" fill="{colour}" '
                         f'text-anchor="end">{name}</text>')

    for name, what, colour in LINES:
        line([(x(0, s), y(1e6 / numbers[s, "months", what])) for s in sizes if (s, "months", what) in numbers],
             colour, name, below=what == "engine per second")  # which is close below the formula's line
    for name, what, colour in (("cube file", "bytes", "#1b6ca8"), ("SQLite", "SQLite bytes", "#c0392b")):
        line([(x(1, s), bytes_y(min(numbers[s, "both", what], most))) for s in sizes if (s, "both", what) in numbers],
             colour, name)
    parts.append("</svg>")
    return "\n".join(parts) + "\n"


def put_table(path, text):
    """Replaces the text between the file's markers."""
    with open(path, encoding="utf-8") as file:
        before, rest = file.read().split(BEGIN)
    after = rest.split(END)[1]
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{BEGIN}\n{text}\n{END}{after}")


def main():
    numbers_path, document_path, plot_path, readme_path = sys.argv[1:]
    numbers = read(numbers_path)
    sizes = sorted({facts for facts, _, _ in numbers})
    put_table(document_path, table(numbers, sizes, ROWS))
    put_table(readme_path, table(numbers, sizes, SHORT_ROWS))
    with open(plot_path, "w", encoding="utf-8") as file:
        file.write(plot(numbers, sizes))


if __name__ == "__main__":
    main()
