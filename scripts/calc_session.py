"""Runs LibreOffice without a window, in a profile of its own, with the Calc add-in installed.

Needs the Python that has LibreOffice's bindings: /usr/bin/python3 on Debian.
"""
import contextlib
import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import time
import uuid

import uno
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException
from com.sun.star.lang import DisposedException

PROGRAM = pathlib.Path("/usr/lib/libreoffice/program")
ADD_IN = "OrmFunctionQel4.OrmQelFunction"  # the package's identifier
FIRST_START = 81  # a new profile is written, then the office asks to be started again
PATIENCE = 180  # seconds; a busy machine starts an office slowly


class OfficeError(Exception):
    pass


def url_of(path):
    return uno.systemPathToFileUrl(str(pathlib.Path(path).absolute()))


def properties(**values):
    return tuple(PropertyValue(name, 0, value, 0) for name, value in values.items())


class Profile:
    """A user's installation in a folder: nothing of it stands elsewhere."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).absolute()
        self.folder.mkdir(parents=True, exist_ok=True)

    def variables(self):
        """What tells any of the office's programs to use this profile, for extensions of all users too."""
        return [f"-env:UserInstallation={url_of(self.folder / 'user')}",
                f"-env:UNO_SHARED_PACKAGES={url_of(self.folder / 'uno_packages')}",
                f"-env:UNO_SHARED_PACKAGES_CACHE={url_of(self.folder)}"]

    def environment(self):
        return {**os.environ, "HOME": str(self.folder), "SAL_USE_VCLPLUGIN": "svp"}

    def manage_packages(self, command, *arguments):
        # The package manager refuses root an extension of root alone.
        layer = ["--shared"] if os.geteuid() == 0 else []
        return subprocess.run([PROGRAM / "unopkg", command, *layer, *self.variables(), *arguments], env=self.environment(),
                              capture_output=True, text=True, timeout=PATIENCE, check=False)

    def install(self, package):
        done = self.manage_packages("add", "--force", package)
        if done.returncode:
            raise OfficeError(f"{package} cannot be installed: {(done.stderr or done.stdout).strip()}")

    def remove(self):
        done = self.manage_packages("remove", ADD_IN)
        if done.returncode:
            raise OfficeError(f"the add-in cannot be removed: {(done.stderr or done.stdout).strip()}")

    def has_add_in(self):
        return self.manage_packages("list", ADD_IN).returncode == 0


def die_with_parent():
    """Runs in the office's process before it starts: it ends when the script ends, however that ends."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)


class Office:
    """A running office; a context manager, because it must be ended.

    `folder` is its current folder. With a `display`, an X server's name, it shows its windows there.
    """

    def __init__(self, profile, folder=None, display=None):
        self.profile = profile
        self.folder = folder
        self.display = display
        self.process = None
        self.context = None
        self.desktop = None

    def __enter__(self):
        try:
            self.start()
        except BaseException:
            self.kill()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def start(self):
        pipe = f"qel-{uuid.uuid4().hex}"
        command = [PROGRAM / "soffice.bin", *([] if self.display else ["--headless"]), "--norestore", "--nologo", "--nodefault", "--nolockcheck",
                   *self.profile.variables(), f"--accept=pipe,name={pipe};urp;"]
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        environment = self.profile.environment()
        if self.display:
            environment.update(DISPLAY=self.display, SAL_USE_VCLPLUGIN="gen")
        log = open(self.profile.folder / "office.log", "wb")
        deadline = time.monotonic() + PATIENCE
        with log:
            while time.monotonic() < deadline:
                if self.process is None or self.process.poll() == FIRST_START:
                    self.process = subprocess.Popen(command, cwd=self.folder, env=environment,
                                                    stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                                    start_new_session=True, preexec_fn=die_with_parent)
                elif self.process.poll() == 0:
                    raise OfficeError("an office runs with this profile already; end it first")
                elif self.process.poll() is not None:
                    raise OfficeError(f"the office ended with status {self.process.returncode}; see {log.name}")
                try:
                    self.context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
                    break
                except NoConnectException:
                    time.sleep(0.1)
        if self.context is None:
            raise OfficeError(f"the office did not answer within {PATIENCE} s; see {log.name}")
        self.desktop = self.service("com.sun.star.frame.Desktop")

    def service(self, name, *arguments):
        manager = self.context.ServiceManager
        if arguments:
            return manager.createInstanceWithArgumentsAndContext(name, arguments, self.context)
        return manager.createInstanceWithContext(name, self.context)

    def new_document(self):
        return self.desktop.loadComponentFromURL("private:factory/scalc", "_blank", 0,
                                                 properties(Hidden=self.display is None))

    def open(self, path, **options):
        if not pathlib.Path(path).is_file():
            raise OfficeError(f"{path}: there is no such file")
        document = self.desktop.loadComponentFromURL(url_of(path), "_blank", 0, properties(Hidden=True, **options))
        if document is None:
            raise OfficeError(f"{path} is nothing that the office opens")
        return document

    def close(self):
        try:
            if self.desktop is not None:
                self.desktop.terminate()
        except DisposedException:
            pass  # it was faster than its answer
        try:
            if self.process is not None:
                self.process.wait(30)
        except subprocess.TimeoutExpired:
            pass
        self.kill()

    def kill(self):
        """Ends the office's process and whatever it started, which are a group of their own."""
        if self.process is None:
            return
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()


def fresh_profile(folder, package):
    """An empty profile in `folder`, whatever stood there, with the package installed."""
    shutil.rmtree(folder, ignore_errors=True)
    profile = Profile(folder)
    profile.install(package)
    return profile
