"""Writes the list of what of others is inside the programs of a release, with its licences.

licences.py VERSION LIST PROGRAM...: each PROGRAM is a target of a Ninja build folder, such as build/native/bin/qel.

Nobody has to remember a library: the compiler noted every header that it read, and the linker is run once more to tell
every file that it takes. Each file belongs to a Debian package, whose copyright file is the licence, or to a source that
the build fetched. A file that belongs to nothing known is an error.
"""
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
FETCHED = ROOT / "build"  # below it, a folder per source
SQLITE = "SQLite is in the public domain: its authors disclaim copyright (https://www.sqlite.org/copyright.html).\n"


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


class Program:
    """A target of a build folder, with the files of others that became part of it."""

    def __init__(self, path):
        self.path = path
        self.build = next(folder for folder in path.parents if (folder / "build.ninja").is_file())
        self.target = path.relative_to(self.build).as_posix()

    def ninja(self, *arguments):
        return output_of("ninja", "-C", self.build, *arguments).splitlines()

    def headers(self):
        objects = {line for line in self.ninja("-t", "inputs", self.target) if re.search(r"\.(o|obj|gch)$", line)}
        reading = False
        for line in self.ninja("-t", "deps"):
            if not line.startswith(" "):
                reading = line.partition(":")[0] in objects
            elif reading:
                yield self.build / line.strip()

    def linked(self):
        """Every file that the linker reads. An archive of objects alone has no linker."""
        if self.path.suffix == ".a":
            return
        command = next(line for line in reversed(self.ninja("-t", "commands", "-s", self.target)) if " -o " in line)
        link = next(part for part in command.split("&&") if " -o " in part)
        with tempfile.TemporaryDirectory() as folder:
            told = output_of(*shlex.split(link), "-Wl,--trace", "-o", f"{folder}/{self.path.name}", cwd=self.build)
        for line in told.splitlines():
            if not line.startswith("collect2"):
                yield self.build / re.sub(r"\(?([^()]+)\)?.*", r"\1", line.strip())


def fetched_source(path):
    """The source below build/ that a file belongs to, or None."""
    if path.is_relative_to(FETCHED / "sqlite"):
        return "sqlite (its amalgamation)"
    if path.is_relative_to(FETCHED / "libraries"):
        return path.relative_to(FETCHED / "libraries").parts[0] + " (source of the Debian package)"
    return None


def licence_of_source(name):
    word = name.split()[0]
    if word == "sqlite":
        return SQLITE
    return (FETCHED / "libraries" / word / "debian" / "copyright").read_text(encoding="utf-8")


def packages_of(paths):
    """The Debian package of each path."""
    asked = {}
    for path in paths:
        asked[str(path)] = path
        asked[str(path).removeprefix("/usr")] = path  # as packages name what the merged /lib holds
    done = subprocess.run(["dpkg", "-S", *asked], capture_output=True, text=True, check=False)  # fails if one is unknown
    found = {}
    for line in done.stdout.splitlines():
        package, _, path = line.rpartition(": ")
        found[asked[path]] = package.split(",")[0]
    unknown = sorted(set(paths) - set(found))
    if unknown:
        sys.exit("No Debian package holds " + ", ".join(map(str, unknown)))
    return found


def contents(program):
    """The packages and sources that a program has parts of. Shared libraries stay the machine's."""
    found, system = set(), set()
    for path in {*program.headers(), *program.linked()}:
        path = path.resolve()
        if source := fetched_source(path):
            found.add(source)
        elif not any(path.is_relative_to(folder) for folder in (ROOT, program.build)) and ".so" not in path.name:
            system.add(path)
    return found | set(packages_of(system).values())


def titled(package):
    if "(" in package:
        return package
    return package.partition(":")[0] + " " + output_of("dpkg-query", "-W", "-f", "${Version}", package)


def licence(package):
    if "(" in package:
        return licence_of_source(package)
    return pathlib.Path(f"/usr/share/doc/{package.partition(':')[0]}/copyright").read_text(encoding="utf-8")


def main():
    version, target, *programs = sys.argv[1:]
    lines = [f"What the programs of OrmFuncQel4 {version} contain of others, and its licences.",
             "Their own licence is MIT (LICENSE). Names are those of Debian packages.", ""]
    texts = {}
    for program in map(Program, [pathlib.Path(name).resolve() for name in programs]):
        parts = contents(program)
        lines += [program.path.relative_to(FETCHED).as_posix(), *(f"    {titled(name)}" for name in sorted(parts)), ""]
        for name in parts:
            texts.setdefault(licence(name), set()).add(name.partition(":")[0])
    for text, names in sorted(texts.items(), key=lambda entry: sorted(entry[1])):
        lines += ["=" * 100, ", ".join(sorted(names)), "=" * 100, text.strip(), ""]
    pathlib.Path(target).write_text("\n".join(lines), encoding="utf-8")


if __name__ == "__main__":
    main()
