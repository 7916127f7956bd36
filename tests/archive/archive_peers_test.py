#!/usr/bin/env python3
"""Real archivers make archives; what they extract again, archive_tool must extract, byte for byte.

archive_peers_test.py [EMULATOR...] ARCHIVE_TOOL
"""
import os
import random
import shutil
import subprocess
import sys
import unittest
import zipfile
from pathlib import Path

from fixtures import fresh_folder, run_in_wine, run_whole, windows_path

TOOL = []
ENV = {**os.environ, "LC_ALL": "C.UTF-8"}  # in which zip knows what characters names are made of


def run(*command, **options):
    run_whole(command, env=ENV, stdin=subprocess.DEVNULL, timeout=100, **options)


def tree_of(folder):
    """Every file's content and modification time (to the two seconds of DOS); folders as None."""
    tree = {}
    for path in sorted(folder.rglob("*")):
        name = path.relative_to(folder).as_posix()
        tree[name] = None if path.is_dir() else (path.read_bytes(), int(path.stat().st_mtime) // 2)
    return tree


class PeersTest(unittest.TestCase):
    def setUp(self):
        self.top = fresh_folder(self, "vesk-peers-")
        self.source, self.ours = self.top / "source", self.top / "ours"
        chance = random.Random(1)
        for name, content in {
            "read me.txt": b"text " * 5000, "empty.txt": b"", "sub/one byte": b"x",
            "sub/deep/random.bin": chance.randbytes(200_000), "exact.bin": chance.randbytes(32768),
            "sub/deep/zeros.bin": bytes(3_000_000),
        }.items():
            path = self.source / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
            os.utime(path, (1_600_000_000, 1_600_000_000))
        self.archive = self.top / "x.zip"

    def zip(self, *options, pipe=False):
        """Through a pipe the sizes follow the data."""
        self.archive.unlink(missing_ok=True)
        if not pipe:
            return run("zip", "-q", "-r", *options, self.archive, ".", cwd=self.source)
        zipped = subprocess.run(["zip", "-q", "-r", *options, "-", "."], check=True, cwd=self.source,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        self.archive.write_bytes(zipped.stdout)

    def make_cab(self, *options):
        if shutil.which("gcab") is None:
            self.skipTest("gcab is missing")
        self.archive = self.top / "x.cab"
        files = [path.relative_to(self.source) for path in self.source.rglob("*") if path.is_file()]
        run("gcab", "-c", *options, self.archive, *files, cwd=self.source)

    def run_tool(self, *password):
        """Returns what was told."""
        return run_in_wine([*TOOL, windows_path(self.archive), windows_path(self.ours), *password],
                           check=True, encoding="cp1252", env=ENV).stdout

    def extract(self, *password):
        """Into a new folder."""
        shutil.rmtree(self.ours, ignore_errors=True)
        return self.run_tool(*password)

    def compare(self, *password):
        theirs = self.top / "theirs"
        shutil.rmtree(theirs, ignore_errors=True)
        options = ["-P", password[0]] if password else []
        run("unzip", "-q", *options, self.archive, "-d", theirs)
        self.assertEqual(self.extract(*password), "")
        self.assertEqual(tree_of(self.ours), tree_of(theirs))
        self.assertGreater(len(tree_of(self.ours)), 5)

    def test_deflated_stored_streamed_and_with_wide_sizes(self):
        (self.source / "empty folder").mkdir()
        for options, pipe in (((), False), ((), True), (("-0",), False), (("-X", "-D"), False),
                              (("-fz",), False)):
            with self.subTest(options, pipe=pipe):
                self.zip(*options, pipe=pipe)
                self.compare()

    def test_encrypted(self):
        for pipe in (False, True):
            self.zip("-P", "secret", pipe=pipe)
            self.compare("secret")
        self.assertIn("sub\\one byte: not extracted, wrong password", self.extract("wrong"))
        self.assertFalse((self.ours / "sub/one byte").exists())

    def test_unicode_names(self):
        summer = Path("gr\u00fc\u00dfe", "\u00e9t\u00e9.txt")
        (self.source / summer).parent.mkdir()
        (self.source / summer).write_bytes(b"1")
        (self.source / "u\u0308 \u4e2d").write_bytes(b"1")  # as macOS spells an umlaut
        self.zip()
        self.compare()
        run("bsdtar", "-a", "-cf", self.archive, ".", cwd=self.source)
        self.compare()
        with zipfile.ZipFile(self.archive, "w") as archive:  # sets the flag, no extra field
            archive.write(self.source / summer, summer)
        self.assertEqual(self.extract(), "")
        self.assertEqual((self.ours / summer).read_bytes(), b"1")

    def test_cabinets(self):
        content = {name: told[0] for name, told in tree_of(self.source).items() if told}
        for options in ((), ("-z",)):
            with self.subTest(options):
                self.make_cab(*options)
                self.assertEqual(self.extract(), "")
                self.assertEqual({name: told[0] for name, told in tree_of(self.ours).items()
                                  if told}, content)

    def test_nothing_is_written_through_links(self):
        outside = self.top / "outside"
        inside = ("folder/new", "folder/sub/new", "folder/file", "file", "dangling", "fine/new")
        shutil.rmtree(self.source)
        for name in inside:
            (self.source / name).parent.mkdir(parents=True, exist_ok=True)
            (self.source / name).write_bytes(b"new")
        for make in (self.zip, self.make_cab):
            with self.subTest(make.__name__):
                make("-D") if make == self.zip else make()
                for folder in (outside, self.ours):
                    shutil.rmtree(folder, ignore_errors=True)
                    folder.mkdir()
                (outside / "file").write_bytes(b"old")
                for name, to in (("folder", ""), ("file", "file"), ("dangling", "nothing")):
                    (self.ours / name).symlink_to(outside / to)
                told = self.run_tool()
                self.assertEqual(told.count("not extracted, its path leads through a link"), 3, told)
                self.assertEqual([path.name for path in outside.iterdir()], ["file"])
                self.assertEqual((outside / "file").read_bytes(), b"old")
                self.assertEqual((self.ours / "fine/new").read_bytes(), b"new")


if __name__ == "__main__":
    TOOL = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
