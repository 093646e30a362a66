"""The programs that mirror a source into a window, each as a user would start it."""

import json
import pathlib
import shutil
import time

from desktop import wait_until


class Pipeline:
    """One way to mirror. `start` returns the process and its window."""

    name = ""
    command = ""  # must be there
    package = ""  # where it comes from

    def is_installed(self):
        return shutil.which(self.command) is not None

    def can_mirror(self, _scene):
        return True

    def start(self, desktop, scene, source):
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


# What is done to a new window at once, it takes for the window manager's doing and not the user's.
NEWNESS = 1.0  # seconds


def place(desktop, window, scene, source):
    x, y = _place_for(desktop, scene)
    width, height = scene.size(source)
    desktop.run("xdotool", "windowsize", window, str(width), str(height))
    desktop.run("xdotool", "windowmove", window, str(x), str(y))
    wait_until(lambda: desktop.geometry(window)[2:] == (width, height),
               "the output's size")


class Kestrove(Pipeline):
    name = "kestrove"

    def __init__(self, program):
        self.command = program

    def is_installed(self):
        return pathlib.Path(self.command).exists()

    def start(self, desktop, scene, source):
        settings = self._settings(desktop)
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(
            "kestrove.autoStart=true\nkestrove.followMode=mouse\n"
            f"kestrove.targetFPS={scene.rate}\n", encoding="utf-8")
        x, y, _, _ = source.place
        desktop.move_pointer(x + 5, y + 5)
        process = desktop.start(self.command)
        window = wait_until(lambda: desktop.find_window("kestrove"), "the output of Kestrove")
        time.sleep(NEWNESS)
        if source.window:
            self._tick_window(desktop, window, source.window)
        place(desktop, window, scene, source)
        return process, window

    def _tick_window(self, desktop, output, window):
        """The first window of the list, in the panel that a second start opens."""
        desktop.run(self.command)
        panel = wait_until(
            lambda: [each for each in desktop.find_windows("--name", "^Kestrove$")
                     if int(each) != int(output)], "the panel")[0]
        wait_until(lambda: desktop.run("xdotool", "getwindowfocus").strip() == panel,
                   "the keyboard in the panel")
        # Down to starting, the picker, two ways to follow, two displays, and the windows.
        desktop.run("xdotool", "key", "--delay", "50", *["Down"] * 7, "space", "Escape")
        # Else some other source would be measured.
        number = str(int(window, 0))
        wait_until(lambda: number in self._setting(desktop, "manualSources"), "the ticked window")

    def _setting(self, desktop, key):
        lines = self._settings(desktop).read_text(encoding="utf-8").splitlines()
        return next((line for line in lines if line.startswith(f"kestrove.{key}=")), "")

    @staticmethod
    def _settings(desktop):
        return desktop.home / "config" / "kestrove" / "kestrove.conf"


class GStreamer(Pipeline):
    command = "gst-launch-1.0"
    package = "gstreamer1.0-tools gstreamer1.0-plugins-good gstreamer1.0-x"

    def __init__(self, uses_damage):
        self._uses_damage = uses_damage
        self.name = "GStreamer, with damage" if uses_damage else "GStreamer, without damage"

    def start(self, desktop, scene, source):
        x, y, width, height = source.place
        across, down = scene.size(source)
        elements = [
            "ximagesrc", f"use-damage={str(self._uses_damage).lower()}", "show-pointer=true",
            *([f"xid={source.window}"] if source.window else
              [f"startx={x}", f"starty={y}", f"endx={x + width - 1}", f"endy={y + height - 1}"]),
            "!", f"video/x-raw,framerate={scene.rate}/1"]
        if (across, down) != (width, height):
            elements += ["!", "videoscale", "!", f"video/x-raw,width={across},height={down}"]
        elements += ["!", "ximagesink", "sync=false"]
        before = desktop.windows()
        process = desktop.start(self.command, "-q", *elements)
        window = _newest_window(desktop, before, "GStreamer")
        place(desktop, window, scene, source)
        return process, window


