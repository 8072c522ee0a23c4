#!/usr/bin/env python3
"""Runs clang-tidy over the sources of build folders, one per core, and remembers which were clean.

A source is checked again when it, a header of the repository that it includes, its compile command, the rules or
clang-tidy change, so a run without changes takes a second. What is remembered stands in the user's cache folder and
serves every clone. A source of several build folders is checked in the first of them. Sources that a build folder
compiles together are checked together: reading what they include takes most of the time.
"""
import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


@functools.cache
def quoted_includes(file):
    folders = (ROOT, ROOT / "engine" / "include", file.parent)
    names = re.findall(r'^#include "([^"]+)"', file.read_text(), re.MULTILINE)
    found = (next((folder / name for folder in folders if (folder / name).exists()), None) for name in names)
    return [path.resolve() for path in found if path]


def included(source):
    """The repository's files that a source reads, itself among them."""
    files, new = set(), [pathlib.Path(source)]
    while new:
        file = new.pop()
        if file not in files:
            files.add(file)
            new += quoted_includes(file)
    return files


def rules():
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    return hashlib.sha256(version + b"".join((ROOT / folder / ".clang-tidy").read_bytes() for folder in ("", "tests")))


def fingerprint(base, command, paths):
    digest = base.copy()
    meaning = [word for word in command.split() if word.startswith(("-D", "-I", "-isystem", "-std", "/"))]
    digest.update(" ".join(meaning).replace(str(ROOT), "").encode())
    for path in sorted(paths):
        digest.update(path.read_bytes())
    return digest.hexdigest()


@functools.cache
def cross_arguments(compiler):
    """What clang has to be told to read sources as a compiler for Windows does."""
    target = pathlib.Path(compiler).name.partition("-g++")[0]
    if not target.endswith("mingw32"):
        return []
    headers = pathlib.Path(subprocess.run([compiler, "-print-file-name=include"], capture_output=True, text=True,
                                          check=True).stdout.strip()) / "c++"
    return [f"--target={target}", "-nostdinc++", f"-isystem{headers}", f"-isystem{headers / target}"]


def plain(command):
    """A compile command without what runs before the compiler and without GCC's precompiled headers."""
    compiler = re.search(r"\S*[gc]\+\+\S* ", command).start()
    return re.sub(r"-Winvalid-pch -include \S+ ", "", command[compiler:])


@functools.cache
def rules_for(folder):
    return subprocess.run(["clang-tidy", "--dump-config", folder / "any.cpp"], capture_output=True, text=True,
                          check=True).stdout


def check(scratch, entries):
    """Checks sources that share a compile command, and gives clang-tidy's result and findings."""
    first = entries[0]
    together = scratch / f"{abs(hash(first['file']))}.cpp"
    together.write_text("".join(f'#include "{entry["file"]}"\n' for entry in entries))
    command = shlex.split(first["command"].replace(first["file"], str(together)))
    # What sources have to do with each other when they stand in one file is no finding.
    checks = "--checks=-bugprone-suspicious-include,-bugprone-forward-declaration-namespace"
    done = subprocess.run(["clang-tidy", "--quiet", checks,
                           f"--config={rules_for(pathlib.Path(first['file']).parent)}", together, "--", *command[1:],
                           *cross_arguments(command[0]), "-Wno-unknown-warning-option"],
                          cwd=first["directory"], capture_output=True, text=True)
    return done.returncode, done.stdout


def apart(entry):
    """An entry for each source of one that compiles several together."""
    file = pathlib.Path(entry["file"])
    if file.parent.name != "Unity":
        return [entry]
    sources = re.findall(r'^#include "([^"]+)"', file.read_text(), re.MULTILINE)
    return [{**entry, "file": source, "command": entry["command"].replace(str(file), source), "unit": str(file)}
            for source in sources]


def own_sources(builds):
    """The compile commands of the repository's sources."""
    seen = set()
    for build in builds:
        for listed in json.loads((pathlib.Path(build) / "compile_commands.json").read_text()):
            for entry in apart(listed):
                source = pathlib.Path(entry["file"])
                if source.is_relative_to(ROOT) and not source.is_relative_to(ROOT / "build") and source not in seen:
                    seen.add(source)
                    yield {**entry, "command": plain(entry["command"])}


def touched(entries, files):
    """The entries of these sources; for a header, one that reads it, if possible the source of its name."""
    chosen = []
    for file in files:
        readers = [entry for entry in entries if file in included(entry["file"])]
        readers.sort(key=lambda entry: (entry["file"] != str(file), pathlib.Path(entry["file"]).stem != file.stem))
        chosen += [entry for entry in readers[:1] if entry not in chosen]
    return chosen


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("builds", nargs="+", help="configured and built folders, such as build/native")
    parser.add_argument("--only", action="append", type=pathlib.Path, metavar="FILE",
                        help="check this source, or one source that includes this header; may be repeated")
    parser.add_argument("--minutes", type=float, default=float("inf"),
                        help="start no further source after so many minutes; the next run goes on where this one ended")
    options = parser.parse_args()
    end = time.monotonic() + 60 * options.minutes
    builds = [os.path.abspath(build) for build in options.builds]

    cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
    stamps = cache / "orm-func-qel4" / "tidy-clean"
    stamps.mkdir(parents=True, exist_ok=True)
    base = rules()
    entries = list(own_sources(builds))
    if options.only:
        entries = touched(entries, [file.resolve() for file in options.only])
    waiting = {}
    for entry in entries:
        mark = stamps / fingerprint(base, entry["command"], included(entry["file"]))
        if not mark.exists():
            waiting.setdefault(entry.get("unit", entry["file"]), []).append((entry, mark))

    def check_in_time(scratch, unit):
        return check(scratch, [entry for entry, _ in unit]) if time.monotonic() < end else (None, "")

    units = sorted(waiting.values(), key=lambda unit: pathlib.Path(unit[0][0]["file"]).is_relative_to(ROOT / "tests"))
    checked, failures, left = 0, 0, 0
    with tempfile.TemporaryDirectory() as scratch, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = {pool.submit(check_in_time, pathlib.Path(scratch), unit): unit for unit in units}
        for result in concurrent.futures.as_completed(results):
            unit = results[result]
            status, text = result.result()
            if status is None:
                left += len(unit)
                continue
            checked += len(unit)
            if status == 0:
                for _, mark in unit:
                    mark.touch()
                continue
            failures += 1
            print(text.strip() or f"clang-tidy failed on {', '.join(entry['file'] for entry, _ in unit)}")
    print(f"clang-tidy: {checked} sources checked, {failures} groups with findings")
    if left:
        print(f"{left} sources are left for the next run: the {options.minutes:g} minutes are over")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
