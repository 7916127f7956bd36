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


def leave(reason):
    print("left out:", reason)
    sys.exit(77)


def become_user():
    """Starts this test again as the user."""
    top = pathlib.Path(__file__).resolve().parents[2]
    if not shutil.which("setpriv"):
        leave("there is no setpriv")
    subprocess.run([top / "tools/wine-prefix", "--user"], check=True, stdout=subprocess.DEVNULL)
    user = ["setpriv", f"--reuid={USER}", "--regid=nogroup", "--clear-groups"]
    if subprocess.run([*user, "test", "-r", __file__], check=False).returncode:
        leave(f'the user "{USER}" may not read the project')
    home = top / "build/wine/user/drive_c/users" / USER
    environment = dict(os.environ, HOME=str(home), VESK_PREFIX="user", USER=USER)
    environment.pop("DISPLAY", None)  # root's, with root's key
    try:
        sys.exit(subprocess.run([*user, sys.executable, __file__, *sys.argv[1:]], check=False,
                                env=environment).returncode)
    finally:
        subprocess.run([*user, "wineserver", "-k"], check=False,
                       env=dict(environment, WINEPREFIX=str(top / "build/wine/user")))


if os.getuid() == 0:
    become_user()

import unittest

ENGINE_TESTS = sys.argv.pop(2)

from archives import Member, write_cab, write_zip
from program import WINE, ProgramTest, contents_below

INF = "[PEBuilder]\r\nName=Tool\r\nEnable=1\r\n[VeskBuilder]\r\nOSType=9\r\nSP=9\r\n"
READ_ONLY = 0x21


class User(ProgramTest):
    def write(self, base, plugins=()):
        self.write_catalogue(
            [("Base", name, "", 1, 1, "", crc) for name, crc in base],
            [(name, name, "100", 1, 0, "", crc) for name, crc in plugins])

    def archive(self, name, *members):
        write = write_cab if name.endswith(".cab") else write_zip
        return name, write(self.program / name, members)

    def pe_builder(self, *members):
        return self.archive("pebuilder3110a.zip", Member("pebuilder.exe", "x"), *members)

    def test_files_that_archives_store_read_only(self):
        """They are edited, written over, and removed with an old tree, and nothing is reported."""
        over = [Member("old.dat", "new", attributes=READ_ONLY)]
        base = [self.pe_builder(Member("old.dat", "old", attributes=READ_ONLY),
                                Member("input.inf", "[input]\r\nverify=0\r\n", attributes=READ_ONLY),
                                Member("plugin/a43/x", "x", attributes=READ_ONLY)),
                self.archive("over.zip", *over), self.archive("over.cab", *over)]
        plugins = [self.archive(name, Member("x.inf", INF, attributes=READ_ONLY))
                   for name in ("one.zip", "two.cab")]
        self.write(base, plugins)
        for arguments in ([], ["--yes"]):
            code, _, errors = self.build(*arguments)
            self.assertEqual((code, errors), (0, ""))
            files = contents_below(self.tree)
            self.assertEqual(files["old.dat"], b"new")
            self.assertIn(b"verify=1", files["input.inf"])
            self.assertNotIn("Plugin/a43/x", files)
            for name in ("one", "two"):
                inf = files[f"Plugin/100_tools/{name}/x.inf"]
                self.assertIn(b"Name=100 Tool", inf)
                self.assertIn(b"Enable=0", inf)

    def test_what_may_not_be_read(self):
        self.write([self.pe_builder()], [self.archive("one.zip", Member("x.inf", INF))])
        (self.program / "one.zip").chmod(0)
        code, lines, errors = self.build()
        self.assertEqual(code, 1)
        self.assertIn("Warning: one.zip CRC failed. !!!", lines)
        self.assertRegex(errors, r"^veskbuild: one.zip: not installed, .*access denied")
        (self.program / "veskbuilder.ini").chmod(0)
        code, lines, errors = self.build("--yes")
        self.assertEqual((code, lines), (64, []))
        self.assertIn("access denied", errors)
        self.assertTrue((self.tree / "pebuilder.exe").exists())

    def test_what_may_not_be_written(self):
        self.write([self.pe_builder()])
        self.tree = self.folder / "locked/tree"
        self.tree.parent.mkdir()
        self.tree.parent.chmod(0o500)
        self.program.chmod(0o500)
        self.addCleanup(self.program.chmod, 0o700)
        code, _, errors = self.build()
        self.assertNotEqual(code, 0)
        self.assertIn("access denied", errors)
        self.assertIn("veskbuider.log: not saved, access denied", errors)
        self.assertFalse(self.tree.exists())

    def test_the_engine(self):
        """The tests of files once more. Wine keeps "hidden" of a read-only file for root only."""
        result = subprocess.run(
            [*WINE, ENGINE_TESTS, "--test-case-exclude=*stored attributes and times*",
             "--source-file=*base*modFile*,*archive*,*build*modFileOperations*"],
            capture_output=True, text=True, timeout=200, check=False)
        self.assertEqual(result.returncode, 0, result.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
