"""The stops of the tour: a picture each, and the table at the end."""

import unicodedata


def _columns(text):
    return sum(2 if unicodedata.east_asian_width(letter) in "WF" else 1 for letter in text)


class Report:
    def __init__(self, folder):
        self.folder = folder
        self.rows = []

    def stop(self, name, done, seen, passed, screen):
        number = f"{len(self.rows) + 1:02d}"
        screen.save(self.folder / f"{number}-{name}.png")
        self.rows.append((number, done, seen, "equal" if passed else "DIFFERENT"))
        print(f"  {number} {done}: {seen}", flush=True)

    def picture(self, name, screen):
        """One more of the stop that comes next."""
        screen.save(self.folder / f"{len(self.rows) + 1:02d}-{name}.png")

    @property
    def passed(self):
        return bool(self.rows) and all(row[3] == "equal" for row in self.rows)

    def table(self):
        rows = [("stop", "what was done", "what was seen", "result")] + self.rows
        widths = [max(_columns(row[column]) for row in rows) for column in range(4)]
        lines = ["  ".join(cell + " " * (width - _columns(cell))
                           for cell, width in zip(row, widths)).rstrip() for row in rows]
        lines.insert(1, "  ".join("-" * width for width in widths))
        return "\n".join(lines)
