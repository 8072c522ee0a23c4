"""Workbooks that are saved and opened again keep their formulas and values, whatever wrote them."""
import re
import unittest
import zipfile

from calc_bench import BOOKS, CalcTest, calc_session, in_calc, name_formula, run_qel, shown, value_formula

FORMATS = {"xlsx": "Calc MS Excel 2007 XML", "ods": "calc8", "xls": "MS Excel 97"}
WHOLE_YEAR = -929.95


class SavedBooks(CalcTest):
    CELLS = {
        "A1": "Profit רווח", "B1": "OBS", "B2": 1, "B3": "All", "B4": 45292,
        "A2": value_formula(),
        "A3": value_formula(name="B1", number="B2", level="B3", member="B3:B4", first="B4"),
        "A4": value_formula(name='{"OBS","x"}', member='{"All";"x"}', account="4000", last=""),
        "A5": name_formula('"SuperSum1"', '"2"'),
        "A6": value_formula(cube="FlatFNC"),
        "A7": value_formula(measure="B1:B2"),
        "A8": f"=IF({value_formula()[1:]}<0,-{value_formula(function='QeL1')[1:]},{name_formula('B1', 1)[1:]})",
        "A9": value_formula(level='{"Level2"}', member='{"Say \u00a0]\u00a0 & go"}', last='"31/12/2024"'),
    }

    def shown_and_formulas(self, document):
        sheet = document.Sheets.getByIndex(0)
        cells = [sheet.getCellRangeByName(name) for name in self.CELLS]
        return [cell.getFormula() for cell in cells], [shown(cell) if cell.getError() else cell.getString() for cell in cells]

    def test_every_format_keeps_formulas_and_values(self):
        self.fill(self.CELLS)
        before = self.shown_and_formulas(self.document)
        self.assertIn("הוצאות", before[1])
        self.assertIn("Outdated Cube Version", before[1])
        for extension, filter_name in FORMATS.items():
            with self.subTest(extension):
                path = self.folder / f"book.{extension}"
                self.document.storeToURL(calc_session.url_of(path), calc_session.properties(FilterName=filter_name))
                again = self.open(path)
                self.assertEqual(self.shown_and_formulas(again), before, "as it was opened")
                again.calculateAll()
                self.assertEqual(self.shown_and_formulas(again), before, "calculated again")

    def test_a_workbook_for_excel_holds_the_formulas_as_excel_writes_them(self):
        self.fill({"A1": value_formula(), "A2": name_formula('"SuperSum1"', '"1"')})
        path = self.folder / "excel.xlsx"
        self.document.storeToURL(calc_session.url_of(path), calc_session.properties(FilterName=FORMATS["xlsx"]))
        with zipfile.ZipFile(path) as book:
            sheet = book.read("xl/worksheets/sheet1.xml").decode()
        formulas = [re.sub("&quot;", '"', text) for text in re.findall(r"<f[^>]*>([^<]*)</f>", sheet)]
        expected = [value_formula()[1:], name_formula('"SuperSum1"', '"1"')[1:]]
        self.assertEqual([f.upper() for f in formulas], [f.upper() for f in expected])

    def test_a_workbook_that_excel_calculated_shows_new_values_when_calculated(self):
        self.fill({"A1": value_formula(cube_file="later.cub")})
        path = self.folder / "later.xlsx"
        self.document.storeToURL(calc_session.url_of(path), calc_session.properties(FilterName=FORMATS["xlsx"]))
        run_qel("cube", "build", BOOKS / "books.json", "--output", self.folder / "later.cub")
        again = self.open(path)
        again.calculateAll()
        self.assertEqual(shown(again.Sheets.getByIndex(0).getCellRangeByName("A1")), WHOLE_YEAR)

    def test_a_relative_path_leads_to_the_cube_while_the_workbook_is_loaded(self):
        folder = self.folder / "moved"
        folder.mkdir(exist_ok=True)
        run_qel("cube", "build", BOOKS / "books.json", "--output", folder / "beside.cub")
        self.fill({"A1": value_formula(cube_file="beside.cub"), "A2": "=A1*2"})
        path = folder / "book.ods"
        self.document.storeToURL(calc_session.url_of(path), calc_session.properties(FilterName=FORMATS["ods"]))
        sheet = self.open(path).Sheets.getByIndex(0)
        self.assertEqual([shown(sheet.getCellRangeByName(name)) for name in ("A1", "A2")], [WHOLE_YEAR, 2 * WHOLE_YEAR])

    def test_without_the_add_in_the_formula_stays(self):
        self.fill({"A1": value_formula()})
        path = self.folder / "visitor.xlsx"
        self.document.storeToURL(calc_session.url_of(path), calc_session.properties(FilterName=FORMATS["xlsx"]))
        kept = self.folder / "kept.xlsx"
        with calc_session.Office(calc_session.Profile(self.folder / "bare"), self.folder) as office:
            document = office.open(path)
            document.calculateAll()
            self.assertTrue(document.Sheets.getByIndex(0).getCellRangeByName("A1").getError())
            document.storeToURL(calc_session.url_of(kept), calc_session.properties(FilterName=FORMATS["xlsx"]))
            document.close(True)
        again = self.open(kept)
        again.calculateAll()
        cell = again.Sheets.getByIndex(0).getCellRangeByName("A1")
        self.assertEqual((shown(cell), cell.getFormula().upper()), (WHOLE_YEAR, in_calc(value_formula()).upper()))


if __name__ == "__main__":
    unittest.main()
