"""How scripts end when what they need fails or they are interrupted. Programs of the machine are played by small ones."""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

SCRIPTS = pathlib.Path(sys.argv.pop(1)).absolute()
MACHINE = {
    "dpkg-query": "echo installed",
    "apt-get": "echo Debian file:/packages bookworm main",
    "apt-config": "true",
    "unshare": 'while [ "${1#-}" != "$1" ]; do shift; done; exec "$@"',
    "mount": "exit 1",
    "chroot": "exit 1",
}


class Scripts(unittest.TestCase):
    def setUp(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.programs, self.rooms = folder / "programs", folder / "rooms"
        self.programs.mkdir()
        self.rooms.mkdir()
        for name, text in MACHINE.items():
            self.play(name, text)

    def play(self, name, text):
        """In bash, which hands on the functions that the scripts export."""
        program = self.programs / name
        program.write_text(f"#!/bin/bash\n{text}\n")
        program.chmod(0o755)

    def run_script(self, name, *arguments):
        """In a process group of its own, which has the number of the script's process."""
        environment = {**os.environ, "PATH": f"{self.programs}:{os.environ['PATH']}", "TMPDIR": str(self.rooms)}
        command = ["env", "--default-signal", SCRIPTS / name, *arguments]
        done = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=60,
                              check=False, start_new_session=True)
        return done.returncode, done.stdout + done.stderr

    def test_wrong_usage_names_the_word(self):
        for name, arguments, told in (("clean-room", ["--could", "true"], "--could"), ("clean-room", ["--cold"], "a command"),
                                      ("test", ["native", "windows"], "'windows'"), ("style", ["all"], "'all'")):
            with self.subTest(name, arguments=arguments):
                status, text = self.run_script(name, *arguments)
                self.assertEqual(status, 2)
                self.assertIn(told, text)

    def test_a_clean_room_that_cannot_be_made_leaves_nothing(self):
        self.play("mmdebstrap", 'mkdir "${TMPDIR}"/clean-room.*/room/usr; echo no packages there; exit 1')
        status, text = self.run_script("clean-room", "true")
        self.assertEqual(status, 2, text)
        self.assertIn("no packages there", text)
        self.assertEqual(list(self.rooms.iterdir()), [])

    def test_an_interrupted_clean_room_leaves_nothing(self):
        for name in ("INT", "TERM", "HUP"):
            with self.subTest(name):
                # A process that goes on writing for a moment has let go of the room's lock.
                # A process that goes on writing for a moment has let go of the room's lock.
                self.play("mmdebstrap", 'room=$(echo "$TMPDIR"/clean-room.*/room); end=$((SECONDS + 2)); '
                                        '(while [ $SECONDS -lt $end ] && : >"$room/$((i++))"; do :; done) 8>&- 2>/dev/null & '
                                        f'kill -s {name} "$(cut -d " " -f 5 /proc/self/stat)"; sleep 1')
                status, text = self.run_script("clean-room", "true")
                self.assertEqual(status, 128 + signal.Signals[f"SIG{name}"], text)
                self.assertEqual(list(self.rooms.iterdir()), [])

    def test_sqlite_source_tells_what_npm_said_and_what_was_wanted(self):
        self.play("npm", "echo npm error code ENOTFOUND >&2; exit 1")
        folder = self.rooms / "sqlite"
        status, text = self.run_script("sqlite-source", folder)
        self.assertEqual(status, 1)
        for told in ("ENOTFOUND", "sqlite3.c", str(folder)):
            self.assertIn(told, text)
        self.assertEqual(list(folder.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
