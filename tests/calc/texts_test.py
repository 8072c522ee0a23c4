"""What Calc's function wizard shows of the functions, in both languages."""
import unittest

from calc_bench import CLASS, CalcTest

from com.sun.star.lang import Locale

ARGUMENTS = {"QelF1": 18, "QeL1": 18, "QelName": 4, "RetQelName": 4}
NAMES = ["cubeFile", "CubeName", "ObsName", "ObsNum", "ObsLevel", "ObsMember", "ActivityList", "Summary_Group", "Seif_level",
         "Accounts", "Measure", "MoneySet", "Plbs", "RH", "Firma", "Opening_Balance", "From_Date", "To_Date"]


def is_hebrew(text):
    return any("\u05d0" <= char <= "\u05ea" for char in text)


class FunctionTexts(CalcTest):
    def test_the_function_wizard_offers_the_worksheet_functions_alone(self):
        descriptions = self.office.service("com.sun.star.sheet.FunctionDescriptions")
        found = {}
        for i in range(descriptions.Count):
            texts = {item.Name: item.Value for item in descriptions.getByIndex(i)}
            if texts["Name"].upper().startswith(CLASS.upper()):
                found[texts["Name"].upper()] = texts
        self.assertEqual(set(found), {(CLASS + method).upper() for method in ARGUMENTS})
        for method, count in ARGUMENTS.items():
            texts = found[(CLASS + method).upper()]
            self.assertTrue(texts["Description"], method)
            self.assertEqual(len(texts["Arguments"]), count, method)
            self.assertTrue(all(argument.Description for argument in texts["Arguments"]), method)
        self.assertEqual([argument.Name for argument in found[(CLASS + "QelF1").upper()]["Arguments"]], NAMES)

    def test_every_text_in_both_languages(self):
        add_in = self.office.service("OrmFunctionQel4.OrmQelFunction")
        self.addCleanup(add_in.setLocale, add_in.getLocale())
        for language, expected in (("en", False), ("he", True), ("iw", True), ("fr", False)):
            add_in.setLocale(Locale(language, "", ""))
            for method, count in ARGUMENTS.items():
                texts = [add_in.getFunctionDescription(method), add_in.getDisplayCategoryName(method)]
                for i in range(1, count + 1):  # 0 is the document, which Calc does not show
                    texts.append(add_in.getArgumentDescription(method, i))
                    # The one name that is the same in both.
                    if add_in.getDisplayArgumentName(method, i) != "RH":
                        texts.append(add_in.getDisplayArgumentName(method, i))
                for text in texts:
                    self.assertTrue(text, (language, method))
                    self.assertEqual(is_hebrew(text), expected, text)

    def test_names_go_both_ways_and_unknown_ones_nowhere(self):
        add_in = self.office.service("OrmFunctionQel4.OrmQelFunction")
        for method in ARGUMENTS:
            self.assertEqual(add_in.getProgrammaticFuntionName((CLASS + method).upper()), method)
            self.assertEqual([name.Name for name in add_in.getCompatibilityNames(method)], [CLASS + method])
        for method in ("", "getServiceName", "QelF2"):
            self.assertEqual(add_in.getDisplayFunctionName(method), "")
            self.assertEqual(add_in.getFunctionDescription(method), "")
            self.assertEqual(add_in.getCompatibilityNames(method), ())
        for argument in (-1, 0, 19, 2**31 - 1, -2**31):
            self.assertEqual(add_in.getArgumentDescription("QelF1", argument), "")


if __name__ == "__main__":
    unittest.main()
