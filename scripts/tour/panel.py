"""Kestrove's icon in a tray, and the panel that a click on it opens."""

import pixels
from desktop import wait_until

TITLE = "Kestrove"
ICON = 32  # pixels of each side of the tray, which has one icon
SMALLEST = 200  # pixels: the icon's own window, and its tool tip, may have the same title
# The rows from the top down that are the same whatever there is to share.
SESSION, PICKER = 0, 1
QUIT = -1


class Panel:
    def __init__(self, session):
        self.session = session
        self.desktop = session.desktop
        self.rows = []  # their places on the screen, from the top down, of the panel last opened

    def start_tray(self):
        """On the lower right of display 1. The icon comes to a tray that starts later, too."""
        self.desktop.start("trayer", "--edge", "bottom", "--align", "right", "--widthtype", "pixel",
                           "--width", str(ICON), "--heighttype", "pixel", "--height", str(ICON),
                           "--expand", "false")
        wait_until(self._tray, "the tray")
        wait_until(lambda: len(set(self._icon_pixels())) > 2, "the icon in the tray")
        self.session.wait_for_rest(0.5)

    def _tray(self):
        found = self.desktop.find_windows("--class", "trayer")
        return found[-1] if found else None

    def _icon_pixels(self):
        picture = self.session.screen().cut(*self.desktop.geometry(self._tray()))
        return (picture.pixel(x, y) for y in range(picture.height) for x in range(picture.width))

    def find(self):
        """Its window; None while it is closed."""
        for window in self.desktop.find_windows("--name", f"^{TITLE}$"):
            if window != self.session.window and min(self.place(window)[2:]) >= SMALLEST:
                return window
        return None

    def place(self, window=None):
        """x, y, width, height in root pixels."""
        return self.desktop.geometry(window or self.find())

    def open(self):
        """By a click on the icon."""
        x, y, width, height = self.desktop.geometry(self._tray())
        self.session.move_pointer(x + width // 2, y + height // 2)
        self.desktop.run("xdotool", "click", "1")
        wait_until(self.find, "the panel")
        self.session.wait_for_rest(1.0)
        self.rows = self._walk_rows()

    def _walk_rows(self):
        """Each shows where it is when the keyboard comes to it; the last one is followed by the
        first."""
        place = self.place()
        left, top = place[:2]
        plain = self.session.screen().cut(*place)
        found = []
        while True:
            self.desktop.run("xdotool", "key", "Down")
            self.session.wait_for_rest(0.2)
            box = pixels.differing_box(plain, self.session.screen().cut(*place))
            row = (left + box[0], top + box[1], *box[2:])
            if found and row == found[0]:
                return found
            found.append(row)

    def click(self, row):
        """In the middle of the row of this number; from -1 they count from the end."""
        x, y, width, height = self.rows[row]
        self.session.move_pointer(x + width // 2, y + height // 2)
        self.desktop.run("xdotool", "click", "1")
