#!/usr/bin/env python3
"""Calls the registered server from VBScript over a server of cubes, which speaks XMLA."""
import os
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "tests" / "server"), str(ROOT / "tests" / "platform" / "data" / "xmla")]
import hostile_server_test as served
import script_values_test as script


class Script(unittest.TestCase):
    def setUp(self):
        self.server = served.Server()
        self.addCleanup(self.server.stop)
        self.server.lie = served.LIES["the truth"]
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        (self.folder / "qel").mkdir()
        self.enterContext(unittest.mock.patch.dict(
            os.environ, {"XDG_CONFIG_HOME": f"Z:{self.folder}".replace("/", "\\")}))

    def show(self, *calls, credentials="", path="grids"):
        """What the calls with an account and a month give."""
        address = f"http://{credentials}127.0.0.1:{self.server.server_port}/{path}"
        written = (script.written((function, "Other", ["OBS"], ["1"], ["All"], ["All"], ["All"], "All", "All", account, "Amount",
                                   "All", "All", "All", "All", "All", script.Date(2024, month, 1), script.Date(2024, month, 28)),
                                  address, script.vbs_argument) for function, account, month in calls)
        lines = script.run_script(self.folder, "calls.vbs", script.VBS % "\n".join(f"Show o.{call}" for call in written))
        return [script.value_of(line) for line in lines]

    def test_values(self):
        (self.folder / "qel" / "servers.ini").write_text(f"[http://127.0.0.1:{self.server.server_port}]\nUser=ann\nPassword=x\n")
        calls = [("QelF1", account, month) for account in (*served.KNOWN, "9999") for month in (1, 2, 3)]
        self.assertEqual(self.show(*calls), [int(account) + month / 4 if account in served.KNOWN else 0
                                             for _, account, month in calls])
        self.assertEqual({authorization for _, authorization, _ in self.server.seen}, {"Basic YW5uOng="})
        self.assertEqual(self.server.connections, 1)
        self.assertEqual(self.show(("QelFuncDemo", "4000", 1), path="status-500"), ["#ERR -2147217789"])

    def test_nothing_is_sent_to_a_server_that_is_not_known(self):
        for credentials in ("", "ann:s3cret@"):
            self.assertEqual(self.show(("QelFuncDemo", "4000", 1), ("QelF1", "4000", 1), credentials=credentials),
                             ["#err -2147217787", 0])
        self.assertEqual(self.server.seen, [])


if __name__ == "__main__":
    unittest.main()
