"""A person before the office's windows: finds controls by what stands beside them, reads them, and uses them.

The windows are reached through the office's accessibility interface, as a screen reader reaches them.
"""
import contextlib
import os
import subprocess
import sys
import threading
import time
import unittest

import calc_session
import unohelper
from com.sun.star.accessibility.AccessibleRole import (COMBO_BOX, LIST, PUSH_BUTTON, TEXT)
from com.sun.star.lang import DisposedException, IndexOutOfBoundsException
from com.sun.star.accessibility.AccessibleStateType import CHECKED, ENABLED, SHOWING
from com.sun.star.awt import XCallback

PATIENCE = 120


def eventually(what, test):
    """The first true value of the test."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        value = test()
        if value:
            return value
        time.sleep(0.1)
    raise AssertionError(f"{what} did not happen within {PATIENCE} s")


@contextlib.contextmanager
def screen(manager=None):
    """An X server without a monitor, with a window manager's program if one is named; gives its name."""
    server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1400x1000x24", "-nolisten", "tcp"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              preexec_fn=calc_session.die_with_parent)
    windows = None
    try:
        display = ":" + server.stdout.readline().strip()
        if manager:
            environment = {**os.environ, "DISPLAY": display}
            windows = subprocess.Popen([manager], env=environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, preexec_fn=calc_session.die_with_parent)
            # It manages desktops only once it manages windows: what is opened before may never get the keys.
            eventually(manager, lambda: not subprocess.run(["xdotool", "get_num_desktops"], env=environment, check=False,
                                                           capture_output=True).returncode)
        yield display
    finally:
        if windows:
            windows.terminate()
            windows.wait()
        server.terminate()
        server.stdout.close()
        server.wait()


class Control:
    def __init__(self, context):
        self.context = context

    def has(self, state):
        return self.context.getAccessibleStateSet().contains(state)

    def child(self, *roles):
        for i in range(self.context.getAccessibleChildCount()):
            child = self.context.getAccessibleChild(i).getAccessibleContext()
            if child.getAccessibleRole() in roles:
                return child
        raise AssertionError(f"{self.context.getAccessibleName()} has no part of the role {roles}")

    @property
    def is_enabled(self):
        return self.has(ENABLED)

    @property
    def is_checked(self):
        return self.has(CHECKED)

    @property
    def text(self):
        part = self.child(TEXT) if self.context.getAccessibleRole() == COMBO_BOX else self.context
        return part.getText()

    @property
    def items(self):
        entries = self.child(LIST)
        return [entries.getAccessibleChild(i).getAccessibleContext().getAccessibleName()
                for i in range(entries.getAccessibleChildCount())]

    @property
    def is_open(self):
        """Whether a combo box shows its list."""
        return Control(self.child(LIST)).has(SHOWING)

    def type(self, text):
        part = self.child(TEXT) if self.context.getAccessibleRole() == COMBO_BOX else self.context
        self.context.grabFocus()
        part.setText(text)

    def press(self):
        self.context.doAccessibleAction(0)

    def choose(self, part):
        """The first item that holds the text."""
        items = self.items
        found = [i for i, item in enumerate(items) if part in item]
        if not found:
            raise AssertionError(f"no item holds {part!r}; there are {items}")
        self.child(LIST).selectAccessibleChild(found[0])


class Window:
    """A dialog or message box that is shown."""

    def __init__(self, context):
        self.context = context
        self.controls = [context.getAccessibleChild(i).getAccessibleContext() for i in range(context.getAccessibleChildCount())]

    @property
    def title(self):
        return self.context.getAccessibleName()

    def texts(self):
        return [control.getAccessibleName() for control in self.controls]

    def first(self, *roles):
        return next(Control(control) for control in self.controls if control.getAccessibleRole() in roles)

    def after(self, name):
        """The control that follows a label or button of that name in the tab order."""
        names = [control.getAccessibleName() for control in self.controls]
        if name not in names:
            raise AssertionError(f"{self.title} has no {name!r}; there are {names}")
        return Control(self.controls[names.index(name) + 1])

    def button(self, name):
        return self.named(name, PUSH_BUTTON)

    def named(self, name, *roles):
        for control in self.controls:
            if control.getAccessibleName() == name and (not roles or control.getAccessibleRole() in roles):
                return Control(control)
        raise AssertionError(f"{self.title} has no {name!r}; there are {self.texts()}")


