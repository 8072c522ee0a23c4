#!/usr/bin/env python3
"""Photographs the first window of the installer, in English and in Hebrew: setup_picture.py BIN WORK PICTURES.

BIN has the programs of the preset windows-x64; WORK is a folder for a Wine prefix and the installer.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "server" / "wizards"))
sys.dont_write_bytecode = True

from screen import Screen  # noqa: E402


class Desktop(Screen):
    """A screen on which nothing of ours is installed yet."""

    def __init__(self, folder):
        super().__init__(folder, None, None)

    def install(self):
        self.prepare_look()


def installer(programs, folder):
    contents = folder / "contents"
    shutil.rmtree(contents, ignore_errors=True)
    (contents / "x64").mkdir(parents=True)
    for name in ("OrmFuncQel4.dll", "qel.exe"):
        shutil.copy(programs / name, contents / "x64")
    version = next(line.split("=")[1] for line in (programs.parent / "CMakeCache.txt").read_text("utf-8").splitlines()
                   if line.startswith("CMAKE_PROJECT_VERSION:"))
    setup = folder / "setup.exe"
    subprocess.run([ROOT / "packaging" / "windows" / "make-setup", contents, version, setup, "amd64-unicode"], check=True)
    return setup


def locale_of(language, folder):
    """What makes Windows speak that language, whatever languages this machine has."""
    locales = folder / "locales"
    locales.mkdir(exist_ok=True)
    subprocess.run(["localedef", "-i", language, "-f", "UTF-8", locales / f"{language}.UTF-8"], check=True)
    return {"LOCPATH": str(locales), "LC_ALL": f"{language}.UTF-8"}


def main():
    programs, folder, pictures = (pathlib.Path(text).absolute() for text in sys.argv[1:4])
    with Desktop(folder) as desktop:
        setup = installer(programs, folder)
        for language, ending in (("en_US", ""), ("he_IL", "-hebrew")):
            environment = {**os.environ, "WINEPREFIX": str(folder / "prefix"), "WINEDEBUG": "-all",
                           "DISPLAY": f":{desktop.number}", **locale_of(language, folder)}
            desktop.wine("--stop")
            process = subprocess.Popen(["wine", setup], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, start_new_session=True)
            try:
                subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "OrmFuncQel4"], env=environment,
                               stdout=subprocess.DEVNULL, check=True, timeout=300)
                time.sleep(3)  # until everything is drawn
                desktop.take_picture(pictures / f"setup{ending}.png")
            finally:
                desktop.end(process)


if __name__ == "__main__":
    main()
