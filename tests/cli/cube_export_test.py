#!/usr/bin/env python3
"""Exports cubes, loads the tables into SQLite and sums them as a server reads the schema: every member of every level
must have the sum, the name and the place that the cube file gives it."""
import json
import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

QEL = ""
TESTS = pathlib.Path(__file__).resolve().parent.parent

# Codes under several parents, without a parent, with a branch that ends early, and members without facts.
SHARED = {
    "shared.json": json.dumps({
        "tables": {"facts": {"file": "facts.csv"}, "units": {"file": "units.csv"}},
        "cubes": [{
            "name": "Shared / 'cube' <1>", "facts": "facts",
            "dimensions": [
                {"name": "Unit", "column": "unit", "table": "units", "key": "code", "hierarchies": [
                    {"name": "Tree", "levels": [{"name": "Group", "key": "group"},
                                                {"name": "Team \"x\"", "key": "team", "caption": "label"}]},
                    {"name": "Flat", "levels": [{"name": "Team", "key": "team"}]}]},
                {"name": "Day", "column": "day", "calendar": {"periods": "days", "quarters": True}},
                {"name": "Currency", "members": ["Own", "Foreign"]}],
            "measures": [{"name": "Amount", "column": "amount", "decimals": 2}, {"name": "Lines", "aggregate": "count"},
                         {"name": "Nothing", "column": "nothing", "decimals": 0}],
            "calculatedMembers": [
                {"name": "[Per line]", "formula": "[Measures].[Amount] / [Measures].[Lines]", "format": "0.0",
                 "solveOrder": 3},
                {"name": "[Unit].[Flat].[All].[1 & 2]", "formula": "Sum([Two])"}],
            "namedSets": [{"name": "[Two]", "formula": "{[Unit].[Flat].[1], [Unit].[Flat].[2]}"}]}]}),
    "facts.csv": "unit,day,amount,nothing\na,2024-01-30,1.25,\nb,2024-01-31,-0.05,0\nc,2024-02-01,100,\nd,2024-02-02,7,\n"
                 "a,2024-02-02,0.5,\n,2024-02-01,1000,\n",
    "units.csv": "code,group,team,label\na,North,1,It's one\na,South,2,\"Two, \"\"too\"\"\"\na,North,3,\u05e9\u05dc\u05d5\u05e9\nb,North,1,It's one\n"
                 "c,South,,\nd,South,2,\"Two, \"\"too\"\"\"\nz,West,9,Nobody\n",
}


def run(*arguments):
    done = subprocess.run([QEL, *map(str, arguments)], capture_output=True, timeout=120)
    if done.returncode != 0:
        raise AssertionError(f"{arguments}: {done.stderr.decode()}")
    return done.stdout.decode()


def bracketed(name):
    return "[" + name.replace("]", "]]") + "]"


def joined(element):
    """The tables of a hierarchy's relation, from the facts on: name, its column, the column joined before it."""
    if element.tag == "Table":
        return [(element.get("name"), None, None)]
    left, right = element
    rest = joined(right)
    return joined(left) + [(rest[0][0], element.get("rightKey"), element.get("leftKey"))] + rest[1:]


def expected_rows(answer):
    """Caption and value of every row."""
    rows = answer["axes"][1] if len(answer["axes"]) > 1 else []
    return [(position["members"][0]["caption"], cells[0]) for position, cells in zip(rows, answer["cells"], strict=True)]