class FFplay(Pipeline):
    name = "ffplay"
    command = "ffplay"
    package = "ffmpeg"

    def start(self, desktop, scene, source):
        x, y, width, height = source.place
        across, down = scene.size(source)
        before = desktop.windows()
        # Without a graphics card its own drawing is faster than an imitation of one.
        process = desktop.start(
            "env", "SDL_RENDER_DRIVER=software", "SDL_VIDEODRIVER=x11", self.command,
            "-loglevel", "error", "-f", "x11grab", "-framerate", str(scene.rate), "-video_size",
            f"{width}x{height}", "-probesize", "32", "-fflags", "nobuffer", "-flags", "low_delay",
            *(["-window_id", source.window, "-i", desktop.environment["DISPLAY"]]
              if source.window else ["-i", f"{desktop.environment['DISPLAY']}+{x},{y}"]),
            "-x", str(across), "-y", str(down), "-an", log="ffplay")
        window = _newest_window(desktop, before, "ffplay")
        place(desktop, window, scene, source)
        return process, window


class ObsStudio(Pipeline):
    """Its projector in a window, with the preview of its main window switched off."""
    name = "OBS Studio"
    command = "obs"
    package = "obs-studio"

    def can_mirror(self, scene):
        # Of windows it makes textures without copying them, which takes a graphics card.
        return not scene.of_window

    def start(self, desktop, scene, source):
        folder = desktop.home / "config" / "obs-studio"
        self._write_profile(folder, scene, source)
        self._write_scene(folder)
        process = desktop.start(self.command, "--multi", "--profile", "bench", "--collection",
                                "bench")
        window = wait_until(lambda: next(iter(desktop.find_windows("--name", "Projector")), None),
                            "the projector of OBS Studio")
        place(desktop, window, scene, source)
        main = wait_until(lambda: desktop.find_windows("--name", "^OBS .* Profile"),
                          "the main window of OBS Studio")
        desktop.run("xdotool", "windowminimize", main[0])  # it opens on what is mirrored
        return process, window

    @staticmethod
    def _write_profile(folder, scene, source):
        width, height = source.place[2:]
        profile = folder / "basic" / "profiles" / "bench"
        profile.mkdir(parents=True)
        (profile / "basic.ini").write_text(
            "[General]\nName=bench\n[Video]\n"
            f"BaseCX={width}\nBaseCY={height}\nOutputCX={width}\nOutputCY={height}\n"
            f"FPSType=1\nFPSInt={scene.rate}\n", encoding="utf-8")
        (folder / "global.ini").write_text(
            "[General]\nFirstRun=true\nEnableAutoUpdates=false\n"
            "[Basic]\nProfile=bench\nProfileDir=bench\nSceneCollection=bench\n"
            "SceneCollectionFile=bench\n"
            "[BasicWindow]\nSaveProjectors=true\nPreviewEnabled=false\n", encoding="utf-8")

    @staticmethod
    def _write_scene(folder):
        first = 0  # of the displays, from the left
        scenes = folder / "basic" / "scenes"
        scenes.mkdir(parents=True)
        windowed, scene_projector = -1, 1
        (scenes / "bench.json").write_text(json.dumps({
            "name": "bench", "current_scene": "Scene", "current_program_scene": "Scene",
            "scene_order": [{"name": "Scene"}],
            "sources": [
                {"id": "xshm_input", "name": "Grab",
                 "settings": {"screen": first, "show_cursor": True}},
                {"id": "scene", "name": "Scene",
                 "settings": {"items": [{"name": "Grab", "id": 1, "visible": True,
                                         "scale": {"x": 1.0, "y": 1.0}}]}}],
            "saved_projectors": [{"monitor": windowed, "type": scene_projector, "name": "Scene"}],
        }), encoding="utf-8")


def all_pipelines(program):
    return [Kestrove(program), GStreamer(True), GStreamer(False), FFplay(), ObsStudio()]
