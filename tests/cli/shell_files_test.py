#!/usr/bin/env python3
"""Installs the program and uses its man pages and completions as shells and man do."""
import os
import pathlib
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest

CMAKE = BUILD = ""


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.prefix = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="qel-test-")))
        subprocess.run([CMAKE, "--install", BUILD, "--component", "programs", "--prefix", cls.prefix], check=True,
                       capture_output=True, timeout=120)
        cls.qel = cls.prefix / "bin" / "qel"

    def help_of(self, *command):
        return subprocess.run([self.qel, *command, "--help"], capture_output=True, text=True, timeout=60).stdout

    def commands(self, *command):
        """Every command that --help lists, as its words."""
        listed = self.help_of(*command).partition("\nSubcommands:\n")[2].partition("\n\n")[0]
        for name in re.findall(r"^  (\S+)", listed, re.MULTILINE):
            yield (*command, name)
            yield from self.commands(*command, name)

    def test_every_command_has_a_man_page_that_renders(self):
        environment = dict(os.environ, MANWIDTH="100", LC_ALL="C.UTF-8", MAN_KEEP_FORMATTING="0", GROFF_NO_SGR="1")
        for command in ((), *self.commands()):
            page = self.prefix / "share" / "man" / "man1" / ("-".join(("qel", *command)) + ".1")
            done = subprocess.run(["man", "--warnings=w", "--encoding=utf-8", "--nh", "-l", page], capture_output=True, text=True,
                                  env=environment, timeout=60)
            self.assertEqual((done.returncode, done.stderr), (0, ""), command)
            text = re.sub(".\b", "", done.stdout)
            words = text.split()
            for expected in (self.help_of(*command), " ".join(("qel", *command))):
                for word in expected.replace(",", " ").split():
                    if word.startswith("--"):
                        self.assertIn(word, " ".join(words), command)
            self.assertIn(" ".join(self.help_of(*command).split("\n")[-2].split()), " ".join(words), command)

    def complete_in_bash(self, line):
        """The words that bash offers for the last word of the line, after its own splitting of words."""
        script = ('source "$1"; shift; line=$1; COMP_WORDS=($(sed "s/=/ = /" <<<"$line")); '
                  '[[ $line == *[=\\ ] ]] && COMP_WORDS+=(""); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); '
                  'function=$(complete -p qel | sed "s/.*-F \\([^ ]*\\).*/\\1/"); $function; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        file = self.prefix / "share" / "bash-completion" / "completions" / "qel"
        done = subprocess.run(["bash", "-u", "-c", script, "bash", file, line], capture_output=True, text=True, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ""), line)
        return done.stdout.split()

    def test_bash(self):
        self.assertEqual(set(self.complete_in_bash("qel ")) & {"eval", "cube", "lang", "--version", "shell-files"},
                         {"eval", "cube", "lang", "--version"})
        cases = [
            ("qel cube b", ["build"]),
            ("qel --date-order ", ["dmy", "mdy", "ymd"]),
            ("qel --date-order=m", ["mdy"]),
            ("qel --date-order mdy ev", ["eval"]),
            ("qel mdx f.cub C --names=", ["caption", "name", "unique", "key"]),
            ("qel mdx --na", ["--names"]),
            ("qel eval --date", ["--date-order"]),
            ("qel members --kind summary-", ["summary-codes", "summary-names"]),
            ("qel members --level cube --ki", ["--kind"]),
            ("qel cube build --output ", []),
            ("qel cube build led", []),
        ]
        for line, expected in cases:
            self.assertEqual(self.complete_in_bash(line), expected, line)

    def test_bash_completes_every_option_of_every_command(self):
        for command in ((), *self.commands()):
            offered = self.complete_in_bash(" ".join(("qel", *command, "-")))
            shown = re.findall(r"^  (?:-\w,)?(--[\w-]+)", self.help_of(*command), re.MULTILINE)
            self.assertLessEqual(set(shown), set(offered), command)

    def typed_in_zsh(self, keys, until):
        child, terminal = pty.fork()
        if child == 0:
            os.environ.update(TERM="dumb", PATH=f"{self.qel.parent}:{os.environ['PATH']}", ZDOTDIR="/nonexistent")
            os.execvp("zsh", ["zsh", "-f", "-i"])
        functions = self.prefix / "share" / "zsh" / "site-functions"
        shown, end = "", time.monotonic() + 60

        def read_until(text):
            nonlocal shown
            while text not in shown and time.monotonic() < end:
                if select.select([terminal], [], [], 0.2)[0]:
                    shown += os.read(terminal, 65536).decode(errors="replace")
        setup = f"fpath=({functions} $fpath); autoload -U compinit; compinit -u -D; PS1=$'\\x3e\\x3e ready '"
        os.write(terminal, setup.encode() + b"\n")
        read_until(">> ready ")
        os.write(terminal, keys.encode())
        read_until(until)
        os.close(terminal)
        os.waitpid(child, 0)
        return shown

    def test_zsh(self):
        for keys, until in [("qel cube bui\t", "qel cube build "), ("qel mdx f C --names u\t", "--names unique"),
                            ("qel eval --date-o\t", "--date-order "), ("qel --date-order=y\t", "--date-order=ymd"),
                            ("qel cube \t", "Make a cube file")]:
            self.assertIn(until, self.typed_in_zsh(keys, until), keys)


if __name__ == "__main__":
    CMAKE, BUILD = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
