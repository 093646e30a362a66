"""What is mirrored: the display LEFT, or a window on it; every output is on RIGHT."""

import dataclasses
import pathlib

from desktop import wait_until

# Larger than the outputs, so that they fit with their title bars.
FULL_HD = {"LEFT": (0, 0, 1920, 1080), "RIGHT": (1920, 0, 2080, 1240)}
UHD = {"LEFT": (0, 0, 3840, 2160), "RIGHT": (3840, 0, 2080, 1240)}

TITLE = "bench scene"  # of the window in which something moves
TEXT = ("n=0; while :; do n=$((n + 1)); printf "
        "'%6d  the quick brown fox jumps over the lazy dog\\n' $n; sleep 0.05; done")


@dataclasses.dataclass(frozen=True)
class Source:
    """What of a scene is mirrored."""
    place: tuple  # x, y, width, height in root pixels
    window: str = None  # its identifier; none: the display is


@dataclasses.dataclass(frozen=True)
class Scene:
    name: str
    displays: dict
    output: tuple  # width, height in pixels; none: as the source
    rate: int  # frames a second, at most
    program: tuple = ()  # arguments of the scene program; none: nothing moves
    terminal: bool = False
    target: float = 0  # our CPU to that of the best other, at most; 0: none is set
    output_on_source: bool = False
    of_window: bool = False  # else of the display

    def start(self, desktop, tools):
        """Returns what is to be mirrored, when it is on the screen."""
        x, y, _, _ = self.displays["LEFT"]
        if self.terminal:
            desktop.start("xterm", "-fa", "DejaVu Sans Mono", "-fs", "12", "-geometry",
                          f"150x50+{x + 20}+{y + 20}", "-title", TITLE, "-e", "sh", "-c",
                          TEXT)
        elif self.program:
            desktop.start(str(tools / "kestrove-bench-scene"), *map(str, self.program))
        if self.terminal or self.program[:1] not in ((), ("pointer",)):
            wait_until(lambda: desktop.find_window(TITLE), "the scene")
        return self.find_source(desktop)

    def find_source(self, desktop):
        if not self.of_window:
            return Source(self.displays["LEFT"])
        window = desktop.find_window(TITLE)
        return Source(desktop.geometry(window), window)

    def size(self, source):
        """Of the output, in pixels."""
        return self.output or source.place[2:]


def _on(displays, *, inset=0):
    x, y, width, height = displays["LEFT"]
    return x + inset, y + inset, width - 2 * inset, height - 2 * inset


SCENES = [
    Scene("window 1920x1080, moving block at 60", FULL_HD, None, 60,
          ("block", *_on(FULL_HD), 60), target=1 / 10, of_window=True),
    Scene("window 1280x720, video at 30", FULL_HD, None, 30,
          ("video", 200, 100, 1280, 720, 30), target=1 / 3, of_window=True),
    Scene("window of a terminal, scrolling text", FULL_HD, None, 30, terminal=True, target=1 / 5,
          of_window=True),
    Scene("moving block, 1920x1080 at 60, 1:1", FULL_HD, (1920, 1080), 60,
          ("block", *_on(FULL_HD), 60), target=1 / 10),
    Scene("video, 1280x720 at 30 in 1920x1080, 1:1", FULL_HD, (1920, 1080), 30,
          ("video", 200, 100, 1280, 720, 30), target=1 / 3),
    Scene("scrolling text in a terminal, 1:1", FULL_HD, (1920, 1080), 30, terminal=True,
          target=1 / 5),
    Scene("display 1920x1080 at 1280x720, moving block", FULL_HD, (1280, 720), 60,
          ("block", *_on(FULL_HD), 60), target=1 / 4),
    Scene("display 3840x2160 at 1920x1080, moving block", UHD, (1920, 1080), 60,
          ("block", *_on(UHD), 60), target=1 / 4),
    Scene("display 1920x1080 at 960x540, the output on it, moving block", FULL_HD, (960, 540), 60,
          ("block", *_on(FULL_HD), 60), output_on_source=True),
    Scene("display 1920x1080 at 960x540, moving block", FULL_HD, (960, 540), 60,
          ("block", *_on(FULL_HD), 60)),
    Scene("still desktop", FULL_HD, (1280, 720), 60),
    Scene("pointer moving over a still desktop", FULL_HD, (1280, 720), 60,
          ("pointer", *_on(FULL_HD, inset=50), 60)),
    Scene("5 open windows, moving block", FULL_HD, (1280, 720), 60,
          ("windows", *_on(FULL_HD), 60, 5)),
    Scene("50 open windows, moving block", FULL_HD, (1280, 720), 60,
          ("windows", *_on(FULL_HD), 60, 50)),
    Scene("200 open windows, moving block", FULL_HD, (1280, 720), 60,
          ("windows", *_on(FULL_HD), 60, 200)),
]


def tools_folder(root):
    return pathlib.Path(root) / "build" / "bench" / "Bench"
