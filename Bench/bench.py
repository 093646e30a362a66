#!/usr/bin/env python3
"""usage: bench.py ROOT [--rounds N] [--seconds S] [--scenes TEXT]

Mirrors the same scenes with Kestrove and with what else does it on X11, on servers of its own, one
after the other, and compares CPU, latency and memory. See ./bench --help."""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts" / "tour"))

# pylint: disable=wrong-import-position
from desktop import Desktop  # noqa: E402
from measure import Interval, median, own_memory, percentile, resident_memory  # noqa: E402
from pipelines import all_pipelines  # noqa: E402
from scenes import SCENES, tools_folder  # noqa: E402
import table  # noqa: E402

SETTLING = 2.0  # seconds from the first picture to the measurement
LATENCY_ROUNDS = 100


def open_desktop(scene, logs):
    desktop = Desktop(logs, scene.displays)
    desktop.start_server()
    desktop.start_session()
    return desktop


def server_of(desktop):
    return desktop.processes[0].pid


def measure_bare(scene, tools, logs, seconds):
    """The scene alone: CPU of the server as a share of one core, and its memory in MiB."""
    with open_desktop(scene, logs) as desktop:
        scene.start(desktop, tools)
        time.sleep(SETTLING)
        cpu = Interval(server=server_of(desktop)).run(seconds)["server"]
        return cpu, resident_memory(server_of(desktop))


def measure_use(pipeline, scene, tools, logs, seconds, bare):
    with open_desktop(scene, logs) as desktop:
        source = scene.start(desktop, tools)
        process, window = pipeline.start(desktop, scene, source)
        time.sleep(SETTLING)
        used = Interval(client=process.pid, server=server_of(desktop)).run(seconds)
        server = used["server"] - bare[0]
        # After the measurement: looking costs the server something too.
        frames = desktop.run(tools / "kestrove-bench-frames", window, "3")
        return {"client": used["client"], "server": server, "cpu": used["client"] + server,
                "frames": float(frames), "memory": own_memory(process.pid),
                "server_memory": resident_memory(server_of(desktop)) - bare[1]}


def measure_latency(pipeline, scene, tools, logs):
    """Milliseconds from a change on the display to the same change in the output."""
    with open_desktop(scene, logs) as desktop:
        x, y, width, height = scene.displays["LEFT"]
        with subprocess.Popen(
                [tools / "kestrove-bench-latency", str(x), str(y), str(width), str(height),
                 str(LATENCY_ROUNDS)],
                env=desktop.environment, text=True, stdin=subprocess.PIPE,
                stdout=subprocess.PIPE) as probe:
            probe.stdout.readline()
            source = scene.find_source(desktop)
            _, window = pipeline.start(desktop, scene, source)
            time.sleep(SETTLING)
            # The middle of the mark, which lies in the source's corner.
            output = scene.size(source)
            across, down = output[0] / width, output[1] / height
            probe.stdin.write(f"{int(window, 0)} {int(32 * across)} {int(32 * down)}\n")
            probe.stdin.flush()
            rounds = [float(line) for line in probe.stdout]
    seen = [each for each in rounds if each >= 0]
    return {"p50": percentile(seen, 50) if seen else None,
            "p99": percentile(seen, 99) if seen else None, "lost": len(rounds) - len(seen)}


def measure(pipeline, scene, tools, logs, options, bare):
    rounds = [measure_use(pipeline, scene, tools, logs, options.seconds, bare)
              for _ in range(options.rounds)]
    row = {key: median([each[key] for each in rounds]) for key in rounds[0]}
    row["rounds"] = rounds
    row |= {"scene": scene.name, "pipeline": pipeline.name, "ours": pipeline.name == "kestrove",
            "p50": None, "p99": None, "lost": None}
    if scene.target and not options.no_latency:
        row |= measure_latency(pipeline, scene, tools, logs)
    return row


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=5.0)
    parser.add_argument("--scenes", default="")
    parser.add_argument("--no-latency", action="store_true")
    options = parser.parse_args()
    tools = tools_folder(options.root)
    folder = options.root / "build" / "bench"
    pipelines = all_pipelines(str(folder / "kestrove"))
    for missing in [each for each in pipelines if not each.is_installed()]:
        print(f"not measured: {missing.name}; it comes with: {missing.package}")
    scenes = [scene for scene in SCENES if options.scenes in scene.name]
    results = []
    with tempfile.TemporaryDirectory(prefix="kestrove-bench-") as logs:
        for scene in scenes:
            bare = measure_bare(scene, tools, logs, options.seconds)
            for pipeline in [each for each in pipelines
                             if each.is_installed() and each.can_mirror(scene)]:
                row = measure(pipeline, scene, tools, logs, options, bare)
                results.append(row)
                print(f"  {scene.name}: {row['pipeline']}: {100 * row['cpu']:.1f} % CPU",
                      flush=True)
    (folder / "results.json").write_text(json.dumps(results, indent=1), encoding="utf-8")
    print("\n" + "\n".join(table.lines(results)) + "\n")
    print("\n".join(table.verdicts(results, scenes)))
    print(f"\nAll figures: {folder / 'results.json'}")


if __name__ == "__main__":
    main()
