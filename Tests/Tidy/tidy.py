#!/usr/bin/env python3
"""usage: tidy.py ROOT. Prints what breaks a rule as PATH:LINE: MESSAGE; exit code 1 if any does."""

import sys

import rules
import sources

tree = sources.read_tree(sys.argv[1])
findings = rules.check(tree)
for path, line, message in findings:
    print(f"{path}:{line}: {message}")
print(f"{len(tree)} files, {len(findings)} findings")
sys.exit(1 if findings or not tree else 0)
