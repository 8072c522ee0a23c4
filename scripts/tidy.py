#!/usr/bin/env python3
"""Runs clang-tidy over the sources of build folders, one per core, and remembers which were clean.

A source is checked again when it, a header of the repository that it includes, its compile command, the rules or
clang-tidy change, so a run without changes takes a second. What is remembered stands in the user's cache folder and
serves every clone. A source of several build folders is checked in the first of them.
"""
import argparse
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


def included_files(build):
    """Maps each object file to the repository's files that its compilation read."""
    listing = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True).stdout
    files, current = {}, None
    for line in listing.splitlines():
        if line and not line.startswith(" "):
            current = files.setdefault(line.split(":")[0], [])
        elif line.strip():
            path = (pathlib.Path(build) / line.strip()).resolve()
            if path.is_relative_to(ROOT) and not path.name.startswith("cmake_pch"):
                current.append(path)
    return files


def object_of(command):
    words = command.split()
    return words[words.index("-o") + 1]


def included(entry, includes):
    """The repository's files that an entry's source reads."""
    build, command = entry
    return includes[build].get(object_of(command["command"]), [pathlib.Path(command["file"])])


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


def check(folder, source, arguments):
    extra = [f"--extra-arg={argument}" for argument in ["-Wno-unknown-warning-option", *arguments]]
    done = subprocess.run(["clang-tidy", "-p", folder, "--quiet", *extra, source], capture_output=True, text=True)
    return done.returncode, done.stdout


def own_sources(builds):
    """The compile commands of the repository's sources, each with its build folder."""
    seen = set()
    for build in builds:
        for entry in json.loads((pathlib.Path(build) / "compile_commands.json").read_text()):
            source = pathlib.Path(entry["file"])
            if source.is_relative_to(ROOT) and not source.is_relative_to(ROOT / "build") and source not in seen:
                seen.add(source)
                entry["command"] = plain(entry["command"])
                yield build, entry


def touched(entries, includes, files):
    """The entries of these sources; for a header, one that reads it, if possible the source of its name."""
    chosen = []
    for file in files:
        readers = [entry for entry in entries if file in included(entry, includes)]
        readers.sort(key=lambda entry: (entry[1]["file"] != str(file), pathlib.Path(entry[1]["file"]).stem != file.stem))
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

    includes = {build: included_files(build) for build in builds}
    cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
    stamps = cache / "orm-func-qel4" / "tidy-clean"
    stamps.mkdir(parents=True, exist_ok=True)
    base = rules()
    entries = list(own_sources(builds))
    if options.only:
        entries = touched(entries, includes, [file.resolve() for file in options.only])
    waiting = []
    for build, entry in entries:
        mark = stamps / fingerprint(base, entry["command"], included((build, entry), includes))
        if not mark.exists():
            waiting.append((entry, mark))

    def check_in_time(entry):
        arguments = cross_arguments(entry["command"].split()[0])
        return check(commands, entry["file"], arguments) if time.monotonic() < end else (None, "")

    waiting.sort(key=lambda each: pathlib.Path(each[0]["file"]).is_relative_to(ROOT / "tests"))  # the product first
    failures, left = 0, 0
    with tempfile.TemporaryDirectory() as commands, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        (pathlib.Path(commands) / "compile_commands.json").write_text(json.dumps([entry for entry, _ in waiting]))
        results = {pool.submit(check_in_time, entry): (entry["file"], mark) for entry, mark in waiting}
        for result in concurrent.futures.as_completed(results):
            source, mark = results[result]
            status, text = result.result()
            if status == 0:
                mark.touch()
                continue
            if status is None:
                left += 1
                continue
            failures += 1
            print(text.strip() or f"clang-tidy failed on {source}")
    print(f"clang-tidy: {len(waiting) - left} sources checked, {failures} with findings")
    if left:
        print(f"{left} sources are left for the next run: the {options.minutes:g} minutes are over")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
