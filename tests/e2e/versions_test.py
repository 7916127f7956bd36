#!/usr/bin/env python3
"""The delivered 32-bit programs on each Windows that Wine can be set to.

    versions_test.py FOLDER UI_TESTS WINE...
"""

import os
import sys
import unittest

UI_TESTS = sys.argv.pop(2)
# A prefix of its own: the other tests' Windows must not change under them.
PREFIX = "versions32"
os.environ["VESK_PREFIX"] = PREFIX

# pylint: disable=wrong-import-position
from program import PROGRAMS, TOP, WINE, ProgramTest, run_in_wine, run_whole, windows_path

PATHS = {"VESK_WIZARD": str(PROGRAMS.parent / "ui/veskbuilder.exe"),
         "VESK_CONSOLE": str(PROGRAMS / "veskbuild.exe")}


class Versions(ProgramTest):
    def become(self, version):
        run_whole([TOP / "tools/wine-prefix", f"{PREFIX}:{version}"], timeout=300)

    def test_a_whole_build(self):
        self.add_sample()
        source = windows_path(self.sample / "source")
        # Windows XP is the one of the other tests; Wine 8 cannot be set to Windows 11.
        for version in ("win2k", "vista", "win7", "win10"):
            with self.subTest(version):
                self.become(version)
                code, lines, errors = self.build("--yes", "--source", source)
                self.assertEqual(code, 1, errors)  # one archive of the sample is damaged
                self.assertRegex(errors, r"\Aveskbuild: diskcheck.zip: not installed, .*\n\Z")
                self.assertRegex(lines[-2], r"^Done\.\.\. \[")
                # A comma would end the pattern.
                said = run_in_wine([*WINE, UI_TESTS, "--test-case=a whole build*"], encoding="cp1252",
                                   check=True, timeout=250, env=os.environ | PATHS)
                self.assertIn("test cases:  1 |  1 passed", said.stdout)

    def test_what_is_no_nt_is_refused(self):
        self.become("win98")
        code, lines, errors = self.build("--yes")
        self.assertEqual((code, lines), (4, []))
        self.assertIn("Sorry only NT systems supported, setup cannot continue...", errors)
        self.assertFalse(self.tree.exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
