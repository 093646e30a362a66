#!/usr/bin/env python3
"""usage: switch.py ROOT [--rounds N]

How long the output takes to show the other display once the pointer has come to rest there, and how
much memory sharing takes beside a bare window of the same size and toolkit. See ./bench --help."""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts" / "tour"))

# pylint: disable=wrong-import-position
from desktop import Desktop, wait_until  # noqa: E402
from measure import median, own_memory, percentile  # noqa: E402
from pipelines import Kestrove, place  # noqa: E402
from scenes import Scene, Source, tools_folder  # noqa: E402

DISPLAYS = {"LEFT": (0, 0, 1920, 1080), "RIGHT": (1920, 0, 1920, 1080)}
SIZE = 1280, 720
SCENE = Scene("two displays", DISPLAYS, SIZE, 60)
REST = 0.15  # seconds for which the pointer has to rest before it counts
SETTLING = 2.0


def measure_switches(kestrove, tools, logs, rounds):
    """Of each: milliseconds from the pointer's rest until the old display was gone and until the
    new one was seen, negative where it was not; how often the old one was seen after it had gone.
    And the memory of Kestrove in MiB."""
    with Desktop(logs, DISPLAYS) as desktop:
        desktop.start_server()
        desktop.start_session()
        places = [str(number) for each in DISPLAYS.values() for number in each]
        with subprocess.Popen([tools / "kestrove-bench-switch", *places, str(rounds)],
                              env=desktop.environment, text=True, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as probe:
            probe.stdout.readline()
            process, window = kestrove.start(desktop, SCENE, Source(DISPLAYS["LEFT"]))
            time.sleep(SETTLING)
            memory = own_memory(process.pid)
            probe.stdin.write(f"{int(window, 0)} {SIZE[0] // 8} {SIZE[1] // 8}\n")
            probe.stdin.flush()
            switches = [tuple(float(each) for each in line.split()) for line in probe.stdout]
    return switches, memory


def measure_bare_window(tools, logs):
    with Desktop(logs, DISPLAYS) as desktop:
        desktop.start_server()
        desktop.start_session()
        process = desktop.start(str(tools / "kestrove-bench-barewindow"), *map(str, SIZE))
        window = wait_until(lambda: desktop.find_window("bare window"), "the bare window")
        place(desktop, window, SCENE, Source(DISPLAYS["LEFT"]))
        time.sleep(SETTLING)
        return own_memory(process.pid)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=100)
    options = parser.parse_args()
    tools = tools_folder(options.root)
    kestrove = Kestrove(str(options.root / "build" / "bench" / "kestrove"))
    with tempfile.TemporaryDirectory(prefix="kestrove-bench-") as logs:
        switches, ours = measure_switches(kestrove, tools, logs, options.rounds)
        bare = measure_bare_window(tools, logs)
    seen = [each for each in switches if each[1] >= 0]
    print("| milliseconds after the pointer came to rest on the other display | p50 | p95 | most |")
    print("| --- | --- | --- | --- |")
    for column, label in ((0, "the old display was gone"), (1, "the new one was seen")):
        times = [each[column] for each in seen]
        print(f"| {label} | {median(times):.1f} | {percentile(times, 95):.1f} | {max(times):.1f} |")
    between = [new - old for old, new, _ in seen]
    print(f"| between the two | {median(between):.1f} | {percentile(between, 95):.1f} | "
          f"{max(between):.1f} |")
    print(f"\n{len(seen)} of {len(switches)} switches seen, the first "
          f"{1000 * REST:.0f} ms of each are the rest itself; the old display was seen again after "
          f"it had gone {sum(each[2] for each in switches):.0f} times.")
    print(f"\nMemory while sharing, output {SIZE[0]}x{SIZE[1]} (shared pages by their share): "
          f"{ours:.1f} MiB; a bare window of that size and toolkit {bare:.1f}; {ours / bare:.2f}.")


if __name__ == "__main__":
    main()
