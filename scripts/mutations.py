#!/usr/bin/env python3
"""Whether the simulation catches faults: builds it with each of the hand-made ones and runs it.

The faults are in Tests/Simulation/Mutations/mutations.py; seeds.json beside it says which seed
caught each last, and what that broke. Builds in BUILD, on a copy of the sources. Fails when a fault
is caught by none of the seeds.
"""

import argparse
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDER = ROOT / "Tests/Simulation/Mutations"
# A fault may leave something unused.
NO_WARNINGS = ('#pragma GCC diagnostic ignored "-Wunused"\n'
               '#pragma GCC diagnostic ignored "-Wunused-parameter"\n')
sys.path.insert(0, str(FOLDER))
sys.dont_write_bytecode = True

from mutations import MUTATIONS  # noqa: E402


def copy_sources(copy):
    """Leaves what has not changed as it is, so that little is built again."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = [name for name in listed.split("\0") if name and (ROOT / name).is_file()]
    for name in names:
        source, target = ROOT / name, copy / name
        if target.is_file() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)
    for folder in ("Core", "UI", "App", "Async", "Util", "Desktop", "Platform", "Tests"):
        for found in (copy / folder).rglob("*"):
            if found.is_file() and not (ROOT / found.relative_to(copy)).is_file():
                found.unlink()


def build(copy, log):
    with open(log, "w", encoding="utf-8") as out:
        return subprocess.run(["cmake", "--build", "build/dev", "--target", "test-simulation",
                               "--parallel", str(os.cpu_count())],
                              cwd=copy, stdout=out, stderr=subprocess.STDOUT).returncode == 0


def run(copy, first, count):
    """The seed that broke something and what, or None."""
    environment = dict(os.environ, KESTROVE_SEED=str(first), KESTROVE_SEEDS=str(count),
                       KESTROVE_SHRINK="0")
    try:
        done = subprocess.run([copy / "build/dev/Tests/test-simulation",
                               "--gtest_filter=Simulation.KeepsItsPromises"],
                              env=environment, capture_output=True, text=True, timeout=600)
    except subprocess.TimeoutExpired:
        return first, "it does not come to an end"
    if done.returncode == 0:
        return None
    seed = re.search(r"seed (\d+)", done.stdout + done.stderr)
    broken = re.search(r"broken: (.*?):", done.stdout)
    return (int(seed[1]) if seed else first,
            broken[1] if broken else "the process ended: " + done.stderr.splitlines()[0][:80])


def write(file, known):
    names = [mutation.name for mutation in MUTATIONS if mutation.name in known]
    text = json.dumps({name: known[name] for name in names}, indent=1)
    file.write_text(text + "\n", encoding="utf-8")


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("build", type=Path)
    arguments.add_argument("--seeds", type=int, default=1000)
    arguments.add_argument("--only", default="", help="faults whose names contain this")
    arguments.add_argument("--update", action="store_true", help="write what caught each fault")
    options = arguments.parse_args()

    copy = options.build.resolve() / "source"
    copy.mkdir(parents=True, exist_ok=True)
    copy_sources(copy)
    subprocess.run(["cmake", "--preset", "dev"], cwd=copy, check=True, stdout=subprocess.DEVNULL)
    log = options.build.resolve() / "build.log"
    if not build(copy, log):
        sys.exit(f"the sources do not build: {log}")
    known_file = FOLDER / "seeds.json"
    known = json.loads(known_file.read_text(encoding="utf-8")) if known_file.is_file() else {}
    missed = []
    for mutation in MUTATIONS:
        if options.only not in mutation.name:
            continue
        file = copy / mutation.file
        original = file.read_text(encoding="utf-8")
        if original.count(mutation.text) != 1:
            sys.exit(f"{mutation.name}: its text is not once in {mutation.file}")
        file.write_text(NO_WARNINGS + original.replace(mutation.text, mutation.instead),
                        encoding="utf-8")
        try:
            if not build(copy, log):
                print(f"FAILED  {mutation.name}: does not build, see {log}", flush=True)
                missed.append(mutation.name)
                continue
            before = known.get(mutation.name)
            caught = run(copy, before["seed"], 1) if before else None
            caught = caught or run(copy, 1, options.seeds)
        finally:
            file.write_text(original, encoding="utf-8")
        if caught:
            known[mutation.name] = {"seed": caught[0], "broken": caught[1]}
            if options.update:
                write(known_file, known)
            print(f"caught  {mutation.name}: seed {caught[0]}, {caught[1]}", flush=True)
        else:
            missed.append(mutation.name)
            print(f"MISSED  {mutation.name}", flush=True)
    if missed:
        sys.exit(f"{len(missed)} not caught: " + ", ".join(missed))


main()
