#!/usr/bin/env python3
"""usage: tour.py PROGRAM FOLDER [--keep]

Walks through what Kestrove does, on a private X desktop with two displays, and compares its output
with the displays. A picture of every stop goes to FOLDER. Exit code 1 when a comparison failed."""

import pathlib
import shutil
import signal
import sys

from desktop import DISPLAYS, FRAMEBUFFER, Desktop, wait_until
from report import Report
from session import Session
from walk import Walk


def write_wallpaper(path):
    """Blue on display 1, green on display 2, with a grid that shows any shift; black elsewhere."""
    width, height = FRAMEBUFFER
    border = DISPLAYS["RIGHT"][0]
    with open(path, "wb") as file:
        file.write(b"P6\n%d %d\n255\n" % (width, height))
        for y in range(height):
            shade = 60 * y // height
            left = bytes((30 + shade // 2, 70 + shade, 110 + shade))
            right = bytes((30 + shade // 2, 90 + shade, 70 + shade))
            row = bytearray(left * border + right * (width - border))
            if y >= DISPLAYS["LEFT"][3]:
                row[:3 * border] = bytes(3 * border)
            first = 0 if y < DISPLAYS["LEFT"][3] else border
            for x in range(first, width, 40 if y % 40 else 1):
                brighter = (value + 14 for value in row[3 * x: 3 * x + 3])
                row[3 * x: 3 * x + 3] = bytes(brighter)
            file.write(row)


def start_viewer(desktop):
    viewer = desktop.start("x11vnc", "-localhost", "-nopw", "-forever", "-shared", "-quiet",
                           "-display", desktop.environment["DISPLAY"], "-autoport", "5900")
    print(f"\nThe desktop stays up as DISPLAY={desktop.environment['DISPLAY']}.\n"
          "Look at it with a VNC viewer on this machine: localhost, port 5900 or, where that was\n"
          f"taken, the PORT that {desktop.logs}/x11vnc.log names. Ctrl+C ends it.", flush=True)
    try:
        viewer.wait()
    except KeyboardInterrupt:
        pass


def main(program, folder, keep):
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    report = Report(folder)
    with Desktop(folder / "logs") as desktop:
        desktop.start_server()
        write_wallpaper(desktop.home / "wallpaper.ppm")
        # It says 1 at its end also when all went well; the property tells.
        desktop.start("display", "-window", "root", str(desktop.home / "wallpaper.ppm")).wait()
        wait_until(lambda: "pixmap" in desktop.run("xprop", "-root", "_XSETROOT_ID"), "a wallpaper")
        desktop.start_session()
        session = Session(desktop, program)
        session.start_programs()
        try:
            Walk(session, report).everything()
        except (TimeoutError, RuntimeError, ValueError) as error:
            report.stop("interrupted", "the tour could not go on", str(error), False,
                        session.screen())
        print("\n" + report.table())
        print(f"\nPictures: {folder}. Logs: {folder / 'logs'}.")
        if keep:
            session.thaw("LEFT", "RIGHT")
            start_viewer(desktop)
    return 0 if report.passed else 1


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    sys.exit(main(sys.argv[1], sys.argv[2], "--keep" in sys.argv[3:]))
