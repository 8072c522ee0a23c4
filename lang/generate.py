#!/usr/bin/env python3
"""Makes the portable string table, the Windows resources, or a language table Lang.rs, from lang/strings.csv."""
import argparse
import csv
import pathlib
import sys
from xml.sax.saxutils import quoteattr

COLUMNS = ["number", "english", "hebrew", "use"]
# The index of each language in the suite's settings.
LANGUAGES = [(0, "english"), (1, "hebrew")]


class Fault(Exception):
    """A fault of the source that stops the build."""


def read(path):
    with open(path, encoding="utf-8", newline="") as file:
        reader = csv.DictReader(file)
        if reader.fieldnames != COLUMNS:
            raise Fault(f"{path}:1: the columns are {reader.fieldnames}, not {COLUMNS}")
        rows, last = [], 0
        for row in reader:
            place = f"{path}:{reader.line_num}"
            if None in row or None in row.values():
                raise Fault(f"{place}: expected {len(COLUMNS)} fields")
            number = int(row["number"])
            if number <= last:
                raise Fault(f"{place}: {number} follows {last}; numbers ascend and occur once")
            if not all(row[language] for _, language in LANGUAGES):
                raise Fault(f"{place}: {number} lacks a text")
            last = number
            rows.append((number, row["english"], row["hebrew"]))
    return rows


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def cpp(rows):
    lines = ["// Made from lang/strings.csv; change that.", '#include "lang/StringTable.h"', "", "namespace qel {", "",
             "std::span<const StringTableEntry> StringTable() {", "    static constexpr StringTableEntry entries[] = {"]
    lines += [f"        {{{number}, {quoted(english)}, {quoted(hebrew)}}}," for number, english, hebrew in rows]
    lines += ["    };", "    return entries;", "}", "", "} // namespace qel", ""]
    return "\n".join(lines)


def rc(rows):
    lines = ["// Made from lang/strings.csv; change that.", "#pragma code_page(65001)", "#include <winnt.h>"]
    for index, (windows, sublanguage) in enumerate([("LANG_ENGLISH", "SUBLANG_ENGLISH_US"),
                                                    ("LANG_HEBREW", "SUBLANG_DEFAULT")]):
        lines += ["", f"LANGUAGE {windows}, {sublanguage}", "STRINGTABLE", "BEGIN"]
        lines += ['    {}, "{}"'.format(row[0], row[1 + index].replace('"', '""')) for row in rows]
        lines += ["END"]
    return "\n".join(lines) + "\n"


def lang_rs(rows):
    def column(name, number, datatype):
        return (f"\t\t<s:AttributeType name='{name}' rs:number='{number}' rs:nullable='true' rs:write='true'>\n"
                f"\t\t\t<s:datatype {datatype}/>\n\t\t</s:AttributeType>")

    integer = "dt:type='int' dt:maxLength='4' rs:precision='10' rs:fixedlength='true'"
    lines = ["<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'",
             "\txmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'",
             "\txmlns:rs='urn:schemas-microsoft-com:rowset'", "\txmlns:z='#RowsetSchema'>",
             "<s:Schema id='RowsetSchema'>", "\t<s:ElementType name='row' content='eltOnly' rs:updatable='true'>",
             column("lId", 1, integer), column("sId", 2, integer),
             column("sText", 3, "dt:type='string' dt:maxLength='255'"),
             "\t\t<s:extends type='rs:rowbase'/>", "\t</s:ElementType>", "</s:Schema>", "<rs:data>"]
    for index, _ in LANGUAGES:
        lines += [f"\t<z:row lId='{index}' sId='{row[0]}' sText={quoteattr(row[1 + index])}/>" for row in rows]
    return "\n".join(lines + ["</rs:data>", "</xml>", ""])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("form", choices=["cpp", "rc", "lang-rs"])
    parser.add_argument("strings", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    options = parser.parse_args()
    form = {"cpp": cpp, "rc": rc, "lang-rs": lang_rs}[options.form]
    try:
        options.output.write_text(form(read(options.strings)), encoding="utf-8", newline="\n")
    except (OSError, ValueError, Fault) as fault:
        print(f"lang/generate.py: {fault}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
