"""A private X desktop with two displays: everything it starts ends with it, whatever happens."""

import ctypes
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import time

# The displays of the tour: name to x, y, width, height in root pixels.
# Both have the sides 16:10, so that the output window needs no bars; the second is larger,
# so that the first fits into a window on it pixel by pixel.
DISPLAYS = {"LEFT": (0, 0, 1280, 800), "RIGHT": (1280, 0, 1600, 1000)}


def framebuffer(displays):
    """The smallest root window in which they all lie."""
    return (max(x + width for x, _, width, _ in displays.values()),
            max(y + height for _, y, _, height in displays.values()))


FRAMEBUFFER = framebuffer(DISPLAYS)
PATIENCE = 20.0


def wait_until(condition, what, patience=PATIENCE):
    """The first true value of `condition`, asked every few milliseconds."""
    end = time.monotonic() + patience
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise TimeoutError(f"gave up waiting for {what}")
        time.sleep(0.02)


def _die_with_parent():
    death_signal_option = 1  # PR_SET_PDEATHSIG
    ctypes.CDLL(None).prctl(death_signal_option, signal.SIGKILL)


class Desktop:
    def __init__(self, logs, displays=None):
        self.displays = displays or DISPLAYS
        self.logs = pathlib.Path(logs)
        self.logs.mkdir(parents=True, exist_ok=True)
        self.folder = tempfile.TemporaryDirectory(prefix="kestrove-desktop-")
        self.home = pathlib.Path(self.folder.name)
        self.processes = []
        self.environment = {
            key: value for key, value in os.environ.items()
            if key not in ("WAYLAND_DISPLAY", "XAUTHORITY", "SESSION_MANAGER", "DISPLAY",
                           "QT_QPA_PLATFORM", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION")}
        self.environment |= {
            "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / "config"),
            "XDG_CACHE_HOME": str(self.home / "cache"), "XDG_DATA_HOME": str(self.home / "data"),
            "XDG_RUNTIME_DIR": str(self.home), "XDG_SESSION_TYPE": "x11", "LC_ALL": "C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/bus"}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            self.end(process)
        self.folder.cleanup()

    def start(self, *command, log=None, **options):
        name = log or pathlib.Path(command[0]).name
        with open(self.logs / f"{name}.log", "ab") as output:
            process = subprocess.Popen(
                command, env=self.environment, stdin=subprocess.DEVNULL, stdout=output,
                stderr=output, start_new_session=True, preexec_fn=_die_with_parent, **options)
        self.processes.append(process)
        return process

    def end(self, process):
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGTERM)
            os.killpg(process.pid, signal.SIGCONT)
            try:
                process.wait(3)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()

    def run(self, *command):
        """What a short program prints; it must succeed."""
        done = subprocess.run(command, env=self.environment, check=False, text=True,
                              timeout=PATIENCE, stdin=subprocess.DEVNULL, capture_output=True)
        if done.returncode != 0:
            raise RuntimeError(f"{command[0]}: {done.stderr.strip() or done.returncode}")
        return done.stdout

    def start_server(self):
        reading, writing = os.pipe()
        width, height = framebuffer(self.displays)
        self.start("Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24",
                   "-nolisten", "tcp", "-noreset", "-dpi", "96", pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start, see " + str(self.logs / "Xvfb.log"))
        self.environment["DISPLAY"] = ":" + number
        for name in self.displays:
            self.plug(name)

    def plug(self, name):
        x, y, width, height = self.displays[name]
        # The server has one real output. The display that stays has it: of an output that belongs
        # to no display the server would make one more.
        output = "screen" if name == "RIGHT" else "none"
        primary = "*" if name == "LEFT" else ""
        millimetres = width * 254 // 960, height * 254 // 960
        self.run("xrandr", "--setmonitor", primary + name,
                 f"{width}/{millimetres[0]}x{height}/{millimetres[1]}+{x}+{y}", output)

    def unplug(self, name):
        self.run("xrandr", "--delmonitor", name)

    def start_session(self):
        self.start("dbus-daemon", "--session", "--nofork", "--nopidfile",
                   f"--address=unix:path={self.home}/bus")
        wait_until((self.home / "bus").exists, "the session bus")
        # It names itself on the root window before it is ready: a window that is mapped then may
        # never be shown. It runs this command when it listens.
        ready = self.home / "window-manager-ready"
        self.start("openbox", "--sm-disable", "--startup", f"touch {ready}")
        wait_until(ready.exists, "the window manager")

    def find_windows(self, *criterion):
        """The identifiers of the visible windows that xdotool finds by it."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", *criterion],
                               check=False, env=self.environment, capture_output=True, text=True)
        return found.stdout.split()

    def find_window(self, title):
        """The identifier of the visible window of this title, in small or capital letters; None
        when there is none."""
        found = self.find_windows("--name", f"^{title}$")
        return found[-1] if found else None

    def windows(self):
        """The identifiers of all managed windows, oldest first."""
        listed = self.run("xprop", "-root", "_NET_CLIENT_LIST")
        return re.findall(r"0x[0-9a-f]+", listed)

    def geometry(self, window):
        """x, y, width, height of its content in root pixels."""
        text = self.run("xwininfo", "-id", window)
        return tuple(int(re.search(label + r":\s+(-?\d+)", text).group(1)) for label in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def move_pointer(self, x, y):
        """As a mouse does: a bare jump to a place makes no raw motion, which programs listen to."""
        self.run("xdotool", "mousemove", str(x - 1), str(y), "mousemove_relative", "1", "0")
        place = self.run("xdotool", "getmouselocation").split()
        if place[:2] != [f"x:{x}", f"y:{y}"]:
            raise RuntimeError(f"the pointer is at {place[:2]}")
