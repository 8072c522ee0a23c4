"""What the forms of an argument in a cell become, and what a cell shows of results and failures."""
import os
import shutil
import unittest

from calc_bench import BOOKS, NO_VALUE, CalcTest, Error, calc_session, name_formula, run_qel, shown, value_formula

from com.sun.star.lang import Locale
from com.sun.star.util import Date

WHOLE_YEAR = -929.95
SALES = -1500.3
DIVISION_BY_ZERO = 532
PARAMETER_LIST = 504  # Calc hands no range with an error in it to an add-in


class ArgumentForms(CalcTest):
    def check(self, cases):
        for what, formula, expected in cases:
            with self.subTest(what):
                self.assertEqual(self.value(formula), expected)

    def test_keys(self):
        self.fill({"B1": "OBS", "B2": 1, "B3": "All", "B4": "Level1", "B5": "North", "B6": " OBS ", "B7": '=""',
                   "C1": "other", "D1": "Level2", "D2": "Karmi'el"})
        north = self.value(value_formula(level='{"Level1"}', member='{"North"}'))
        karmiel = self.value(value_formula(level='{"Level2"}', member='{"Karmi\'el"}'))
        self.assertNotIn(north, (0, karmiel, WHOLE_YEAR))
        self.check([
            ("array constants", value_formula(), WHOLE_YEAR),
            ("cells", value_formula(name="B1", number="B2", level="B3", member="B3", activity="B3"), WHOLE_YEAR),
            ("a number", value_formula(number="1"), WHOLE_YEAR),
            ("texts count as cells", value_formula(name='"OBS"', level='"All"', member='"All"'), WHOLE_YEAR),
            ("a cell's text is trimmed", value_formula(name="B6"), WHOLE_YEAR),
            ("keys of cells", value_formula(level="B4", member="B5"), north),
            ("a key with an apostrophe", value_formula(level="D1", member="D2"), karmiel),
            ("the first of a row of cells", value_formula(name="B1:C1"), WHOLE_YEAR),
            ("a column's first cell counts", value_formula(level="B4:B5", member="B5:B7"), north),
            ("more cells than an array may have", value_formula(member="B3:B30"), WHOLE_YEAR),
            ("the first of an array's row", value_formula(name='{"OBS","x"}'), WHOLE_YEAR),
            ("the first of an array's column", value_formula(name='{"OBS";"x"}'), WHOLE_YEAR),
            ("the first of an array of rows", value_formula(name='{"OBS",2;3,"x"}'), WHOLE_YEAR),
            ("an empty text is no key", value_formula(name='""'), 0),
            ("a cell with an empty text is no key", value_formula(name="B7"), 0),
            ("an empty cell in front is an empty key", value_formula(name="A2:B2"), 0),
            ("an omitted key", value_formula(name=""), 0),
            ("a key that no member has", value_formula(level='{"Level1"}', member='{"Nowhere"}'), 0),
        ])

    def test_texts(self):
        self.fill({"B1": 4000, "B2": "4000", "B3": "Amount", "C3": "Lines"})
        self.check([
            ("an account", value_formula(account='"4000"'), SALES),
            ("a number as text", value_formula(account="4000"), SALES),
            ("a cell's number", value_formula(account="B1"), SALES),
            ("a cell's text", value_formula(account="B2"), SALES),
            ("a measure with blanks", value_formula(account='"4000"', measure='"  Amount "'), SALES),
            ("omitted texts restrict nothing", value_formula(money="", plbs="", rh="", firm="", opening=""), WHOLE_YEAR),
            ("several cells are no text", value_formula(measure="B3:C3"), Error(NO_VALUE)),
            ("an array is no text", value_formula(account='{"4000","5000"}'), Error(NO_VALUE)),
        ])

    def test_dates(self):
        self.fill({"B1": 45292, "B2": 45657, "B3": '=""'})
        january = self.value(value_formula(last="DATE(2024,1,31)"))
        self.assertNotIn(january, (0, WHOLE_YEAR))
        self.check([
            ("date cells", value_formula(first="B1", last="B2"), WHOLE_YEAR),
            ("numbers", value_formula(first="45292", last="45657.75"), WHOLE_YEAR),
            ("DATE", value_formula(first="DATE(2024,1,1)", last="DATE(2024,12,31)"), WHOLE_YEAR),
            ("no first date: the last period alone", value_formula(first="", last="DATE(2024,1,31)"), january),
            ("an empty cell as first date", value_formula(first="B9", last="DATE(2024,1,31)"), january),
            ("a text that is no date", value_formula(first='"soon"'), Error(NO_VALUE)),
            ("a cell with an empty text", value_formula(first="B3"), Error(NO_VALUE)),
            ("a day of no calendar", value_formula(last="1E9"), Error(NO_VALUE)),
            ("several cells", value_formula(first="B1:B2"), Error(NO_VALUE)),
            ("backwards", value_formula(first="B2", last="B1"), 0),
        ])
        self.document.NullDate = Date(1, 1, 1904)
        self.check([("numbers since 1904", value_formula(first="43830", last="B2-1462"), WHOLE_YEAR),
                    ("no first date", value_formula(first="B9", last="DATE(2024,1,31)"), january)])

    def test_date_texts_are_read_as_the_document_writes_them(self):
        february_third = '"02/03/2024"', '"02/03/2024"'
        days = {"dmy": run_qel("eval", value_formula(first=february_third[0], last=february_third[1]),
                               folder=self.folder),
                "mdy": run_qel("--date-order", "mdy", "eval",
                               value_formula(first=february_third[0], last=february_third[1]), folder=self.folder)}
        self.assertNotEqual(days["dmy"], days["mdy"])
        settings = self.office.service("com.sun.star.configuration.ConfigurationProvider").createInstanceWithArguments(
            "com.sun.star.configuration.ConfigurationUpdateAccess",
            calc_session.properties(nodepath="/org.openoffice.Setup/L10N"))
        self.addCleanup(settings.commitChanges)
        self.addCleanup(settings.setPropertyValue, "ooSetupSystemLocale", "")
        for office, document, order in (("", "en-GB", "dmy"), ("he-IL", "en-US", "dmy"), ("he-IL", "de-DE", "dmy"),
                                        ("de-DE", "he-IL", "dmy"), ("en-US", "en-US", "mdy"), ("he-IL", "en-PH", "mdy")):
            with self.subTest(office=office, document=document):
                settings.setPropertyValue("ooSetupSystemLocale", office)
                settings.commitChanges()
                self.document.setPropertyValue("CharLocale", Locale(*document.split("-"), ""))
                value = self.value(value_formula(first=february_third[0], last=february_third[1]))
                self.assertEqual(value, float(days[order]))

    def test_names(self):
        self.fill({"B1": "SuperSum1", "B2": 2})
        self.check([
            ("a group's name", name_formula('"SuperSum1"', '"1"'), "Revenue"),
            ("a Hebrew name, by cells", name_formula("B1", "B2"), "הוצאות"),
            ("the twin", name_formula('"SuperSum1"', '"1"', function="RetQelName"), "Revenue"),
            ("no such group", name_formula('"SuperSum1"', '"77"'), "-"),
            ("a name already", name_formula('"SuperSum1"', '"Sales ""net"" מכירות"'), 'Sales "net" מכירות'),
            ("no kind of group", name_formula('"Accounts"', '"1"'), ""),
            ("no cube file", name_formula('"SuperSum1"', '"1"', cube_file="missing.cub"), "-"),
            ("several cells", name_formula('"SuperSum1"', "B1:B2"), Error(NO_VALUE)),
        ])

    def test_results_and_failures(self):
        self.fill({"B1": "=1/0", "B2": "=NA()"})
        (self.folder / "damaged.cub").write_bytes((self.folder / "books.cub").read_bytes()[:5000])
        if not (self.folder / "pipe.cub").exists():
            os.mkfifo(self.folder / "pipe.cub")
        long = 'REPT("x]",15000)'
        self.check([
            ("any letter case", value_formula().replace("OrmFunctionQel4.OrmQelFunction", "oRMfUNCTIONqEL4.ormqelfunction"),
             WHOLE_YEAR),
            ("the other spelling", value_formula(function="QeLF1"), WHOLE_YEAR),
            ("the twin", value_formula(function="QeL1"), WHOLE_YEAR),
            ("an outdated cube", value_formula(cube="FlatFNC"), "Outdated Cube Version"),
            ("no such cube", value_formula(cube="NobodyFNC"), 0),
            ("no such file", value_formula(cube_file="missing.cub"), 0),
            ("a damaged file", value_formula(cube_file="damaged.cub"), 0),
            ("a folder", value_formula(cube_file="."), 0),
            ("a pipe that nobody writes to", value_formula(cube_file="pipe.cub"), 0),
            ("a device without end", value_formula(cube_file="/dev/zero"), 0),
            ("no file at all", value_formula(cube_file=""), 0),
            ("keys as long as a cell's text may be", value_formula(account=long, member=long, level=long), 0),
            ("brackets and quotes", value_formula(account='"]},{[""\'&"', level='{"Level1"}', member='{"]]]["}'), 0),
            ("half a letter", value_formula(account='LEFT("\U0001F600",1)'), 0),
            ("an error as argument", value_formula(account="B1"), Error(DIVISION_BY_ZERO)),
            ("an error among the keys", value_formula(member="B1:B3"), Error(PARAMETER_LIST)),
            ("a call inside a sum", f"=SUM({value_formula()[1:]},1)", WHOLE_YEAR + 1),
        ])
        self.assertEqual(self.value(value_formula()), WHOLE_YEAR, "after all of them")


