"""The desktop of the tour with Kestrove on it, and what a user does there."""

import contextlib
import os
import signal
import time

from camera import Camera
from desktop import DISPLAYS, wait_until

CURSOR = 40  # pixels to each side of the pointer in which its picture may lie

# It tells its process, so that it can be held while its terminal goes on painting: a program that
# cannot paint loses what another window has covered.
SCROLLING = ("echo $$ > {pid}; n=0; while :; do n=$((n + 1)); "
             "printf '%6d  the quick brown fox jumps over the lazy dog\\n' $n; sleep 0.1; done")


class Session:
    def __init__(self, desktop, program):
        self.desktop = desktop
        self.program = program
        self.camera = Camera(desktop.environment["DISPLAY"])
        self.pointer = (0, 0)
        self.moving = {"LEFT": [], "RIGHT": []}  # process identifiers
        self.terminals = {}
        self.clock = None
        self.kestrove = None
        self.window = None
        self.place = None  # of the output's content: x, y, width, height
        self.menu = None  # the screen as it was when an entry was chosen

    # Programs.

    def start_programs(self):
        self.start_terminals()
        # Never covered, so it may be held whole.
        self.clock = self.desktop.start("xclock", "-update", "1", "-geometry", "220x220+50+60")
        self.moving["LEFT"].append(self.clock.pid)
        self.desktop.start("xeyes", "-geometry", "220x150+50+360")
        self.desktop.start("xlogo", "-geometry", "300x300+2480+560")
        for name in ("display 1", "display 2", "xclock", "xeyes", "xlogo"):
            wait_until(lambda name=name: self.desktop.find_window(name), f"the window {name}")

    def start_terminals(self):
        """One on each display."""
        self._start_terminal("LEFT", "display 1", "72x24+330+60")
        self._start_terminal("RIGHT", "display 2", "80x30+1480+120")

    def _start_terminal(self, display, title, place):
        file = self.desktop.home / f"{title}.pid"
        file.unlink(missing_ok=True)  # of one that has ended
        terminal = self.desktop.start(
            "xterm", "-title", title, "-fa", "DejaVu Sans Mono", "-fs", "11", "-bg", "#10202c",
            "-fg", "#d8e6ee", "-geometry", place, "-e", "sh", "-c",
            SCROLLING.format(pid=f"'{file}'"))
        wait_until(lambda: file.exists() and file.read_text().strip(), f"the terminal {title}")
        self.moving[display].append(int(file.read_text()))
        self.terminals[title] = terminal, display

    def kill_terminal(self, title):
        """And with it what runs in it."""
        terminal, display = self.terminals.pop(title)
        self.moving[display].pop(0)  # the number may be another program's soon
        self.desktop.end(terminal)
        wait_until(lambda: not self.desktop.find_window(title), "the terminal to go")

    def close_terminal(self, title):
        """As its user does, who works in it."""
        _, display = self.terminals.pop(title)
        self.thaw(display)
        self.moving[display].pop()
        self.desktop.run("xdotool", "key", "alt+F4")
        wait_until(lambda: not self.desktop.find_window(title), "the terminal to close")

    def end_clock(self):
        self.moving["LEFT"].remove(self.clock.pid)
        self.desktop.end(self.clock)

    def freeze(self, *displays):
        """Stops what moves there, and returns when the picture has come to rest."""
        for display in displays:
            self._signal(display, signal.SIGSTOP)
        last = [self.screen()]

        def rests():
            before, last[0] = last[0], self.screen()
            return all(before.cut(*DISPLAYS[each]).data == last[0].cut(*DISPLAYS[each]).data
                       for each in displays)
        wait_until(rests, "the programs to stand still")

    def thaw(self, *displays):
        for display in displays:
            self._signal(display, signal.SIGCONT)

    def _signal(self, display, number):
        for process in self.moving[display]:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, number)

    # Pictures.

    def screen(self):
        return self.camera.take()

    def display(self, name, screen=None):
        return (screen or self.screen()).cut(*DISPLAYS[name])

    def content(self, title, screen=None):
        """What a window shows that nothing covers."""
        window = self.desktop.find_window(title)
        return (screen or self.screen()).cut(*self.desktop.geometry(window))

    def output(self, screen=None):
        """What the output window shows, as far as it is on the screen."""
        return (screen or self.screen()).cut(*self.desktop.geometry(self.window))

    def pointer_hole(self, display, size):
        """Where the pointer's picture lies in an output of `size` that shows `display`."""
        left, top, width, height = DISPLAYS[display]
        across, down = size[0] / width, size[1] / height
        x, y = (self.pointer[0] - left) * across, (self.pointer[1] - top) * down
        half = CURSOR * max(across, down)
        return int(x - half), int(y - half), int(2 * half), int(2 * half)

    # Kestrove and its window.

    def start_kestrove(self, settings):
        folder = self.desktop.home / "config" / "kestrove"
        folder.mkdir(parents=True, exist_ok=True)
        text = "".join(f"{key}={value}\n" for key, value in settings.items())
        (folder / "kestrove.conf").write_text(text, encoding="utf-8")
        self.kestrove = self.desktop.start(self.program)
        self.window = wait_until(self._output_window, "the window titled kestrove")
        # Nobody takes hold of a window before it has found its own first place.
        self._wait_for_same(lambda: self.desktop.geometry(self.window), 0.5, "the output window")

    def _output_window(self):
        if self.kestrove.poll() is not None:
            raise RuntimeError(f"kestrove ended with exit code {self.kestrove.returncode}")
        return self.desktop.find_window("kestrove")

    def place_output(self, x, y, width, height):
        """Its frame's corner and its content's size, by the window manager."""
        run = self.desktop.run
        run("xdotool", "windowsize", self.window, str(width), str(height))
        run("xdotool", "windowmove", self.window, str(x), str(y))
        wait_until(lambda: self.desktop.geometry(self.window)[2:] == (width, height) and
                   self._is_near(x, y), f"the output window at {x},{y} with {width}x{height}")
        self.place = x, y, width, height

    def _is_near(self, x, y):
        left, top, _, _ = self.desktop.geometry(self.window)
        return abs(left - x) <= 60 and abs(top - y) <= 60

    def is_in_place(self):
        """Whether the output is where it was put last, and of that size."""
        x, y, width, height = self.place
        return self._is_near(x, y) and self.desktop.geometry(self.window)[2:] == (width, height)

    def press(self, *keys):
        """In the output window. The keyboard, because the pointer has its own work here."""
        self.desktop.run("xdotool", "windowactivate", "--sync", self.window)
        self.desktop.run("xdotool", "key", *keys)

    def choose_in_menu(self, entry):
        """The entry of this name, see `_menu`, in the output window's menu. By the keyboard, while
        nothing else moves on the screen."""
        before = self.screen().data
        self.press("Menu")
        wait_until(lambda: self.screen().data != before, "the menu")
        # It lists the sources anew when it opens, and the entries move when that is done.
        self.wait_for_rest(1.0)
        steps = self._menu().index(entry) + 1
        self.desktop.run("xdotool", "key", *["Down"] * steps)
        self.wait_for_rest(0.2)
        self.menu = self.screen()
        self.desktop.run("xdotool", "key", "Return")
        wait_until(lambda: self.screen().data != self.menu.data, "the menu to close")

    def _menu(self):
        """The entries that the keyboard stops at, from the top down to the last source. Windows are
        sorted by the names of their applications."""
        windows = [title for title in ("xclock", "xeyes", "xlogo", "display 1", "display 2")
                   if self.desktop.find_window(title)]
        return ["session", "picker", "mouse", "focused", *DISPLAYS, *windows]

    def wait_for_rest(self, seconds):
        self._wait_for_same(lambda: self.screen().data, seconds, "the screen")

    @staticmethod
    def _wait_for_same(look, seconds, what):
        """Until `look()` has given the same for so long."""
        last = [look(), time.monotonic()]

        def rests():
            now = look()
            if now != last[0]:
                last[:] = now, time.monotonic()
            return time.monotonic() - last[1] >= seconds
        wait_until(rests, f"{what} to come to rest")

    def move_pointer(self, x, y):
        self.pointer = (x, y)
        self.desktop.move_pointer(x, y)
