#!/usr/bin/env python3
"""Runs a Python test file for CTest: run_test.py FILE ARGUMENT...

What a test leaves out is said in a line of its own, which `./test` gathers. Status 77: all of it was
left out.
"""

import os
import runpy
import sys
import unittest

counts = {"run": 0, "left out": 0}


def start_test(result, test, plain=unittest.TestResult.startTest):
    counts["run"] += 1
    plain(result, test)


def add_skip(result, test, reason, plain=unittest.TestResult.addSkip):
    counts["left out"] += 1
    print(f"left out: {test.id().removeprefix('__main__.')}: {reason}", flush=True)
    plain(result, test, reason)


if __name__ == "__main__":
    unittest.TestResult.startTest, unittest.TestResult.addSkip = start_test, add_skip
    os.environ["LC_ALL"] = "C.UTF-8"  # what Wine says, dates and digits in it, is compared
    sys.argv = sys.argv[1:]
    sys.path.insert(0, sys.argv[0].rpartition("/")[0])  # before that of tests/ itself
    try:
        runpy.run_path(sys.argv[0], run_name="__main__")
    except SystemExit as end:
        allLeftOut = counts["run"] and counts["run"] == counts["left out"]
        sys.exit(77 if allLeftOut and not end.code else end.code)
