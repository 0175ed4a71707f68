"""A desktop of its own for a test of the real window: a virtual screen, a window manager, a session bus with
accessibility, and hands that only move the mouse and press keys. Accessibility is read to find things; only its own tests act by it.

A test script calls `desk.sit_down()` first; it starts the script again inside such a desktop.
"""
import contextlib
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SCREEN = (1600, 1000)


def sit_down():
    """Starts this script anew on a desktop of its own and ends with its exit code; returns there at once."""
    if os.environ.get("KORVANE_TEST_DESK"):
        return
    home = tempfile.mkdtemp()
    os.makedirs(f"{home}/session", mode=0o700)
    processes = []
    try:
        read, write = os.pipe()
        width, height = SCREEN
        processes.append(subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        os.close(write)
        number = os.read(read, 16).decode().strip()
        environment = {
            "PATH": os.environ["PATH"], "HOME": home, "LC_ALL": "C.UTF-8", "DISPLAY": f":{number}",
            "XDG_RUNTIME_DIR": f"{home}/session", "XDG_CONFIG_HOME": f"{home}/config", "KORVANE_TEST_DESK": home,
            "XDG_CACHE_HOME": os.environ.get("XDG_CACHE_HOME", f"{home}/cache"),
            **{k: v for k, v in os.environ.items() if k.endswith("SAN_OPTIONS") or k.startswith("KORVANE_")},
        }
        environment["KORVANE_TEST_DESK"] = home
        processes.append(subprocess.Popen(["openbox"], env=environment, stdout=subprocess.DEVNULL,
                                          stderr=subprocess.DEVNULL))
        # The bus tells every start of a service; what goes wrong shows in the tests.
        code = subprocess.call(["dbus-run-session", "--", sys.executable, *sys.argv], env=environment)
    finally:
        for process in reversed(processes):
            process.terminate()
            process.wait()
        shutil.rmtree(home, ignore_errors=True)
    sys.exit(code)


def until(what, condition, seconds=20):
    """Waits for something that is true, and returns it."""
    end = time.monotonic() + seconds
    while True:
        with contextlib.suppress(Exception):
            found = condition()
            if found:
                return found
        if time.monotonic() > end:
            raise AssertionError(f"waited {seconds} s in vain for {what}")
        time.sleep(0.03)


def xdotool(*arguments):
    return subprocess.run(["xdotool", *map(str, arguments)], check=True, capture_output=True, text=True).stdout


def key(*names):
    xdotool("key", "--delay", 20, *names)


def type_text(text):
    xdotool("type", "--delay", 8, text)


def screenshot(path):
    """The whole screen as a PNG."""
    subprocess.run(["import", "-window", "root", str(path)], check=True)


class Thing:
    """Something on the screen, as assistive technology sees it."""

    def __init__(self, node):
        self.node = node

    @property
    def name(self):
        return self.node.get_name()

    @property
    def description(self):
        return self.node.get_description()

    @property
    def role(self):
        return self.node.get_role_name()

    def has(self, state):
        return self.node.get_state_set().contains(getattr(Atspi.StateType, state.upper()))

    @property
    def box(self):
        extents = Atspi.Component.get_extents(self.node, Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    @property
    def value(self):
        return Atspi.Value.get_current_value(self.node)

    @property
    def range(self):
        return Atspi.Value.get_minimum_value(self.node), Atspi.Value.get_maximum_value(self.node)

    def set_value(self, value):
        Atspi.Value.set_current_value(self.node, value)

    def press(self):
        """As assistive technology does it."""
        names = [Atspi.Action.get_action_name(self.node, i) for i in range(Atspi.Action.get_n_actions(self.node))]
        Atspi.Action.do_action(self.node, next(i for i, name in enumerate(names) if name in ("Press", "Toggle")))

    def children(self):
        return [Thing(self.node.get_child_at_index(i)) for i in range(self.node.get_child_count())]

    def walk(self):
        yield self
        for child in self.children():
            yield from child.walk()

    def point(self, across=0.5, down=0.5):
        x, y, width, height = self.box
        return round(x + across * (width - 1)), round(y + down * (height - 1))

    def click(self, across=0.5, down=0.5, times=1):
        xdotool("mousemove", *self.point(across, down))
        xdotool("click", "--repeat", times, "--delay", 60, 1)

    def __repr__(self):
        return f"{self.role} “{self.name}”"


class Program:
    """The running program and its windows."""

    def __init__(self, executable, *arguments, config):
        # pylint: disable=consider-using-with
        self.errors = tempfile.TemporaryFile("w+")
        self.process = subprocess.Popen([str(executable), *map(str, arguments)], stdout=self.errors,
                                        stderr=self.errors, env={
            **os.environ, "XDG_CONFIG_HOME": str(config), "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "LIBGL_ALWAYS_SOFTWARE": "1"})

    def application(self):
        root = Atspi.get_desktop(0)
        for i in range(root.get_child_count()):
            child = root.get_child_at_index(i)
            if child and child.get_process_id() == self.process.pid:
                return Thing(child)
        raise LookupError("the program is not on the accessibility bus")

    def all(self, role=None, name=None, having=None):
        return [thing for thing in self.application().walk()
                if (role is None or thing.role == role) and (name is None or thing.name == name)
                and (having is None or thing.has(having))]

    def find(self, role=None, name=None, seconds=20, having="showing"):
        """The one thing of this role and name, waited for."""
        return until(f"{role} “{name}”", lambda: self.all(role, name, having), seconds)[0]

    def shows(self, text):
        """Whether a text stands on the screen."""
        return any(thing.name == text for thing in self.all(having="showing"))

    def output(self):
        self.errors.seek(0)
        return self.errors.read()

    def end(self):
        """Waits for its end. \\return the exit code."""
        return self.process.wait(timeout=20)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.errors.close()


if os.environ.get("KORVANE_TEST_DESK"):
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi  # noqa: E402
