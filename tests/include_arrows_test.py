#!/usr/bin/env python3
"""Includes go down only: fails on an #include "…" of a folder that the including folder may not know."""
import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

PORTS = ("text platform/value platform/data platform/settings platform/database platform/tables platform/dialog"
         " platform/sheet")
PRODUCT = ("text platform/* engine/include support store lang cube wizard wizard/servers function function/formula reason lines batch"
           " workbook/cells why")
# Folders, and what they may include besides themselves; ".." is the folder above. The first row that fits counts.
MAY_INCLUDE = {
    "text": "",
    "files": "text",
    "engine/include/*": "engine/include",  # the public headers, "qel/engine/….h"
    "engine/storage": "text files engine/include",
    "engine/mdx": "text engine/include",
    "engine/eval": "text engine/include engine/storage engine/mdx",
    "engine/*": "text files engine/include engine/storage",
    "platform/data/choice": "text platform/value .. engine/include",
    "platform/data/embedded": "text platform/value .. engine/include",
    "platform/data/xmla/settings": "text platform/value platform/data .. platform/settings/files",
    "platform/settings/files": "text files platform/value ..",
    "platform/*/*": "text platform/value .. platform/windows platform/office",  # an adapter, below its port
    "platform/*": "text platform/value",
    "support": f"{PORTS} files",
    "store": f"{PORTS} support",
    "lang": f"{PORTS} files support store",
    "cube": f"{PORTS} support",
    "wizard": f"{PORTS} support store lang cube",
    "wizard/servers": f"{PORTS} platform/data/waiting platform/data/xmla support lang cube wizard",
    "function/formula": "text platform/value cube",
    "function": f"{PORTS} support store lang cube wizard function/formula",
    "reason": f"{PORTS} support store lang cube wizard function function/formula batch",
    "lines": f"{PORTS} support store lang cube wizard function function/formula reason",
    "why": f"{PORTS} support store lang cube wizard function function/formula reason lines batch workbook/cells",
    "batch": f"{PORTS} support store lang cube wizard function",
    "workbook/cells": "text platform/value function/formula",
    "workbook": "text platform/value workbook/cells",
    "cli": f"{PRODUCT} files workbook",  # the doors
    "calc": PRODUCT,
    "server/dispatch": "text platform/value platform/windows",
    "server": f"{PRODUCT} server/dispatch",
    "examples/*": f"{PRODUCT} examples/*",  # beside the product, which includes none of these
    "tests/engine/*": "text files engine/* tests/*",
    "tests/*": f"{PRODUCT} files cli calc server server/* examples/* tests/*",
    "bench": f"{PRODUCT} engine/* cli examples/* tests/*",
    "fuzz/*": f"{PRODUCT} workbook engine/* tests/helpers",
}
arrows, wrong = set(), []
tops = [top for top in ROOT.iterdir() if top.is_dir() and top.name != "build" and not top.name.startswith(".")]
for source in sorted(path for top in tops for path in top.rglob("*.*") if path.suffix in {".h", ".cpp"}):
    folder = source.parent.relative_to(ROOT).as_posix()
    row = next((row for folders, row in MAY_INCLUDE.items() if fnmatch.fnmatch(folder, folders)), None)
    allowed = [folder, *(row or "").replace("..", str(pathlib.PurePath(folder).parent)).split()]
    for header in re.findall(r'^#include "([\w/.]+/[\w.]+)"', source.read_text(encoding="utf-8"), re.M):
        target = pathlib.PurePath(header.replace("qel/engine/", "engine/include/")).parent.as_posix()
        arrows.add((folder, target))
        if not any(fnmatch.fnmatch(target, name) for name in allowed):
            wrong.append(f"{source.relative_to(ROOT)} includes {header}: {folder} may not include {target}")
print("\n".join(wrong) or f"{len(arrows)} arrows between folders, all down")
sys.exit(bool(wrong or not arrows))
