#!/usr/bin/env python3
"""usage: start.py ROOT [--rounds N]

How long Kestrove takes from its start to its icon in the tray, and what memory it needs at rest,
beside the least that a tray program of the same toolkit can be: by turns, on one X server of their
own. See ./bench --help."""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts" / "tour"))

# pylint: disable=wrong-import-position
from desktop import Desktop  # noqa: E402
from measure import cpu_seconds, median, own_memory  # noqa: E402
from scenes import tools_folder  # noqa: E402

REST = 2.0  # seconds from the icon to the look at the memory


def once(desktop, tools, program):
    """Milliseconds to the icon; MiB at rest; CPU seconds up to there, and in the next two."""
    with subprocess.Popen([tools / "kestrove-bench-traystart", program], env=desktop.environment,
                          text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as tray:
        process, taken = tray.stdout.readline().split()
        time.sleep(REST)
        row = {"ms": float(taken), "MiB": own_memory(int(process)),
               "cpu ms": 1000 * cpu_seconds(int(process))}
        time.sleep(REST)
        row["cpu ms at rest"] = 1000 * cpu_seconds(int(process)) - row["cpu ms"]
        tray.stdin.close()
    return row


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=7)
    options = parser.parse_args()
    tools = tools_folder(options.root)
    programs = {"bare tray program": tools / "kestrove-bench-baretray",
                "kestrove": options.root / "build" / "bench" / "kestrove"}
    rounds = {name: [] for name in programs}
    with tempfile.TemporaryDirectory(prefix="kestrove-bench-") as logs, Desktop(logs) as desktop:
        desktop.start_server()
        desktop.start_session()
        # The first of each fills the caches, and counts for nothing.
        for each in range(options.rounds + 1):
            for name, program in programs.items():
                row = once(desktop, tools, program)
                if each > 0:
                    rounds[name].append(row)
    medians = {name: {key: median([row[key] for row in rows]) for key in rows[0]}
               for name, rows in rounds.items()}
    bare, ours = medians.values()
    print(f"| | {' | '.join(medians)} | ratio |\n| --- | --- | --- | --- |")
    for key, label in (("ms", "start to the icon in the tray, ms"),
                       ("cpu ms", "CPU of the start, ms"),
                       ("MiB", "memory at rest, MiB (shared pages by their share)"),
                       ("cpu ms at rest", f"CPU of {REST:.0f} s at rest, ms")):
        ratio = f"{ours[key] / bare[key]:.2f}" if bare[key] else ""
        print(f"| {label} | {bare[key]:.1f} | {ours[key]:.1f} | {ratio} |")


if __name__ == "__main__":
    main()
