#!/usr/bin/env python3
"""Runs every fuzz target of a folder for a while, as many at once as there are cores, from the kept corpus.

New inputs that reach new code stay in the build folder; a crash's input is written beside them and named. An input that
took too long is run again alone, since a machine that stands still is no fault of the program.
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def run(program, seconds):
    name = program.name.removeprefix("fuzz_")
    found = program.parent.parent / "fuzz-found" / name
    found.mkdir(parents=True, exist_ok=True)
    kept = ROOT / "fuzz" / "corpus" / name
    command = [program, f"-max_total_time={seconds}", "-timeout=10", "-rss_limit_mb=3000", "-print_final_stats=1",
               f"-artifact_prefix={found}/", found, *([kept] if kept.is_dir() else [])]
    done = subprocess.run(command, capture_output=True, text=True, errors="replace")
    executions = re.search(r"number_of_executed_units: (\d+)", done.stderr)
    late = re.search(r"Test unit written to (\S*/timeout-\S+)", done.stderr)
    if late:
        done = subprocess.run([program, "-timeout=10", late.group(1)], capture_output=True, text=True,
                              errors="replace")
    return name, done.returncode, executions.group(1) if executions else "no", done.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", type=pathlib.Path, help="the folder of the fuzz_* programs")
    parser.add_argument("--seconds", type=int, default=10, help="how long each target runs (default 10)")
    parser.add_argument("--only", help="run this target alone")
    options = parser.parse_args()
    programs = sorted(p for p in options.programs.resolve().glob("fuzz_*")
                      if options.only in (None, p.name.removeprefix("fuzz_")))
    if not programs:
        print(f"no fuzz target in {options.programs}", file=sys.stderr)
        return 1

    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, status, executions, log in pool.map(lambda p: run(p, options.seconds), programs):
            print(f"{name}: {executions} executions, {'no finding' if status == 0 else 'FAILED'}"
                  f"{', one input slow once' if 'timeout-' in log and status == 0 else ''}")
            if status:
                failures += 1
                print(log[-6000:])
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
