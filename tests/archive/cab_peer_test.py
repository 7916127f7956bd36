"""Cabinets made by gcab: cab_tool must see and extract what went in, byte for byte.

Usage: cab_peer_test.py COMMAND...   (how to start cab_tool). Status 77: gcab is missing.
"""
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
import unittest.mock
import xml.etree.ElementTree as ElementTree

COMMAND = []


def sample_files():
    """Name to content: empty, tiny, several data blocks that pack well and that do not."""
    noise = random.Random(7)
    return {"empty.txt": b"", "plain.txt": b"text\r\n", "sub/zeros.bin": bytes(100_000),
            "sub/deeper/noise.bin": noise.randbytes(200_000), "exact.bin": noise.randbytes(32768)}


class CabPeerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.out = self.folder / "out"
        self.files = sample_files()
        for name, content in self.files.items():
            path = self.folder / "in" / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)

    def make_cab(self, *options):
        cab = self.folder / "x.cab"
        subprocess.run(["gcab", "-c", *options, cab, *self.files], check=True, timeout=60,
                       cwd=self.folder / "in", stdout=subprocess.DEVNULL)
        return cab

    def run_tool(self, *arguments, check=True):
        windows = [str(argument).replace("/", "\\") for argument in arguments]
        return subprocess.run([*COMMAND, *windows], check=check, timeout=60, cwd="/",
                              stdout=subprocess.PIPE).stdout

    def extracted(self):
        return {path.relative_to(self.out).as_posix(): path.read_bytes()
                for path in self.out.rglob("*") if path.is_file()}

    def test_lists_and_extracts_what_went_in(self):
        for options in [(), ("-z",)]:
            with self.subTest(options=options):
                cab = self.make_cab(*options)
                listed = {file.findtext("FULLNAME").replace("\\", "/"): int(file.findtext("SIZE"))
                          for file in ElementTree.fromstring(self.run_tool(cab)).iter("FILE")}
                self.assertEqual(listed, {name: len(content) for name, content in self.files.items()})
                self.run_tool(cab, self.out)
                self.assertEqual(self.extracted(), self.files)
                shutil.rmtree(self.out)

    def test_times_follow_the_rules_of_the_stored_day(self):
        # Even seconds, as cabinets store them. The hour between Berlin and Greenwich is two in July.
        january, july = 1_704_100_002, 1_720_000_002
        for name, stamp in [("empty.txt", january), ("plain.txt", july)]:
            os.utime(self.folder / "in" / name, (stamp, stamp))
        with unittest.mock.patch.dict(os.environ, TZ="UTC"):
            cab = self.make_cab()
        with unittest.mock.patch.dict(os.environ, TZ="Europe/Berlin"):
            self.run_tool(cab, self.out)
        self.assertEqual([int((self.out / name).stat().st_mtime) + offset
                          for name, offset in [("empty.txt", 3600), ("plain.txt", 7200)]],
                         [january, july])

    def test_does_not_write_through_a_link(self):
        elsewhere = self.folder / "elsewhere"
        elsewhere.mkdir()
        self.out.mkdir()
        (self.out / "sub").symlink_to(elsewhere)
        self.run_tool(self.make_cab(), self.out, check=False)
        self.assertEqual(list(elsewhere.iterdir()), [])
        (self.out / "sub").unlink()
        beside = {name: content for name, content in self.files.items() if "/" not in name}
        self.assertEqual(self.extracted(), beside)


if __name__ == "__main__":
    COMMAND = sys.argv[1:]
    if shutil.which("gcab") is None:
        print("gcab is missing")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
