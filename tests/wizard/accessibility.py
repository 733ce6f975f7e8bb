#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Works the wizard as a screen reader does: through AT-SPI alone, on a display and a session bus of its own.

Arguments: the installer's bundle, sample/make-sample-volume, the stand-in application. Exit status 77: cannot run here.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import time

SKIPPED = 77


def skip(reason):
    print("skipped: " + reason)
    sys.exit(SKIPPED)


def start_session():
    """Runs this script again inside a display and a bus."""
    for tool in ("Xvfb", "dbus-run-session"):
        if shutil.which(tool) is None:
            skip(tool + " is missing")
    if os.geteuid() != 0:
        skip("needs root: an install changes owners")
    reader, writer = os.pipe()
    screen = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x1024x24"], pass_fds=[writer],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writer)
    try:
        display = ":" + os.read(reader, 16).decode().strip()
        environment = dict(os.environ, DISPLAY=display, LC_ALL="C.UTF-8", QT_QPA_PLATFORM="xcb",
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", IN_ACCESSIBILITY_SESSION="1")
        for name in ("DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY"):
            environment.pop(name, None)
        with tempfile.TemporaryDirectory() as runtime:
            environment["XDG_RUNTIME_DIR"] = runtime
            sys.exit(subprocess.run(["dbus-run-session", "--", sys.executable, *sys.argv], env=environment,
                                    check=False).returncode)
    finally:
        screen.terminate()
        screen.wait()


try:
    import pyatspi
    from gi.repository import GLib
except ImportError:
    skip("python3-pyatspi is missing")

if "IN_ACCESSIBILITY_SESSION" not in os.environ:
    start_session()

BUNDLE, MAKE_VOLUME, STAND_IN = sys.argv[1:4]
events = []


def note(event):
    try:
        events.append((time.monotonic(), event.type, event.detail1, event.source.name, event.source.getRoleName()))
    except GLib.GError:
        pass  # has gone


def turn(seconds=0.02):
    """Lets events arrive."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        GLib.MainContext.default().iteration(False)
        time.sleep(0.002)


def wait(what, condition, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        turn()
        try:
            found = condition()
        except GLib.GError:
            continue
        if found:
            return found
    raise AssertionError("waited in vain for " + what)


def has_state(item, state):
    return item.getState().contains(state)


def shown(item):
    """What can be perceived below the item, in the order in which it is read."""
    for child in item:
        if child is not None and has_state(child, pyatspi.STATE_SHOWING):
            yield child
            yield from shown(child)


class Wizard:
    """One run of the program on a volume of its own."""

    def __init__(self, prepare=lambda volume: None):
        self.folder = tempfile.TemporaryDirectory()
        self.volume = os.path.join(self.folder.name, "Macintosh HD")
        subprocess.run([MAKE_VOLUME, self.volume, "root", STAND_IN], check=True)
        prepare(self.volume)
        events.clear()
        self.program = subprocess.Popen([BUNDLE + "/Contents/MacOS/Installer", "-target", self.volume],
                                        stderr=subprocess.DEVNULL)

    def __enter__(self):
        wait("the window", lambda: self.find("heading", "License Agreement"))
        return self

    def __exit__(self, *problem):
        self.program.kill()
        self.program.wait()
        self.folder.cleanup()

    def items(self):
        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and application.get_process_id() == self.program.pid:
                for window in application:
                    if window is not None:
                        yield window
                        yield from shown(window)

    def find(self, role, name=None):
        for item in self.items():
            if item.getRoleName() == role and (name is None or item.name == name):
                return item
        return None

    def heading(self, name):
        wait("the page " + name, lambda: self.find("heading", name))
        wait("the page's name", lambda: self.find("panel", name))

    def press(self, name, role="push button", action=0):
        button = wait(name, lambda: self.find(role, name))
        wait(name + " to be enabled", lambda: has_state(button, pyatspi.STATE_ENABLED))
        button.queryAction().doAction(action)

    def answer(self, name):
        """Presses a button of the alert that is shown."""
        alert = wait("the alert", lambda: self.find("alert"))
        next(item for item in shown(alert) if item.name == name).queryAction().doAction(0)

    def agree(self):
        self.press("Continue")
        wait("the question", lambda: self.find("alert", "Do you agree to the terms of the license?"))
        self.answer("Agree")
        self.heading("Choose Applications")

    def steps(self):
        return [(item.name, item.description) for item in self.find("list", "Steps")]

    def installed(self, path):
        return os.path.exists(self.volume + path)

    def end(self):
        self.press("Finish")
        assert self.program.wait(20) == 0


PLUG_IN = "/Corvane/Dunmore 3.plugin"
LOG = "/Library/Application Support/Corvane/Dunmore 3 Installer.log"


def every_control_has_a_name_and_a_role(wizard):
    for item in wizard.items():
        role = item.getRoleName()
        assert role not in ("unknown", "invalid"), item.name
        if role not in ("filler", "scroll bar", "panel", "image"):
            assert item.name, role


def install():
    with Wizard() as wizard:
        assert wizard.steps() == [("License", "Current step"), ("Applications", "Still to come"),
                                  ("Preparation", "Still to come"), ("Installation", "Still to come"),
                                  ("Summary", "Still to come")], wizard.steps()
        every_control_has_a_name_and_a_role(wizard)
        wizard.press("Continue")
        wizard.answer("Disagree")
        wizard.heading("License Agreement")
        wizard.agree()
        every_control_has_a_name_and_a_role(wizard)
        assert wizard.steps()[0][1] == "Done" and wizard.steps()[1][1] == "Current step", wizard.steps()
        wait("the focus", lambda: any(kind == "object:state-changed:focused" and role in ("check box", "list")
                                      for _, kind, on, _, role in events if on))
        wizard.press("Adobe Photoshop CS6", role="check box")
        wait("the news of the tick", lambda: any(
            kind == "object:state-changed:checked" and on == 0 and name == "Adobe Photoshop CS6"
            for _, kind, on, name, _ in events))
        assert not has_state(wizard.find("check box", "Adobe Photoshop CS6"), pyatspi.STATE_CHECKED)
        begin = time.monotonic()
        wizard.press("Continue")
        wizard.heading("Installation Result")
        told = [name for _, kind, _, name, role in events
                if kind == "object:property-change:accessible-value" and role == "progress bar"]
        assert 1 <= len(told) <= 2 + (time.monotonic() - begin) / 5, told
        assert wizard.find("image", "Success")
        every_control_has_a_name_and_a_role(wizard)
        assert wizard.installed("/Library/Application Support/Adobe/Plug-Ins/CC" + PLUG_IN)
        assert not wizard.installed("/Applications/Adobe Photoshop CS6/Plug-Ins" + PLUG_IN)
        wizard.end()


def fail():
    def spoil(volume):
        folder = volume + "/Applications/Adobe Photoshop CS6/Plug-Ins"
        shutil.rmtree(folder)
        with open(folder, "w", encoding="utf-8"):
            pass

    with Wizard(spoil) as wizard:
        wizard.agree()
        wizard.press("Continue")
        alerts = 0
        while wait("the end", lambda: wizard.find("alert") or wizard.find("image", "Problem")).getRoleName() == "alert":
            alerts += 1
            wizard.answer("Continue")
            turn(0.2)
        assert alerts > 0
        wizard.heading("Installation Result")
        text = wait("the result", lambda: wizard.find("text", "Installation Result")).queryText().getText(0, -1)
        assert "Something else is where a folder should be" in text, text
        wizard.press("Try Again")
        wizard.heading("Choose Applications")
        wizard.press("Go Back")
        wizard.heading("License Agreement")
        wizard.press("Quit")
        assert wizard.program.wait(20) == 0


def quit_at_once():
    with Wizard() as wizard:
        wizard.press("Quit")
        assert wizard.program.wait(20) == 0
        assert not wizard.installed(LOG)


def choose_a_folder():
    with Wizard() as wizard:
        wizard.agree()
        wizard.press("Installer", role="menu item")
        wizard.press("Allow Installing into Another Folder", role="menu item")
        wizard.press("Custom…")
        wizard.press("Choose…")
        path = wait("the path", lambda: wizard.find("text", "Path of the folder"))
        path.queryEditableText().setTextContents("/Users/Shared")
        wizard.press("Choose")
        wait("the folder", lambda: wizard.find("text", "Folder:").queryText().getText(0, -1) == "/Users/Shared")
        wizard.press("Continue")
        wizard.heading("Installation Result")
        assert wizard.installed("/Users/Shared" + PLUG_IN)
        wizard.end()


pyatspi.Registry.registerEventListener(note, "object")
for walk in (install, fail, quit_at_once, choose_a_folder):
    walk()
    print(walk.__name__ + ": passed")
