"""What the tests share that use a keyboard and a mouse: an office on a screen with a window manager, and a ledger's cube."""
import os
import shutil
import unittest

from calc_bench import PACKAGE, SOURCE, WORK, calc_session, run_qel
from person import Hands, Person, eventually, screen

os.environ["XDG_CONFIG_HOME"] = str(WORK / "config")


class KeyboardTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(WORK / "suite", ignore_errors=True)
        (WORK / "suite").mkdir()
        run_qel("settings", "set", "MDBPath", WORK / "suite")
        run_qel("settings", "set", "QelUILanguage", "0")
        run_qel("cube", "build", SOURCE / "examples" / "ledger" / "ledger.json", "--output", WORK / "ledger.cub")
        profile = calc_session.fresh_profile(WORK / "profile", PACKAGE)
        display = cls.enterClassContext(screen("openbox"))
        cls.office = cls.enterClassContext(calc_session.Office(profile, WORK, display))
        cls.person, cls.hands = Person(cls.office, display), Hands(display)

    def setUp(self):
        (WORK / "suite" / "QelFunction17.mdb").unlink(missing_ok=True)  # it would be reported
        self.document = self.office.new_document()
        self.addCleanup(self.document.close, True)
        self.addCleanup(self.person.leave)
        eventually("the new document in front", self.document.CurrentController.Frame.isActive)
