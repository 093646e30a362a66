#!/usr/bin/env python3
"""Every rule finds what it is for, and leaves alone what it is not for."""

import unittest

import rules
from sources import Source


def found(rule, *sources):
    return [(path, line) for path, line, _ in rule([Source(*each) for each in sources])]


class RulesTest(unittest.TestCase):
    def test_layers(self):
        for path in ("Core/A.cpp", "Util/A.h", "Async/A.h", "Desktop/A.h", "Platform/X11/A.cpp"):
            for include in ("<QString>", "<QtGui/QScreen>", '"qpa/qplatform.h"'):
                self.assertEqual(found(rules.foreign_includes, (path, ["#include " + include])),
                                 [(path, 1)])
        for path in ("Core/A.cpp", "UI/A.cpp", "Platform/Qt/A.cpp"):
            self.assertEqual(found(rules.foreign_includes, (path, ["", "#include <xcb/xcb.h>"])),
                             [(path, 2)])
        for path, include in (("UI/A.cpp", "<QString>"), ("Platform/X11/A.cpp", "<xcb/xcb.h>"),
                              ("App/A.cpp", "<xcb/xcb.h>"), ("Core/A.cpp", '"Core/Queue.h"'),
                              ("Core/A.cpp", "<queue>"), ("Tests/X11/A.cpp", "<xcb/xcb.h>")):
            self.assertEqual(found(rules.foreign_includes, (path, ["#include " + include])), [])

    def test_banned_calls(self):
        everywhere = ["std::this_thread::sleep_for(1s);", "usleep(1);", "QTest::qWait(1);",
                      "std::format(\"\");", "#include <format>", "GTEST_SKIP();",
                      "TEST(A, DISABLED_b) {", "EXPECT_TRUE(true);", "thread.detach();"]
        for line in everywhere:
            for path in ("Tests/A.cpp", "Core/A.cpp", "Platform/Qt/A.cpp"):
                self.assertEqual(found(rules.banned_calls, (path, [line])), [(path, 1)], line)
        for path, line in (("Core/A.cpp", "snprintf(a, b, format);"), ("UI/A.h", "throw 1;"),
                           ("Core/A.cpp", "} catch (...) {"), ("Core/A.h", "#ifdef __linux__"),
                           ("UI/A.cpp", "steady_clock::now()"), ("UI/A.h", "QTimer timer;"),
                           ("Platform/X11/A.cpp", "xcb_grab_server(c);")):
            self.assertEqual(found(rules.banned_calls, (path, [line])), [(path, 1)], line)

    def test_calls_that_are_fine(self):
        for path, line in (("Core/A.cpp", "// never sleep_for here"),
                           ("Bench/A.cpp", "sleep_until(next);"),
                           ("Core/A.cpp", "fmt::print(x);"), ("Core/A.cpp", "reformat();"),
                           ("Tests/A.cpp", "steady_clock::now()"),
                           ("Tests/A.cpp", "xcb_grab_server(c);"),
                           ("Platform/X11/ServerGrab.h", "xcb_grab_server(c);"),
                           ("Core/A.h", "#pragma once"),
                           ("Platform/Qt/A.cpp", "QTimer timer;"), ("docs/A.md", "usleep(1);")):
            self.assertEqual(found(rules.banned_calls, (path, [line])), [], line)

    def test_sizes(self):
        self.assertEqual(found(rules.sizes, ("Core/A.cpp", [""] * 400)), [])
        self.assertEqual(found(rules.sizes, ("Core/A.cpp", [""] * 401)), [("Core/A.cpp", 401)])
        self.assertEqual(found(rules.sizes, ("run", ["x" * 100, "x" * 101])), [("run", 2)])
        self.assertEqual(found(rules.sizes, ("README.md", ["x" * 500])), [])

    def test_headers(self):
        header = ("Core/A.h", ["#pragma once"])
        own = ("Core/A.cpp", ['#include "Core/A.h"'])
        other = ("Core/B.cpp", ['#include "Core/A.h"'])
        self.assertEqual(found(rules.headers, header, own), [("Core/A.h", 1)])
        self.assertEqual(found(rules.headers, header, own, other), [])
        self.assertEqual(found(rules.headers, ("Core/A.h", []), other), [("Core/A.h", 1)])

    def test_own_header_first(self):
        header = ("Core/A.h", [])
        self.assertEqual(
            found(rules.own_header_first, header, ("Core/A.cpp", ['#include "Core/A.h"'])), [])
        self.assertEqual(
            found(rules.own_header_first, header, ("Core/A.cpp", ["", "#include <map>"])),
            [("Core/A.cpp", 2)])
        self.assertEqual(found(rules.own_header_first, ("Core/A.cpp", ["#include <map>"])), [])

    def test_words(self):
        for line in ("// TODO: later", "as Par" "t 1.3 says", "see issue #4",
                     "The specifi" "cation says", "look at spe" "c.md",
                     "cd /home/me", "(/wor" "k/x)"):
            self.assertEqual(found(rules.words, ("docs/A.md", [line])), [("docs/A.md", 1)], line)
        for line in ("the two parts", "a special case", "a network/wor" "k/home", "/usr/bin"):
            self.assertEqual(found(rules.words, ("docs/A.md", [line])), [], line)
        self.assertEqual(found(rules.words, ("Tests/Unit/A.cpp", ['("/home/me")'])), [])


if __name__ == "__main__":
    unittest.main()
