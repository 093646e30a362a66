"""What processes use: CPU time to the nanosecond, and memory."""

import pathlib
import time


def _children(process):
    try:
        lists = pathlib.Path(f"/proc/{process}/task").glob("*/children")
        return [int(child) for file in lists for child in file.read_text().split()]
    except OSError:
        return []


def family(process):
    """The process and all that it has started."""
    members = [process]
    for member in members:
        members += _children(member)
    return members


def cpu_seconds(process):
    """Of all threads of the process and of what it has started. Read from schedstat: the usual
    counters go by hundredths of a second."""
    total = 0
    for member in family(process):
        for thread in pathlib.Path(f"/proc/{member}/task").glob("*/schedstat"):
            try:
                total += int(thread.read_text().split()[0])
            except OSError:
                pass  # a thread that has just ended
    return total / 1e9


def _kibibytes(file, label):
    for line in pathlib.Path(file).read_text(encoding="ascii").splitlines():
        if line.startswith(label):
            return int(line.split()[1])
    raise ValueError(f"{file} has no {label}")


def own_memory(process):
    """MiB, shared pages counted by their share."""
    return sum(_kibibytes(f"/proc/{member}/smaps_rollup", "Pss:")
               for member in family(process)) / 1024


def resident_memory(process):
    """MiB."""
    return _kibibytes(f"/proc/{process}/status", "VmRSS:") / 1024


class Interval:
    """CPU of several processes over the same seconds."""

    def __init__(self, **processes):
        self._processes = processes

    def run(self, seconds):
        before = {name: cpu_seconds(each) for name, each in self._processes.items()}
        begin = time.monotonic()
        time.sleep(seconds)
        length = time.monotonic() - begin
        return {name: (cpu_seconds(each) - before[name]) / length
                for name, each in self._processes.items()}


def median(values):
    ordered = sorted(values)
    return ordered[len(ordered) // 2]


def percentile(values, percent):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, len(ordered) * percent // 100)]
