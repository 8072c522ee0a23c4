"""The script that installs the add-in, checks it and removes it."""
import subprocess
import sys
import unittest

from calc_bench import PACKAGE, QEL, SOURCE, WORK


class Installation(unittest.TestCase):
    def office(self, command, *options):
        done = subprocess.run([sys.executable, "-B", SOURCE / "scripts" / "office", "--profile", WORK / "profile", command,
                               *options], capture_output=True, encoding="utf-8", timeout=600, check=False)
        return done.returncode, done.stdout, done.stderr

    def test_from_nothing_to_nothing(self):
        self.office("remove")
        status, _, messages = self.office("check", "--qel", QEL)
        self.assertEqual((status, "scripts/office install" in messages), (1, True), messages)
        status, _, messages = self.office("install", "--package", WORK / "missing.oxt")
        self.assertEqual((status, "missing.oxt" in messages), (1, True), messages)
        for _ in range(2):  # installing again renews it
            status, _, messages = self.office("install", "--package", PACKAGE)
            self.assertEqual((status, messages), (0, ""))
        status, output, messages = self.office("check", "--qel", QEL)
        self.assertEqual((status, messages), (0, ""))
        self.assertIn("Calc -1826089.27, qel -1826089.27", output)
        self.assertEqual(self.office("remove")[0], 0)
        self.assertEqual(self.office("check", "--qel", QEL)[0], 1)


if __name__ == "__main__":
    unittest.main()