class Export(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-export-")))

    def export(self, definition):
        self.cube = self.path / "cube.cub"
        run("cube", "build", definition, "--output", self.cube)
        run("cube", "export", self.cube, "--schema", "mondrian", "--sql", self.path / "sql")
        self.database = sqlite3.connect(":memory:")
        for script in ("tables.sql", "rows.sql"):
            self.database.executescript((self.path / "sql" / script).read_text(encoding="utf-8"))

    def sums(self, cube, foreign_key, hierarchy, level, measure):
        """Name, caption and sum of the level's members, in the order of their identifiers."""
        facts = cube.find("Table").get("name")
        tables = joined(next(child for child in hierarchy if child.tag in ("Table", "Join")))
        source, before, last = f'"{facts}" f', None, None
        for table, own, others in tables:
            # The facts are joined to the first table, each table to the one before; deeper ones are not needed.
            on = (f'f."{foreign_key}" = "{table}"."{hierarchy.get("primaryKey")}"' if before is None
                  else f'"{before}"."{others}" = "{table}"."{own}"')
            source += f' JOIN "{table}" ON {on}'
            before = table
            if table == level.get("table", tables[0][0]):
                break
        last = before
        caption = level.get("captionColumn") or level.get("nameColumn")
        totals = dict(self.database.execute(
            f'SELECT "{last}"."{level.get("column")}", {measure.get("aggregator")}(f."{measure.get("column")}") '
            f"FROM {source} GROUP BY 1"))
        members = self.database.execute(f'SELECT DISTINCT "{level.get("column")}", "{level.get("nameColumn")}", '
                                        f'"{caption}" FROM "{last}" ORDER BY 1')
        return [(name, shown, totals.get(number)) for number, name, shown in members]

    def check_every_member(self):
        checked = 0
        for file in sorted((self.path / "sql").glob("*.xml")):
            schema = ElementTree.parse(file).getroot()
            cube = schema.find("Cube")
            for dimension in cube.findall("Dimension"):
                for hierarchy in dimension.findall("Hierarchy"):
                    own_name = hierarchy.get("name") or dimension.get("name")
                    for level in hierarchy.findall("Level"):
                        for measure in cube.findall("Measure"):
                            path = ".".join(map(bracketed, (dimension.get("name"), own_name, level.get("name"))))
                            rows = json.loads(run(
                                "mdx", self.cube, schema.get("name"), "--json",
                                f"SELECT {{[Measures].{bracketed(measure.get('name'))}}} ON COLUMNS, "
                                f"{{{path}.Members}} ON ROWS FROM {bracketed(schema.get('name'))}"))
                            expected = expected_rows(rows)
                            got = self.sums(cube, dimension.get("foreignKey"), hierarchy, level, measure)
                            self.assertEqual([row[1] for row in got], [row[0] for row in expected], path)
                            for (name, _, total), (_, value) in zip(got, expected):
                                if total is None or value is None:
                                    self.assertEqual(total, value, f"{path} {name}")
                                else:
                                    self.assertAlmostEqual(total, value, 4, f"{path} {name} {measure.get('name')}")
                                checked += 1
        return checked

    def test_every_member_has_its_sum(self):
        for name, text in SHARED.items():
            (self.path / name).write_text(text, encoding="utf-8")
        self.export(self.path / "shared.json")
        self.assertGreater(self.check_every_member(), 60)
        cube = ElementTree.parse(next((self.path / "sql").glob("*.xml"))).getroot().find("Cube")
        day = cube.find("Dimension[@name='Day']")
        self.assertEqual([day.get("type"), *(level.get("levelType") for level in day.iter("Level"))],
                         ["TimeDimension", "TimeYears", "TimeQuarters", "TimeMonths", "TimeDays"])
        written = [(element.attrib, element.findtext("Formula"),
                    [found.get("value") for found in element.findall("CalculatedMemberProperty")])
                   for element in cube if element.tag in ("CalculatedMember", "NamedSet")]
        self.assertEqual(written, [
            ({"name": "Per line", "dimension": "Measures", "formatString": "0.0"},
             "[Measures].[Amount] / [Measures].[Lines]", ["3"]),
            ({"name": "1 & 2", "hierarchy": "[Unit].[Flat]", "parent": "[Unit].[Flat].[All]"}, "Sum([Two])", []),
            ({"name": "Two"}, "{[Unit].[Flat].[1], [Unit].[Flat].[2]}", [])])

    def test_names_of_every_kind(self):
        self.export(TESTS / "helpers" / "books" / "books.json")
        self.assertGreater(self.check_every_member(), 60)

    def test_wrong_usage(self):
        for arguments, words in ((("no.cub", "--schema", "mondrian", "--sql", "x"), "does not exist"),
                                 (("no.cub", "--schema", "saiku", "--sql", "x"), "mondrian"),
                                 (("no.cub", "--schema", "mondrian", "--sql", "x", "--shards", "0"), "not in range"),
                                 (("no.cub",), "--schema is required")):
            done = subprocess.run([QEL, "cube", "export", *arguments], capture_output=True, cwd=self.path, timeout=60)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn(words, done.stderr.decode())


if __name__ == "__main__":
    QEL = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
