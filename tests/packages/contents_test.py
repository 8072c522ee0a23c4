#!/usr/bin/env python3
"""What a release's files say of themselves: contents_test.py DIST PROJECT_VERSION. Nothing is installed."""
import pathlib
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as xml
import zipfile

VERSION = DIST = None


def resource_version(program):
    """FileVersion and ProductVersion of a Windows program, as its resources have them."""
    texts = program.decode("utf-16-le", "ignore") + program[1:].decode("utf-16-le", "ignore")
    return set(re.findall(r"(?:File|Product)Version\0+([\d.]+)\0", texts))


class Release(unittest.TestCase):
    def setUp(self):
        self.archive = self.enterContext(zipfile.ZipFile(DIST / f"OrmFuncQel4-{VERSION}-windows.zip"))
        self.extension = self.enterContext(zipfile.ZipFile(DIST / f"OrmFuncQel4-{VERSION}.oxt"))

    def installed_by(self, package):
        listed = subprocess.run(["dpkg-deb", "-c", DIST / f"{package}_{VERSION}_amd64.deb"], capture_output=True, text=True,
                                check=True).stdout
        return [line.split()[5][1:] for line in listed.splitlines() if not line.startswith("d")]

    def test_one_version(self):
        for name in self.archive.namelist():
            if name.endswith((".dll", ".exe")):
                self.assertEqual(resource_version(self.archive.read(name)), {VERSION}, name)
        description = xml.fromstring(self.extension.read("description.xml"))
        self.assertEqual(description.find("{*}version").get("value"), VERSION)
        changes = (pathlib.Path(__file__).parents[2] / "CHANGELOG.md").read_text(encoding="utf-8")
        self.assertIn(f"\n## {VERSION}\n", changes)
        self.assertIn(f" {VERSION} ", (DIST / "third-party-licences.txt").read_text(encoding="utf-8").split("\n")[0])
        for package in ("qel", "libqelengine-dev", "qel-calc"):
            field = subprocess.run(["dpkg-deb", "-f", DIST / f"{package}_{VERSION}_amd64.deb", "Version"], capture_output=True,
                                   text=True, check=True).stdout
            self.assertEqual(field.strip(), VERSION, package)

    def test_extension_names_only_what_it_has(self):
        """The installer of the office passes over a missing file without a word."""
        description = xml.fromstring(self.extension.read("description.xml"))
        linked = {node.get("{http://www.w3.org/1999/xlink}href") for node in description.iter()} - {None}
        self.assertLessEqual({"description/en.txt", "description/he.txt", "description/icon.png"}, linked)
        self.assertLessEqual({*linked, "LICENSE", "third-party-licences.txt"}, set(self.extension.namelist()))

    def test_programs_carry_licences_and_no_tests(self):
        names = [*self.archive.namelist(), *(name for package in ("qel", "libqelengine-dev", "qel-calc")
                                             for name in self.installed_by(package))]
        self.assertEqual(sum(name.endswith("third-party-licences.txt") for name in names), 4)
        self.assertEqual([name for name in names if re.search(r"test|bench|gmock", name, re.IGNORECASE)], [])
        text = (DIST / "third-party-licences.txt").read_text(encoding="utf-8")
        for ingredient, licence in (("libfmt-dev", "MIT"), ("mingw-w64-x86-64-dev", "winpthreads"),
                                    ("sqlite", "public domain"), ("gcc-mingw-w64-i686", "Runtime Library Exception")):
            self.assertRegex(text, f"{ingredient}")
            self.assertIn(licence, text)

    def test_pages_lead_only_to_what_is_there(self):
        names = set(self.archive.namelist())
        pages = [name for name in names if name.endswith(".html")]
        for page in pages:
            text = self.archive.read(page).decode("utf-8")
            for target in re.findall(r'(?:href|src)="([^"#:]+)[#"]', text):
                place = pathlib.PurePosixPath(page).parent / target
                self.assertIn(re.sub(r"[^/]+/\.\./", "", str(place)), names, page)
        self.assertGreater(len(pages), 10)


if __name__ == "__main__":
    DIST, VERSION = pathlib.Path(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1])
