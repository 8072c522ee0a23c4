#!/usr/bin/env python3
"""Turns the council's published spending files into one ledger with dimension tables.

Reads every .csv and .csv.xz of a folder. The files' headers, encodings and ways of writing dates and amounts
differ from quarter to quarter; a line that cannot be understood stops the run with its file and number.
"""

import argparse
import csv
import io
import lzma
import re
import shutil
import sys
from collections import Counter
from datetime import datetime
from decimal import Decimal, InvalidOperation
from pathlib import Path

# What the ledger needs, and the headings under which the quarters publish it.
HEADINGS = {
    "body": ["Body Name"],
    "portfolio": ["Portfolio", "Organisational Unit"],
    "centre": ["Organisation Code", "Business Unit No."],
    "centre_name": ["Org Code Description", "Business Unit Description"],
    "account": ["Object Code", "Expense Code"],
    "account_name": ["Object Code Description", "Expense Code Description"],
    "date": ["GL Date"],
    "amount": ["Value", "Invoiced Value"],
    "category": ["Category Description", "Proclass Details Level 1"],
}
DATE_FORMS = ["%Y-%m-%d", "%d/%m/%Y", "%d-%m-%Y", "%d-%b-%y", "%d-%b-%Y"]
NOT_CLASSIFIED = "Not classified"


def decode(data):
    try:
        return data.decode("utf-8-sig")
    except UnicodeDecodeError:
        return data.decode("cp1252")


def unescaped(text):
    """Some quarters carry a dash as the four characters \\x96, or as the tail \\x80\\x93 of its UTF-8 form."""
    text = text.replace("\\x80\\x93", "\N{EN DASH}")
    return re.sub(r"\\x([0-9A-Fa-f]{2})", lambda match: bytes.fromhex(match[1]).decode("cp1252", "replace"), text)


def date_of(text):
    for form in DATE_FORMS:
        try:
            return datetime.strptime(text, form).strftime("%Y-%m-%d")
        except ValueError:
            continue
    raise ValueError(f"'{text}' is not a date")


def amount_of(text):
    """Pounds with pence: "£1,234.5", "(12.00)" and "12.00-" are understood."""
    digits = re.sub(r"[£,\s]", "", text)
    negative = digits.startswith("(") and digits.endswith(")") or digits.endswith("-")
    try:
        amount = Decimal(digits.strip("()") if not digits.endswith("-") else digits[:-1])
    except InvalidOperation:
        raise ValueError(f"'{text}' is not an amount") from None
    if amount != amount.quantize(Decimal("0.01")):
        raise ValueError(f"'{text}' has parts of a penny")
    return (-amount if negative else amount).quantize(Decimal("0.01"))


def columns_of(header, path):
    names = [name.strip().lower() for name in header]
    columns = {}
    for field, headings in HEADINGS.items():
        found = [names.index(heading.lower()) for heading in headings if heading.lower() in names]
        if not found:
            sys.exit(f"{path}: no column called {' or '.join(headings)}")
        columns[field] = found[0]
    return columns


def published_lines(folder):
    """Every published line as a dictionary of the fields, dates and amounts in one form."""
    if not folder.is_dir():
        sys.exit(f"{folder}: no such folder")
    paths = sorted(path for path in folder.iterdir() if path.name.endswith((".csv", ".csv.xz")))
    if not paths:
        sys.exit(f"{folder}: no .csv or .csv.xz files")
    for path in paths:
        data = path.read_bytes()
        text = decode(lzma.decompress(data) if path.suffix == ".xz" else data)
        reader = csv.reader(io.StringIO(text))
        columns = columns_of(next(reader), path)
        for row in reader:
            if not any(row):
                continue
            try:
                line = {field: unescaped(row[column].strip()) for field, column in columns.items()}
                line["date"] = date_of(line["date"])
                line["amount"] = amount_of(line["amount"])
            except (ValueError, IndexError) as error:
                sys.exit(f"{path}, line {reader.line_num}: {error}")
            line["category"] = line["category"] or NOT_CLASSIFIED
            yield line


def usual_names(lines, code, name):
    """The name that each code has most often; descriptions change with time."""
    counts = {}
    for line in lines:
        counts.setdefault(line[code], Counter())[line[name]] += 1
    return {key: min(names, key=lambda text: (-names[text], text)) for key, names in counts.items()}


def write(folder, name, header, rows):
    with open(folder / name, "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("published", type=Path, help="folder with the published files")
    parser.add_argument("output", type=Path, help="folder for the ledger, its tables and the cube definition")
    options = parser.parse_args()

    lines = list(published_lines(options.published))
    bodies = {name: str(i + 1) for i, name in enumerate(sorted({line["body"] for line in lines}))}
    categories = {name: f"{i + 1:03}" for i, name in enumerate(sorted({line["category"] for line in lines}))}
    accounts = usual_names(lines, "account", "account_name")
    centres = usual_names(lines, "centre", "centre_name")
    units = sorted({(line["body"], line["portfolio"], line["centre"]) for line in lines})

    options.output.mkdir(parents=True, exist_ok=True)
    write(options.output, "ledger.csv", ["date", "firm", "account", "activity", "cost_centre", "unit", "amount"],
          ([line["date"], bodies[line["body"]], line["account"], categories[line["category"]], line["centre"],
            f"{bodies[line['body']]}/{line['portfolio']}/{line['centre']}", line["amount"]] for line in lines))
    write(options.output, "firms.csv", ["code", "name"], [(code, name) for name, code in bodies.items()])
    write(options.output, "activities.csv", ["code", "name"], [(code, name) for name, code in categories.items()])
    write(options.output, "cost_centres.csv", ["code", "name"], sorted(centres.items()))
    write(options.output, "units.csv", ["code", "body", "body_name", "portfolio", "centre", "centre_name"],
          ((f"{bodies[body]}/{portfolio}/{centre}", bodies[body], body, portfolio, centre, centres[centre])
           for body, portfolio, centre in units))
    # Two structures over the same units: everything under number 1, and each portfolio by its name.
    write(options.output, "structures.csv", ["code", "obs_name", "obs_number", "name"],
          (row for body, portfolio, centre in units for row in (
              (f"{bodies[body]}/{portfolio}/{centre}", "OBS", "1", "All spending"),
              (f"{bodies[body]}/{portfolio}/{centre}", "Portfolios", portfolio, portfolio))))
    # The chart is by the digits of the expense code.
    write(options.output, "accounts.csv",
          ["code", "name", "group1", "group1_name", "group2", "group2_name", "group3", "group3_name"],
          ([code, name] + [text for digits in (1, 2, 3)
                           for text in (code[:digits], f"Codes {code[:digits]}{'x' * (len(code) - digits)}")]
           for code, name in sorted(accounts.items())))
    shutil.copyfile(Path(__file__).with_name("spending.json"), options.output / "spending.json")
    print(f"{len(lines)} lines, {sum(line['amount'] for line in lines)} pounds, written to {options.output}")


if __name__ == "__main__":
    main()