class Documents(CalcTest):
    """Where relative paths lead, with two cubes of one name in two folders."""

    def document_in(self, folder, definition):
        (self.folder / folder).mkdir(exist_ok=True)
        run_qel("cube", "build", definition, "--output", self.folder / folder / "here.cub")
        path = self.folder / folder / "book.ods"
        document = self.new_document()
        document.storeAsURL(calc_session.url_of(path), ())
        return document

    def doubled_books(self):
        source = self.folder / "doubled"
        shutil.copytree(BOOKS, source, dirs_exist_ok=True)
        lines = (source / "ledger.csv").read_text(encoding="utf-8").splitlines(keepends=True)
        (source / "ledger.csv").write_text("".join(lines + lines[1:]), encoding="utf-8")
        return source / "books.json"

    def test_two_documents_with_cubes_of_their_own(self):
        one = self.document_in("חשבונות 2024", BOOKS / "books.json")
        two = self.document_in("b", self.doubled_books())
        for round_ in range(3):
            for document, expected in ((one, WHOLE_YEAR), (two, 2 * WHOLE_YEAR)):
                self.sheet = document.Sheets.getByIndex(0)
                self.assertAlmostEqual(self.value(value_formula(cube_file="here.cub")), expected, 9, round_)
                self.assertAlmostEqual(self.value(value_formula(cube_file=" ../b/here.cub")), 2 * WHOLE_YEAR, 9, round_)
                self.assertAlmostEqual(self.value(value_formula(cube_file="..\\b\\here.cub")), 2 * WHOLE_YEAR, 9, round_)
                self.assertEqual(self.value(name_formula('"SuperSum1"', '"1"', cube_file="here.cub")), "Revenue")

    def test_what_is_not_beside_the_document_is_taken_from_the_current_folder(self):
        self.sheet = self.document_in("c", BOOKS / "books.json").Sheets.getByIndex(0)
        self.assertEqual(self.value(value_formula(cube_file="books.cub")), WHOLE_YEAR)
        self.assertEqual(self.value(value_formula(cube_file=self.folder / "books.cub")), WHOLE_YEAR)
        self.sheet = self.new_document().Sheets.getByIndex(0)
        self.assertEqual(self.value(value_formula(cube_file="books.cub")), WHOLE_YEAR)
        self.assertEqual(self.value(value_formula(cube_file="here.cub")), 0)

    def test_a_cube_that_was_replaced_is_read_anew(self):
        document = self.document_in("d", BOOKS / "books.json")
        self.sheet = document.Sheets.getByIndex(0)
        here, books = (value_formula(cube_file=file) for file in ("here.cub", "books.cub"))
        self.fill({"A1": here, "A2": books, "A3": here, "A4": books})
        self.assertEqual([shown(self.cell(name)) for name in ("A1", "A2", "A3", "A4")], [WHOLE_YEAR] * 4)
        run_qel("cube", "build", self.doubled_books(), "--output", self.folder / "d" / "here.cub")
        # A thread's connection stays on the file that it opened until another cube is asked for; one call calculates
        # all cells on one thread, so the later of the two that ask for the replaced file opens it anew.
        document.calculateAll()
        self.assertIn(round(2 * WHOLE_YEAR, 2), [round(shown(self.cell(name)), 2) for name in ("A1", "A3")])
        self.assertEqual([shown(self.cell(name)) for name in ("A2", "A4")], [WHOLE_YEAR] * 2)


if __name__ == "__main__":
    unittest.main()
