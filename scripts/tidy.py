#!/usr/bin/env python3
"""Runs clang-tidy over the sources of build folders, one a core, and remembers which were clean.

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
import subprocess
import sys

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
            if path.is_relative_to(ROOT):
                current.append(path)
    return files


def object_of(command):
    words = command.split()
    return words[words.index("-o") + 1]


def rules():
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    return hashlib.sha256(version + (ROOT / ".clang-tidy").read_bytes())


def fingerprint(base, command, paths):
    digest = base.copy()
    digest.update(command.replace(str(ROOT), "").encode())
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


def compiler_of(command):
    return next(word for word in command.split() if not word.endswith("ccache"))


def check(build, source, arguments):
    extra = [f"--extra-arg={argument}" for argument in ["-Wno-unknown-warning-option", *arguments]]
    done = subprocess.run(["clang-tidy", "-p", build, "--quiet", *extra, source], capture_output=True, text=True)
    return done.returncode, done.stdout


def own_sources(builds):
    """The compile commands of the repository's sources, each with its build folder."""
    seen = set()
    for build in builds:
        for entry in json.loads((pathlib.Path(build) / "compile_commands.json").read_text()):
            source = pathlib.Path(entry["file"])
            if source.is_relative_to(ROOT) and not source.is_relative_to(ROOT / "build") and source not in seen:
                seen.add(source)
                yield build, entry


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("builds", nargs="+", help="configured and built folders, such as build/native")
    builds = [os.path.abspath(build) for build in parser.parse_args().builds]

    includes = {build: included_files(build) for build in builds}
    cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
    stamps = cache / "orm-func-qel4" / "tidy-clean"
    stamps.mkdir(parents=True, exist_ok=True)
    base = rules()
    waiting = []
    for build, entry in own_sources(builds):
        read = includes[build].get(object_of(entry["command"]), [pathlib.Path(entry["file"])])
        mark = stamps / fingerprint(base, entry["command"], read)
        if not mark.exists():
            waiting.append((build, entry, mark))

    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = {pool.submit(check, build, entry["file"], cross_arguments(compiler_of(entry["command"]))):
                   (entry["file"], mark) for build, entry, mark in waiting}
        for result in concurrent.futures.as_completed(results):
            source, mark = results[result]
            status, text = result.result()
            if status == 0:
                mark.touch()
                continue
            failures += 1
            print(text.strip() or f"clang-tidy failed on {source}")
    print(f"clang-tidy: {len(waiting)} sources checked, {failures} with findings")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
