"""What compilers and formatters cannot see. Each rule yields (path, line number, message)."""

import re

from sources import without_comment

MAXIMUM_LINES = 400
MAXIMUM_COLUMNS = 100

QT = re.compile(r"Q[A-Z]\w*|Qt\w+/.*|q[a-z]+\.h|qpa/.*")
X11 = re.compile(r"(xcb|X11)/.*")
# Folder, what it may not include, why. The folders among each other are held apart by the build:
# a library sees only the folders that it names.
FOREIGN_INCLUDES = [
    (("Async", "Desktop", "Util", "Core"), QT, "decisions know no toolkit"),
    (("Async", "Desktop", "Util", "Core", "UI"), X11, "only Platform/X11 and App know X11"),
    (("Platform/Simulated", "Platform/Linux", "Platform/X11"), QT, "Qt belongs to Platform/Qt"),
    (("Platform/Simulated", "Platform/Linux", "Platform/Qt"), X11, "X11 belongs to Platform/X11"),
]

PORTABLE = ("Async", "Desktop", "Util", "Core")

PRODUCT_AND_TESTS = ("Async", "Desktop", "Util", "Core", "UI", "App", "Platform", "Tests")

# Folders (none: all code), pattern, what to do instead.
BANNED = [
    # A scene of Bench keeps a beat, which is no waiting.
    (PRODUCT_AND_TESTS,
     r"\bsleep_(for|until)\b|\busleep\b|\bnanosleep\b|\bqWait\b|\bQThread::\w*sleep\b",
     "wait for a condition"),
    ((), r"\bstd::v?format\b|#\s*include\s*<format>", "fmt: g++ 12 has no std::format"),
    ((), r"\bGTEST_SKIP\b|\bDISABLED_|(EXPECT|ASSERT)_TRUE\(true\)", "a test that can fail"),
    ((), r"\.detach\(\)", "nothing outlives its owner"),
    (("Async", "Desktop", "Util", "Core", "UI", "App", "Platform"), r"\bthrow\b|\bcatch\s*\(",
     "failures are values"),
    (("Async", "Desktop", "Util", "Core", "UI", "App", "Platform"),
     r"\bxcb_grab_server\b|\bXGrabServer\b", "it stalls every other program"),
    (("Core", "Util", "UI"), r"\b\w*printf\s*\(|\bfmt::runtime\b",
     "a format known to the compiler"),
    (("Async", "Desktop", "Util", "Core", "UI"), r"\b\w+_clock::now\b|\bQTimer\b|\bQDateTime\b",
     "MainLoop is the only clock"),
    (PORTABLE, r"^\s*#\s*(if|ifdef|ifndef|elif)\b", "the seam holds the platforms apart"),
]

# The one place where each of them is right; what is there says why.
ALLOWED = {("Platform/X11/ServerGrab.h", "xcb_grab_server")}

UNFINISHED = re.compile(r"\b(TO" r"DO|FIX" r"ME|XX" r"X|HA" r"CK)\b|\bnot " r"implemented\b")
# Every text must say what it means by itself, on every machine.
OUTSIDE_REFERENCES = re.compile(
    r"\bParts?\s+\d+\.\d|\b[Tt]he\s+spec(ification)?\b|\bspec(ification)?\.md\b"
    r"|\b[Ii]ssue\s+#?\d")
# A path of one machine; tests make up machines of their own.
MACHINE_PATHS = re.compile(r"(^|[\s\"'(])/(home|work|farm|Users)/\w")


def foreign_includes(sources):
    for source in sources:
        for number, name in source.includes() if source.is_code else ():
            for folders, pattern, reason in FOREIGN_INCLUDES:
                if source.below(*folders) and pattern.fullmatch(name):
                    yield source.path, number, f"includes {name}: {reason}"


def banned_calls(sources):
    for source in sources:
        if not source.is_code:
            continue
        for number, line in enumerate(source.lines, 1):
            for folders, pattern, instead in BANNED:
                if folders and not source.below(*folders):
                    continue
                match = re.search(pattern, without_comment(line))
                if match and (source.path, match.group(0)) not in ALLOWED:
                    yield source.path, number, f"{match.group(0).strip()}: {instead}"


def sizes(sources):
    for source in sources:
        if source.suffix == ".md":
            continue
        if source.is_code and len(source.lines) > MAXIMUM_LINES:
            yield source.path, len(source.lines), "too long: is there a second thing in there?"
        for number, line in enumerate(source.lines, 1):
            if len(line) > MAXIMUM_COLUMNS:
                yield source.path, number, f"{len(line)} columns"


def headers(sources):
    included = {}
    for source in sources:
        for _, name in source.includes() if source.is_code else ():
            included.setdefault(name, set()).add(source.path)
    for source in sources:
        if source.suffix == ".h":
            own = source.path[: -len(".h")] + ".cpp"
            if not included.get(source.path, set()) - {own}:
                yield source.path, 1, "nobody includes this header"
            if "#pragma once" not in source.lines:
                yield source.path, 1, "no #pragma once"


def own_header_first(sources):
    paths = {source.path for source in sources}
    for source in sources:
        own = source.path[: -len(".cpp")] + ".h"
        if source.suffix == ".cpp" and own in paths:
            first = next(source.includes(), (1, "nothing"))
            if first[1] != own:
                yield source.path, first[0], f"includes {first[1]} before its own header"


def words(sources):
    for source in sources:
        if source.path.startswith("Tests/Tidy/"):
            continue  # the patterns and their samples
        for number, line in enumerate(source.lines, 1):
            for pattern, reason in ((UNFINISHED, "unfinished"),
                                    (OUTSIDE_REFERENCES, "a reader cannot follow this"),
                                    (MACHINE_PATHS, "not on other machines")):
                if pattern is MACHINE_PATHS and source.path.startswith("Tests/"):
                    continue
                match = pattern.search(line)
                if match:
                    yield source.path, number, f"{match.group(0).strip()}: {reason}"


ALL = [foreign_includes, banned_calls, sizes, headers, own_header_first, words]


def check(sources):
    return [finding for rule in ALL for finding in rule(sources)]
