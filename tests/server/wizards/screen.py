"""A virtual display with Windows programs, and a separate Wine prefix with the server registered."""

import os
import pathlib
import shutil
import signal
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[3]
WINE = ROOT / "scripts" / "wine"
SHEET, RECORDSET = "{5d2f8a14-0c3b-4e67-a19f-27d04b8e6310}", "{3b7c0f8e-51a5-4a0e-9d9c-6b5a1f0c2d71}"
TIMEOUT = 300


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def registry_text(text):
    return text.replace("\\", "\\\\").replace('"', '\\"')


class Screen:
    """A context manager that ends everything it starts."""

    def __init__(self, folder, server, classes):
        self.folder, self.server, self.classes = folder, server, classes
        self.component = folder / "component"
        self.display = None

    def __enter__(self):
        self.folder.mkdir(parents=True, exist_ok=True)
        self.start_display()
        try:
            self.environment = dict(os.environ, QEL_WINEPREFIX=str(self.folder / "prefix"),
                                    QEL_WINE_DISPLAY=f":{self.number}")
            self.wine("--stop") # a run before may have been killed
            self.wine("--start")
            self.install()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        self.wine("--stop")
        self.display.kill()
        self.display.wait()

    def start_display(self):
        reading, writing = os.pipe()
        self.display = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
            pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            self.number = pipe.readline().strip()
        if not self.number:
            raise RuntimeError("Xvfb did not start")

    def wine(self, *words):
        subprocess.run([WINE, *map(str, words)], env=self.environment, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=TIMEOUT)

    def start(self, *words):
        """Starts a program in the background; end() ends it."""
        return subprocess.Popen([WINE, "--test", *map(str, words)], env=self.environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)

    @staticmethod
    def end(process):
        try:
            os.killpg(process.pid, signal.SIGKILL) # the program and the script that started it
        except ProcessLookupError:
            pass # both ended before
        process.wait()

    def install(self):
        self.component.mkdir(exist_ok=True)
        server = self.component / "OrmFuncQel4.dll"
        shutil.copy(self.server, server)
        keys = ""
        for name, number in (("QelTest.Sheet", SHEET), ("ADODB.Recordset", RECORDSET), ("MSPersist", RECORDSET)):
            keys += f"[HKEY_CLASSES_ROOT\\{name}\\CLSID]\n@=\"{number}\"\n" \
                    f"[HKEY_CLASSES_ROOT\\CLSID\\{number}\\InprocServer32]\n" \
                    f'@="{registry_text(windows_path(self.classes))}"\n"ThreadingModel"="Both"\n'
        self.prepare_look(keys)
        self.wine("--test", "regsvr32", "/s", windows_path(server))

    def prepare_look(self, keys=""):
        """Windows without a window manager, in fonts that this machine has."""
        marlett = pathlib.Path("/usr/share/wine/fonts/marlett.ttf") # the letters that are a window's own buttons
        if marlett.exists():
            shutil.copy(marlett, self.drive / "windows" / "Fonts")
        look = "[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n\"Managed\"=\"N\"\n" \
               "[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n\"Tahoma\"=\"DejaVu Sans Condensed\"\n"
        self.add_to_registry(look + keys)

    def add_to_registry(self, keys):
        path = self.folder / "keys.reg"
        path.write_text("Windows Registry Editor Version 5.00\n\n" + keys, encoding="utf-16", newline="\r\n")
        self.wine("--test", "regedit", "/S", windows_path(path))

    def use_suite_folder(self, folder):
        self.add_to_registry("[HKEY_CURRENT_USER\\SOFTWARE\\QRN\\Pralix 17]\n"
                             f'"MDBPath"="{registry_text(windows_path(folder))}"\n')

    @property
    def drive(self):
        """The folder behind drive C:"""
        return self.folder / "prefix" / "drive_c"

    def take_picture(self, path):
        """Takes a picture of the dialog alone; the background has one colour."""
        subprocess.run(["import", "-display", f":{self.number}", "-window", "root", path], check=True, timeout=60)
        subprocess.run(["mogrify", "-trim", "+repage", "+dither", "-colors", "64", "-strip", path], check=True, timeout=60)
