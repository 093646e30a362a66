#!/usr/bin/env python3
"""Runs the simulation with seeds that nobody has tried, as long as is wanted, on every core.

PROGRAM is the built test-simulation. Seeds begin at the time in seconds, times a thousand. A seed
that fails is printed with the fewest steps that still break the same promise and left in FOLDER; as
a file of Tests/Simulation/Regressions it is tried by every test from then on. What happened is
counted in FOLDER/report.txt. Fails when a seed did.
"""

import argparse
import os
import re
import subprocess
import sys
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

SEEDS_AT_A_TIME = 100


def run(program, folder, first, counts):
    """The output of a run that failed, or None."""
    report = folder / f"report-{first}"
    environment = dict(os.environ, KESTROVE_SEED=str(first), KESTROVE_SEEDS=str(SEEDS_AT_A_TIME),
                       KESTROVE_REPORT=str(report))
    done = subprocess.run([program, "--gtest_filter=Simulation.KeepsItsPromises"],
                          env=environment, capture_output=True, text=True, check=False)
    if report.is_file():
        for line in report.read_text(encoding="utf-8").splitlines():
            count, name = line.split(" ", 1)
            counts[name] += int(count)
        report.unlink()
    return done.stdout + done.stderr if done.returncode else None


def keep(folder, first, output):
    print(output, flush=True)
    seed = re.search(r"seed (\d+)", output)
    steps = re.findall(r"^ +\d+ (.*\(\d+, \d+\).*)$", output, re.MULTILINE)
    broken = re.search(r"broken: (.*)", output)
    file = folder / f"seed-{seed[1] if seed else first}.steps"
    file.write_text("\n".join([f"# {broken[1] if broken else 'the process ended'}", *steps, ""]),
                    encoding="utf-8")
    print(f"left in {file}", flush=True)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("program", type=Path)
    arguments.add_argument("folder", type=Path)
    arguments.add_argument("--minutes", type=float, default=10)
    options = arguments.parse_args()
    options.folder.mkdir(parents=True, exist_ok=True)
    end = time.monotonic() + options.minutes * 60
    first = int(time.time()) * 1000
    counts, failed, batch = Counter(), 0, 0
    workers = os.cpu_count()
    with ThreadPoolExecutor(workers) as pool:
        while time.monotonic() < end:
            batches = [first + (batch + each) * SEEDS_AT_A_TIME for each in range(workers)]
            batch += workers
            results = pool.map(
                lambda seed: run(options.program, options.folder, seed, counts), batches)
            for seed, output in zip(batches, results):
                if output:
                    failed += 1
                    keep(options.folder, seed, output)
    lines = [f"{count} {name}" for name, count in sorted(counts.items())]
    (options.folder / "report.txt").write_text("\n".join(lines) + "\n", encoding="utf-8")
    steps = sum(count for name, count in counts.items() if name.startswith("step: "))
    points = [count for name, count in counts.items() if name.startswith("point: ")]
    print(f"{sum(count > 0 for count in points)} of {len(points)} points of the capture service "
          "reached (an operation and what becomes of it)")
    print(f"{counts['runs']} runs, {steps} steps, seeds from {first}, {failed} failures; "
          f"counts in {options.folder / 'report.txt'}")
    sys.exit(1 if failed else 0)


main()
