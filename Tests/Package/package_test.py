#!/usr/bin/env python3
"""What `cmake --install` makes: all files are there, each is what its readers want it to be, and
the program that was installed works."""

import gzip
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

from installed_program import IDENTIFIER, examine

SIDES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
FILES = {
    "bin/kestrove",
    f"etc/xdg/autostart/{IDENTIFIER}.desktop",
    f"share/applications/{IDENTIFIER}.desktop",
    "share/doc/kestrove/README.Debian",
    "share/doc/kestrove/changelog.gz",
    "share/doc/kestrove/copyright",
    f"share/icons/hicolor/scalable/apps/{IDENTIFIER}.svg",
    "share/kestrove/privacy-policy.html",
    "share/man/man1/kestrove.1.gz",
    f"share/metainfo/{IDENTIFIER}.metainfo.xml",
} | {f"share/icons/hicolor/{side}x{side}/apps/{IDENTIFIER}.png" for side in SIDES}

CMAKE = BUILD = None  # the arguments


def said(*command):
    """What a validator says; it must succeed."""
    done = subprocess.run(command, check=False, capture_output=True, text=True, timeout=60)
    if done.returncode != 0:
        raise AssertionError(f"{command[0]}: {done.stdout}{done.stderr}")
    return done.stdout + done.stderr


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kestrove-installed-")
        cls.stage = pathlib.Path(cls.folder.name).resolve()
        said(CMAKE, "--install", BUILD, "--prefix", str(cls.stage))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def entry(self, path):
        lines = (self.stage / path).read_text(encoding="utf-8").splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def test_installs_these_files_and_no_others(self):
        found = {path.relative_to(self.stage).as_posix() for path in self.stage.rglob("*")
                 if path.is_file()}
        self.assertEqual(found, FILES)

    def test_desktop_entries(self):
        for path in (f"share/applications/{IDENTIFIER}.desktop",
                     f"etc/xdg/autostart/{IDENTIFIER}.desktop"):
            self.assertEqual(said("desktop-file-validate", str(self.stage / path)), "", path)
            entry = self.entry(path)
            program = entry["Exec"].removesuffix(" --autostart")
            self.assertTrue((self.stage / "bin" / program).is_file(), path)
            self.assertIn(f"share/icons/hicolor/scalable/apps/{entry['Icon']}.svg", FILES, path)

    def test_only_the_entry_to_start_at_login_is_off(self):
        self.assertEqual(self.entry(f"etc/xdg/autostart/{IDENTIFIER}.desktop")["Hidden"], "true")
        self.assertNotIn("Hidden", self.entry(f"share/applications/{IDENTIFIER}.desktop"))

    def test_only_the_entry_to_start_at_login_says_so_to_the_program(self):
        for path, command in ((f"share/applications/{IDENTIFIER}.desktop", "kestrove"),
                              (f"etc/xdg/autostart/{IDENTIFIER}.desktop", "kestrove --autostart")):
            self.assertEqual(self.entry(path)["Exec"], command)

    def test_metainfo(self):
        said("appstreamcli", "validate", "--no-net", "--strict",
             str(self.stage / f"share/metainfo/{IDENTIFIER}.metainfo.xml"))

    def test_icons_have_the_sizes_that_their_folders_say(self):
        for side in SIDES:
            path = self.stage / f"share/icons/hicolor/{side}x{side}/apps/{IDENTIFIER}.png"
            head = path.read_bytes()[:24]
            self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", head[16:24]), (side, side))

    def test_manual(self):
        page = self.stage / "share/man/man1/kestrove.1.gz"
        shown = subprocess.run(["man", "--warnings", "-l", str(page)], check=True, text=True,
                               capture_output=True, timeout=60, env={
                                   "PATH": "/usr/bin:/bin", "MANWIDTH": "80", "LC_ALL": "C.UTF-8"})
        self.assertEqual(shown.stderr, "")
        self.assertIn("kestrove - show one display or window", " ".join(shown.stdout.split()))

    def test_one_version_everywhere(self):
        cache = (pathlib.Path(BUILD) / "CMakeCache.txt").read_text(encoding="utf-8")
        version = next(line.split("=")[1] for line in cache.splitlines()
                       if line.startswith("CMAKE_PROJECT_VERSION:"))
        with gzip.open(self.stage / "share/doc/kestrove/changelog.gz", "rt") as changelog:
            self.assertIn(f"({version})", changelog.readline())
        metainfo = (self.stage / f"share/metainfo/{IDENTIFIER}.metainfo.xml").read_text("utf-8")
        self.assertIn(f'<release version="{version}"', metainfo)
        with gzip.open(self.stage / "share/man/man1/kestrove.1.gz", "rt") as manual:
            self.assertIn(f'"Kestrove {version}"', manual.readline())

    def test_the_installed_program_works(self):
        with tempfile.TemporaryDirectory(prefix="kestrove-logs-") as logs:
            self.assertEqual(examine(str(self.stage / "bin/kestrove"), "/", logs), [])


if __name__ == "__main__":
    CMAKE, BUILD = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