class Hands:
    """Keys and clicks as a keyboard and a mouse send them, to the window that has the focus."""

    def __init__(self, display):
        self.environment = {**os.environ, "DISPLAY": display}

    def do(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True, timeout=PATIENCE,
                              stdout=subprocess.PIPE, text=True).stdout

    def frame(self, title):
        """Left, top, width and height of the window of that title, once it has the focus."""
        eventually(f"the focus on {title}", lambda: self.do("getwindowfocus", "getwindowname").strip() == title)
        lines = self.do("getwindowfocus", "getwindowgeometry", "--shell").splitlines()
        geometry = dict(line.split("=") for line in lines)
        return [int(geometry[name]) for name in ("X", "Y", "WIDTH", "HEIGHT")]

    def type(self, text):
        self.do("type", "--delay", 40, text)

    def key(self, *names):
        self.do("key", "--delay", 40, *names)

    def click(self, control, below=0):
        """In the middle of a control, or that many times its height below."""
        place, size = control.context.getLocationOnScreen(), control.context.getSize()
        self.do("mousemove", place.X + size.Width // 2, place.Y + size.Height // 2 + int(below * size.Height), "sleep", 0.2, "click", 1)


class Person:
    def __init__(self, office, display):
        self.toolkit = office.service("com.sun.star.awt.Toolkit")
        self.main_thread = office.service("com.sun.star.awt.AsyncCallback")
        self.display = display

    def calls(self, function, *arguments):
        """A macro's call, which goes on while the person acts."""
        return Call(self.main_thread, function, arguments)

    def windows(self, title=None):
        """Those that are on the screen: one that was closed may live on for a while, and end while it is read."""
        found = []
        for i in range(self.toolkit.getTopWindowCount()):
            with contextlib.suppress(DisposedException, IndexOutOfBoundsException):
                window = self.toolkit.getTopWindow(i)
                context = window and window.getAccessibleContext()
                if context and title in (None, context.getAccessibleName()) and Control(context).has(SHOWING):
                    found.append(Window(context))
        return found

    def sees(self, title):
        """The window of that title, when it is there."""
        try:
            return eventually(f"a window {title!r}", lambda: self.windows(title))[0]
        except AssertionError as failure:
            raise AssertionError(f"{failure}; there are {[(w.title, w.texts()) for w in self.windows()]}") from None

    def answers(self, title, part, button="OK"):
        """Presses a button in a box that says so."""
        box = self.sees(title)
        text = " ".join(box.texts())
        if part not in text:
            raise AssertionError(f"{title} says {text!r}, not {part!r}")
        box.button(button).press()
        eventually("the box's end", lambda: not self.windows(title))

    def leave(self):
        """Closes what a test that failed left open."""
        for title, button in (("OrmFuncQel4", "OK"), ("Function QEL", "Cancel"), ("Name QEL", "Cancel"),
                              ("Lines behind this cell", "Cancel"), ("Why this value", "Close"), ("Check this sheet", "Close")):
            for window in self.windows(title):
                window.button(button).press()

    def photograph(self, path):
        subprocess.run(["import", "-display", self.display, "-window", "root", path], check=True)


class Call(unohelper.Base, XCallback):
    """Runs in the office's main thread, as menus and macros do.

    A dialog in a thread of its own would take its keys and clicks from the X server at the same time as the main
    thread, which loses clicks and swaps keys.
    """

    def __init__(self, main_thread, function, arguments):
        self.function, self.arguments = function, arguments
        self.result = self.failure = None
        self.ended = threading.Event()
        main_thread.addCallback(self, None)

    def notify(self, _):
        try:
            self.result = self.function(*self.arguments)
        except Exception as failure:  # told by wait
            self.failure = failure
        self.ended.set()

    def wait(self):
        if not self.ended.wait(PATIENCE):
            raise AssertionError("the call did not return")
        if self.failure:
            raise self.failure
        return self.result


def run_tests():
    """Runs the script's tests. On a busy screen a key, a click or a window can be lost, so what failed is tried once more,
    in a new office: a fault that is always there fails twice."""
    program = unittest.main(exit=False)
    result = program.result
    bad = [getattr(test, "test_case", test) for test, _ in result.failures + result.errors]
    if bad and all(isinstance(test, unittest.TestCase) for test in bad):
        again = {test.id(): type(test)(test._testMethodName) for test in bad}
        print("Tried once more:", *again, flush=True)
        result = program.testRunner().run(unittest.TestSuite(again.values()))
    sys.exit(not result.wasSuccessful())
