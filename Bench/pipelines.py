"""The programs that mirror the display LEFT into a window, each as a user would start it."""

import pathlib
import shutil

from desktop import wait_until


class Pipeline:
    """One way to mirror. `start` returns the process and its window."""

    name = ""
    command = ""  # must be there
    package = ""  # where it comes from

    def is_installed(self):
        return shutil.which(self.command) is not None

    def start(self, desktop, scene):
        raise NotImplementedError


def _place_for(desktop, scene):
    if scene.output_on_source:
        return 300, 200
    x, y, _, _ = desktop.displays["RIGHT"]
    return x + 40, y + 40


def _newest_window(desktop, before, name):
    def appeared():
        new = [window for window in desktop.windows() if window not in before]
        return new[-1] if new else None
    return wait_until(appeared, f"the output of {name}")


def _place(desktop, window, scene):
    x, y = _place_for(desktop, scene)
    width, height = scene.output
    desktop.run("xdotool", "windowsize", window, str(width), str(height))
    desktop.run("xdotool", "windowmove", window, str(x), str(y))
    wait_until(lambda: desktop.geometry(window)[2:] == scene.output, "the output's size")


class Kestrove(Pipeline):
    name = "kestrove"

    def __init__(self, program):
        self.command = program

    def is_installed(self):
        return pathlib.Path(self.command).exists()

    def start(self, desktop, scene):
        folder = desktop.home / "config" / "kestrove"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "kestrove.conf").write_text(
            "kestrove.autoStart=true\nkestrove.followMode=mouse\n"
            f"kestrove.targetFPS={scene.rate}\n", encoding="utf-8")
        x, y, _, _ = scene.source
        desktop.move_pointer(x + 5, y + 5)
        process = desktop.start(self.command)
        window = wait_until(lambda: desktop.find_window("kestrove"), "the output of Kestrove")
        _place(desktop, window, scene)
        return process, window


class GStreamer(Pipeline):
    command = "gst-launch-1.0"
    package = "gstreamer1.0-tools gstreamer1.0-plugins-good gstreamer1.0-x"

    def __init__(self, uses_damage):
        self._uses_damage = uses_damage
        self.name = "GStreamer, with damage" if uses_damage else "GStreamer, without damage"

    def start(self, desktop, scene):
        x, y, width, height = scene.source
        across, down = scene.output
        elements = [
            "ximagesrc", f"use-damage={str(self._uses_damage).lower()}", "show-pointer=true",
            f"startx={x}", f"starty={y}", f"endx={x + width - 1}", f"endy={y + height - 1}",
            "!", f"video/x-raw,framerate={scene.rate}/1"]
        if (across, down) != (width, height):
            elements += ["!", "videoscale", "!", f"video/x-raw,width={across},height={down}"]
        elements += ["!", "ximagesink", "sync=false"]
        before = desktop.windows()
        process = desktop.start(self.command, "-q", *elements)
        window = _newest_window(desktop, before, "GStreamer")
        _place(desktop, window, scene)
        return process, window


class FFplay(Pipeline):
    name = "ffplay"
    command = "ffplay"
    package = "ffmpeg"

    def start(self, desktop, scene):
        x, y, width, height = scene.source
        across, down = scene.output
        before = desktop.windows()
        # Without a graphics card its own drawing is faster than an imitation of one.
        process = desktop.start(
            "env", "SDL_RENDER_DRIVER=software", "SDL_VIDEODRIVER=x11", self.command,
            "-loglevel", "error", "-f", "x11grab", "-framerate", str(scene.rate), "-video_size",
            f"{width}x{height}", "-probesize", "32", "-fflags", "nobuffer", "-flags", "low_delay",
            "-i", f"{desktop.environment['DISPLAY']}+{x},{y}", "-x", str(across), "-y", str(down),
            "-an", log="ffplay")
        window = _newest_window(desktop, before, "ffplay")
        _place(desktop, window, scene)
        return process, window


def all_pipelines(program):
    return [Kestrove(program), GStreamer(True), GStreamer(False), FFplay()]
