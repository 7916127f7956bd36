#!/usr/bin/env python3
"""What only an ordinary user sees: as root, Wine writes over read-only files. Started by root, this
test goes on as "nobody", in a Wine prefix of its own.

    user_test.py FOLDER TESTS COMMAND...      the programs, engine_tests.exe, and how to start both
"""

import os
import pathlib
import shutil
import subprocess
import sys

USER = "nobody"
PREFIX = "user32" if sys.argv[3].endswith("wine32") else "user"


def leave(reason):
    print("left out:", reason)
    sys.exit(77)


def become_user():
    """Starts this test again as the user."""
    top = pathlib.Path(__file__).resolve().parents[2]
    if not shutil.which("setpriv"):
        leave("there is no setpriv")
    subprocess.run([top / "tools/wine-prefix", "--user", PREFIX], check=True, stdout=subprocess.DEVNULL)
    user = ["setpriv", f"--reuid={USER}", "--regid=nogroup", "--clear-groups"]
    if subprocess.run([*user, sys.executable, "-c", f"open({__file__!r})"], check=False,
                      capture_output=True).returncode:
        leave(f'the user "{USER}" may not read the project or run {sys.executable}')
    prefix = top / "build/wine" / PREFIX
    environment = dict(os.environ, HOME=str(prefix / "drive_c/users" / USER), VESK_PREFIX=PREFIX, USER=USER)
    environment.pop("DISPLAY", None)  # root's, with root's key
    try:
        sys.exit(subprocess.run([*user, sys.executable, __file__, *sys.argv[1:]], check=False,
                                env=environment).returncode)
    finally:
        subprocess.run([*user, "wineserver", "-k"], check=False,
                       env=dict(environment, WINEPREFIX=str(prefix)))


if os.getuid() == 0:
    become_user()

import unittest

ENGINE_TESTS = sys.argv.pop(2)

from program import INF, WINE, Member, SaidTest, contents_below, run_in_wine

OTHER_SYSTEM = INF + "[VeskBuilder]\r\nOSType=9\r\nSP=9\r\n"
READ_ONLY = 0x21


class User(SaidTest):
    def test_files_that_archives_store_read_only(self):
        """They are edited, written over, and removed with an old tree, and nothing is reported."""
        read_only = lambda name, text: Member(name, text, attributes=READ_ONLY)
        over = read_only("old.dat", "new")
        self.write_entries(
            [self.pe_builder(read_only("old.dat", "old"), read_only("plugin/a43/x", "x"),
                             read_only("input.inf", "[input]\r\nverify=0\r\n")),
             *((name, 1, 1, *self.archive(name, over)) for name in ("over.zip", "over.cab"))],
            [("100", name, 1, 0, *self.archive(name, read_only("x.inf", OTHER_SYSTEM)))
             for name in ("one.zip", "two.cab")])
        for arguments in ([], ["--yes"]):
            self.build(*arguments)
            files = contents_below(self.tree)
            self.assertEqual(files["old.dat"], b"new")
            self.assertIn(b"verify=1", files["input.inf"])
            self.assertNotIn("Plugin/a43/x", files)
            for name in ("one", "two"):
                inf = files[f"Plugin/100_tools/{name}/x.inf"]
                self.assertIn(b"Name=100 Tool", inf)
                self.assertIn(b"Enable=0", inf)

    def test_what_may_not_be_read(self):
        self.write_entries([self.pe_builder()], [
            ("100", "One", 1, 0, *self.archive("one.zip", Member("x.inf", INF)))])
        (self.program / "one.zip").chmod(0)
        self.build()
        (self.program / "veskbuilder.ini").chmod(0)
        self.build("--yes")
        self.assertTrue((self.tree / "pebuilder.exe").exists())

    def test_what_may_not_be_written(self):
        self.write_entries([self.pe_builder()])
        self.tree = self.folder / "locked/tree"
        self.tree.parent.mkdir()
        self.tree.parent.chmod(0o500)
        self.program.chmod(0o500)
        self.addCleanup(self.program.chmod, 0o700)
        self.build()
        self.assertFalse(self.tree.exists())

    def test_the_engine(self):
        """The tests of files once more. Wine keeps "hidden" of a read-only file for root only."""
        result = run_in_wine(
            [*WINE, ENGINE_TESTS, "--test-case-exclude=*times and attributes are restored*",
             "--source-file=*base*modFile*,*archive*,*build*modFileOperations*"],
            encoding="cp1252", timeout=200, check=True)
        self.assertRegex(result.stdout, "test cases: +[1-9]")


if __name__ == "__main__":
    unittest.main(argv=["user_test.py"])
