#!/usr/bin/env python3
"""Real archivers make archives; what they extract again, unzip_tool must extract, byte for byte.

unzip_peers_test.py [EMULATOR...] UNZIP_TOOL
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from datetime import datetime, timedelta, timezone
from pathlib import Path

TOOL = []


def windows_path(path):
    """Wine shows the whole system as drive Z:; on Windows a path stays as it is."""
    return str(path) if os.name == "nt" else "Z:" + str(path).replace("/", "\\")


def run(*command, **options):
    # A locale in which zip knows what characters its names are made of.
    subprocess.run(command, check=True, env={**os.environ, "LC_ALL": "C.UTF-8"},
                   stdin=subprocess.DEVNULL, timeout=100, **options)


def tree_of(folder):
    """Every file's content and modification time (to the two seconds of DOS); folders as None."""
    tree = {}
    for path in sorted(folder.rglob("*")):
        name = path.relative_to(folder).as_posix()
        tree[name] = None if path.is_dir() else (path.read_bytes(), int(path.stat().st_mtime) // 2)
    return tree


class PeersTest(unittest.TestCase):
    def setUp(self):
        self.top = Path(tempfile.mkdtemp(prefix="vesk-peers-"))
        self.addCleanup(shutil.rmtree, self.top)
        self.source = self.top / "source"
        chance = random.Random(1)
        for name, content in {
            "read me.txt": b"text " * 5000, "empty.txt": b"", "sub/one byte": b"x",
            "sub/deep/random.bin": chance.randbytes(200_000), "sub/deep/zeros.bin": bytes(3_000_000),
        }.items():
            path = self.source / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
            os.utime(path, (1_600_000_000, 1_600_000_000))
        (self.source / "empty folder").mkdir()
        self.archive = self.top / "x.zip"

    def zip(self, *options, pipe=False):
        self.archive.unlink(missing_ok=True)
        if not pipe:
            return run("zip", "-q", "-r", *options, str(self.archive), ".", cwd=self.source)
        with open(self.archive, "wb") as file:  # to a pipe: sizes follow the data
            with subprocess.Popen(["zip", "-q", "-r", *options, "-", "."], cwd=self.source,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as zipper:
                shutil.copyfileobj(zipper.stdout, file)
            self.assertEqual(zipper.returncode, 0)

    def extract(self, *password, zone=None):
        target = self.top / "ours"
        # Not through a pipe: Wine's servers would hold it open for seconds after the tool's end.
        with open(self.top / "output", "w+", encoding="cp1252") as output:
            subprocess.run([*TOOL, windows_path(self.archive), windows_path(target), *password],
                           check=True, stdin=subprocess.DEVNULL, stdout=output,
                           stderr=subprocess.DEVNULL, timeout=100, env={**os.environ, **({"TZ": zone} if zone else {})})
            output.seek(0)
            return target, output.read()

    def compare(self, *password):
        theirs = self.top / "theirs"
        shutil.rmtree(theirs, ignore_errors=True)
        options = ["-P", password[0]] if password else []
        run("unzip", "-q", *options, str(self.archive), "-d", str(theirs))
        shutil.rmtree(self.top / "ours", ignore_errors=True)
        ours, output = self.extract(*password)
        self.assertTrue(output.startswith("Zip Info"), output)
        self.assertEqual(tree_of(ours), tree_of(theirs))
        self.assertGreater(len(tree_of(ours)), 5)

    def test_deflated_stored_streamed_and_with_wide_sizes(self):
        for options, pipe in (((), False), ((), True), (("-0",), False), (("-X", "-D"), False),
                              (("-fz",), False)):
            with self.subTest(options, pipe=pipe):
                self.zip(*options, pipe=pipe)
                self.compare()

    def test_encrypted(self):
        for pipe in (False, True):
            self.zip("-P", "secret", pipe=pipe)
            self.compare("secret")
        shutil.rmtree(self.top / "ours")
        target, output = self.extract("wrong")
        self.assertIn("sub\\one byte: not extracted, wrong password", output)
        self.assertFalse((target / "sub" / "one byte").exists())

    def test_something_in_front(self):
        self.zip()
        plain = self.archive.read_bytes()
        self.archive.write_bytes(b"MZ" + bytes(5000) + plain)
        target, output = self.extract()
        self.assertEqual((target / "read me.txt").read_bytes(), b"text " * 5000, output)
        run("zip", "-q", "-A", str(self.archive))
        self.compare()

    def test_unicode_names(self):
        summer = Path("gr\u00fc\u00dfe", "\u00e9t\u00e9.txt")
        (self.source / summer).parent.mkdir()
        (self.source / summer).write_bytes(b"1")
        self.zip()
        self.compare()
        with zipfile.ZipFile(self.archive, "w") as archive:  # sets the flag, no extra field
            archive.write(self.source / summer, summer)
            archive.writestr("\u4e2d\u6587.txt", b"x")
        shutil.rmtree(self.top / "ours")
        target, output = self.extract()
        self.assertEqual((target / summer).read_bytes(), b"1")
        self.assertEqual((target / "\u4e2d\u6587.txt").read_bytes(), b"x")

    def test_what_the_systems_own_tar_writes(self):
        (self.source / "u\u0308 \u4e2d").write_bytes(b"1")  # as macOS spells an umlaut
        run("bsdtar", "-a", "-cf", str(self.archive), ".", cwd=self.source)
        self.compare()

    def test_times_by_the_stored_day(self):
        """Times of DOS are local ones: summer and winter time as on that day, not as today."""
        days = {"winter": (2021, 1, 15, 12, 30, 2), "summer": (2021, 7, 15, 12, 30, 2)}
        with zipfile.ZipFile(self.archive, "w") as archive:
            for name, day in days.items():
                archive.writestr(zipfile.ZipInfo(name, day), name)
        for zone, winter, summer in (("UTC", 0, 0), ("Europe/Berlin", 1, 2),
                                     ("America/New_York", -5, -4), ("Asia/Tokyo", 9, 9)):
            shutil.rmtree(self.top / "ours", ignore_errors=True)
            target, _ = self.extract(zone=zone)
            for name, hours in (("winter", winter), ("summer", summer)):
                with self.subTest(zone, name=name):
                    utc = datetime(*days[name], tzinfo=timezone(timedelta(hours=hours)))
                    self.assertEqual((target / name).stat().st_mtime, utc.timestamp())

    def test_a_full_disk_is_told_and_leaves_nothing(self):
        if os.geteuid() != 0:
            self.skipTest("mounting needs root")
        with zipfile.ZipFile(self.archive, "w") as archive:
            for name, size in (("small", 10), ("medium", 3 << 20), ("large", 5 << 20), ("last", 10)):
                archive.writestr(name, bytes(size))
        target = self.top / "ours"
        target.mkdir()
        try:
            run("mount", "-t", "tmpfs", "-o", "size=1m", "none", str(target),
                stderr=subprocess.DEVNULL)
        except subprocess.CalledProcessError:
            self.skipTest("mounting is not allowed")
        self.addCleanup(run, "umount", str(target))
        _, output = self.extract()
        for name in ("medium", "large"):
            self.assertIn(f"{name}: not written, disk full", output)
        self.assertEqual(sorted(path.name for path in target.iterdir()), ["last", "small"])

    def test_nothing_is_written_through_links(self):
        outside = self.top / "outside"
        target = self.top / "ours"
        outside.mkdir()
        target.mkdir()
        (outside / "file").write_bytes(b"old")
        for name, to in (("folder", ""), ("file", "file"), ("dangling", "nothing")):
            (target / name).symlink_to(outside / to)
        with zipfile.ZipFile(self.archive, "w") as archive:
            for name in ("folder/new", "folder/sub/new", "folder/file", "file", "dangling", "fine/new"):
                archive.writestr(name, b"new")
        _, output = self.extract()
        self.assertEqual(output.count("not extracted, its path leads through a link"), 3, output)
        self.assertEqual([path.name for path in outside.iterdir()], ["file"])
        self.assertEqual((outside / "file").read_bytes(), b"old")
        self.assertEqual((target / "fine" / "new").read_bytes(), b"new")


if __name__ == "__main__":
    TOOL = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
