#!/usr/bin/env python3
"""fuzz.py BUILD [--minutes NUMBER] [--only NAME...]: runs the fuzzers of a build folder, two at a
time, from the seeds and from what earlier runs have found worth keeping (BUILD/corpus). Ends with a
table. An input that breaks a promise, crashes, hangs or eats memory is kept in BUILD/failures, and
the exit code is 1; it belongs into Tests/Fuzzing/Seeds once it is mended."""

import argparse
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FUZZING = pathlib.Path(__file__).resolve().parents[1] / "Tests" / "Fuzzing"
AT_ONCE = 2
LONGEST_INPUT = 4096  # bytes
SLOWEST_INPUT = 5  # seconds
MEMORY = 1024  # mebibytes
ADDRESS_OPTIONS = "detect_leaks=1:allocator_may_return_null=0"


def run(program, build, seconds):
    name = program.name.removeprefix("fuzz-")
    corpus = build / "corpus" / name
    failures = build / "failures"
    for folder in (corpus, failures):
        folder.mkdir(parents=True, exist_ok=True)
    log = build / f"{program.name}.log"
    with tempfile.TemporaryDirectory(prefix="kestrove-fuzz-") as scratch, open(log, "wb") as output:
        code = subprocess.run(
            [program, f"-max_total_time={seconds}", f"-max_len={LONGEST_INPUT}",
             f"-timeout={SLOWEST_INPUT}", f"-rss_limit_mb={MEMORY}", "-print_final_stats=1",
             f"-dict={FUZZING / 'words.dict'}", f"-artifact_prefix={failures}/{name}-",
             corpus, FUZZING / "Seeds" / name],
            check=False, stdout=output, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
            env=os.environ | {"TMPDIR": scratch, "ASAN_OPTIONS": ADDRESS_OPTIONS}).returncode
    return name, code, log.read_text(encoding="utf-8", errors="replace")


def number(text, pattern):
    found = re.findall(pattern, text)
    return found[-1] if found else "?"


def row(name, code, log):
    return [name, number(log, r"number_of_executed_units: (\d+)"),
            number(log, r"average_exec_per_sec: +(\d+)"), number(log, r"cov: (\d+)"),
            number(log, r"corp: (\d+)"), number(log, r"slowest_unit_time_sec: +(\d+)"),
            number(log, r"peak_rss_mb: +(\d+)"), "found nothing" if code == 0 else "FAILED"]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--minutes", type=float, default=1)
    parser.add_argument("--only", nargs="*")
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    programs = sorted(path for path in (build / "Tests" / "Fuzzing").glob("fuzz-*")
                      if os.access(path, os.X_OK) and path.is_file() and
                      (not arguments.only or path.name.removeprefix("fuzz-") in arguments.only))
    if not programs:
        sys.exit("there are no fuzzers in " + str(build))
    shutil.rmtree(build / "failures", ignore_errors=True)
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        results = list(pool.map(
            lambda program: run(program, build, int(60 * arguments.minutes)), programs))
    print("| Fuzzer | Inputs | a second | Edges | Kept | Slowest s | Peak MB | |")
    print("|---|---|---|---|---|---|---|---|")
    for result in results:
        print("| " + " | ".join(row(*result)) + " |")
    broken = [result for result in results if result[1] != 0]
    for name, _, log in broken:
        print(f"\n== {name}\n" + "\n".join(log.splitlines()[-40:]))
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
