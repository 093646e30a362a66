"""Starts an installed program as a user does, on an X desktop of its own, and looks at what it
needs of what was installed beside it: that it shares, its drawings, its page."""

import pathlib
import re
import sys
import urllib.parse

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts" / "tour"))

from camera import Camera  # noqa: E402
from desktop import Desktop, wait_until  # noqa: E402

BACKGROUND = (0x33, 0x66, 0x99)
IDENTIFIER = "dev.kestrove.Kestrove"

# Stands in for the default browser, which a test machine need not have.
BROWSER = '#!/bin/sh\nprintf "%s" "$1" > "$HOME/opened.part" && mv "$HOME/opened.part" ' \
          '"$HOME/opened"\n'


class InstalledProgram:
    """`root` is the root of a system that has the program; "/" is this one."""

    def __init__(self, program, root="/", logs="."):
        self.program = program
        self.root = pathlib.Path(root)
        self.desktop = Desktop(logs, {"LEFT": (0, 0, 640, 480)})
        # As the program sees it, and as we do.
        self.home = self.root / str(self.desktop.home).lstrip("/")
        self.window = None
        self.process = None

    def __enter__(self):
        self.desktop.start_server()
        self.desktop.start_session()
        self.desktop.run("xsetroot", "-solid", "#%02x%02x%02x" % BACKGROUND)
        browser = self.home / "bin" / "xdg-open"
        browser.parent.mkdir(parents=True)
        browser.write_text(BROWSER, encoding="utf-8")
        browser.chmod(0o755)
        path = f"{self.desktop.home}/bin:/usr/bin:/bin"
        command = [self.program] if self.root == pathlib.Path("/") else [
            "chroot", str(self.root), self.program]
        self.desktop.environment["PATH"] += ":/usr/sbin"
        self.process = self.desktop.start("env", f"PATH={path}:/usr/sbin", *command,
                                          log="kestrove")
        self.window = wait_until(self._find, "the window titled kestrove")
        return self

    def __exit__(self, *_):
        self.desktop.__exit__()

    def _find(self):
        if self.process.poll() is not None:
            log = (self.desktop.logs / "kestrove.log").read_text(encoding="utf-8")
            raise RuntimeError(f"it ended with exit code {self.process.returncode}:\n{log}")
        return self.desktop.find_window("kestrove")

    def _press(self, *keys):
        self.desktop.run("xdotool", "windowactivate", "--sync", self.window)
        self.desktop.run("xdotool", "key", *keys)

    def window_class(self):
        return re.findall(r'"([^"]*)"', self.desktop.run("xprop", "-id", self.window, "WM_CLASS"))

    def icons(self):
        """Sides of the window's icons on which something is drawn."""
        text = self.desktop.run("xprop", "-id", self.window, "_NET_WM_ICON")
        parts = re.split(r"Icon \((\d+) x \d+\):", text)
        return {int(side) for side, art in zip(parts[1::2], parts[2::2]) if art.strip()}

    def shared_colour(self):
        """What the middle of the window shows, once it is not black."""
        self._press("space")
        camera = Camera(self.desktop.environment["DISPLAY"])
        x, y, width, height = self.desktop.geometry(self.window)

        def colour():
            pixel = camera.take().pixel(x + width // 4, y + height // 4)
            return pixel if pixel != (0, 0, 0) else None
        try:
            return wait_until(colour, "a picture in the window")
        finally:
            camera.close()

    def opened_page(self):
        """Chooses the page in the menu; the file that the browser was asked for, on its system."""
        camera = Camera(self.desktop.environment["DISPLAY"])
        before = camera.take().data
        self._press("Menu")
        wait_until(lambda: camera.take().data != before, "the menu")
        camera.close()
        # Last but one; the keyboard goes round.
        self.desktop.run("xdotool", "key", "Up", "Up", "Return")
        opened = self.home / "opened"
        wait_until(opened.exists, "the browser to be asked for the page")
        address = urllib.parse.urlparse(opened.read_text(encoding="utf-8"))
        if address.scheme != "file":
            raise ValueError(f"not a page of this machine: {address.geturl()}")
        return pathlib.Path(urllib.parse.unquote(address.path))

    def end(self):
        """As the end of a session does; the exit code."""
        self.process.terminate()
        return self.process.wait(20)


def examine(program, root, logs):
    """All of it; returns a list of what is wrong."""
    wrong = []
    with InstalledProgram(program, root, logs) as installed:
        if IDENTIFIER not in installed.window_class():
            wrong.append(f"its windows are of the class {installed.window_class()}")
        if not {16, 32, 48, 64} <= installed.icons():
            wrong.append(f"its window has icons of the sides {sorted(installed.icons())} only")
        if (colour := installed.shared_colour()) != BACKGROUND:
            wrong.append(f"its window shows {colour} where the screen is {BACKGROUND}")
        page = installed.opened_page()
        expected = pathlib.Path(program).parents[1] / "share/kestrove/privacy-policy.html"
        if page != expected:
            wrong.append(f"it opens {page}, not {expected}")
        elif not (pathlib.Path(root) / str(page).lstrip("/")).is_file():
            wrong.append(f"there is no {page}")
        if (code := installed.end()) != 0:
            wrong.append(f"its exit code is {code}")
    return wrong


def main():
    """installed_program.py PROGRAM ROOT LOGS"""
    wrong = examine(*sys.argv[1:4])
    print("\n".join(wrong) or "It starts, shares, has its icons, opens its page and ends.")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
