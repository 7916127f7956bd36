"""Cabinets made by gcab: cab_tool must see and extract what went in, byte for byte.

Usage: cab_peer_test.py COMMAND...   (how to start cab_tool). Status 77: gcab is missing.
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

COMMAND = []


def sample_files():
    """Name to content: empty, tiny, several data blocks that pack well and that do not."""
    noise = random.Random(7)
    return {
        "empty.txt": b"",
        "plain.txt": b"text\r\n",
        "sub/zeros.bin": bytes(100_000),
        "sub/deeper/noise.bin": noise.randbytes(200_000),
        "exact.bin": noise.randbytes(32768),
    }


class CabPeerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = os.path.join(self.folder, "out")
        self.files = sample_files()
        for name, content in self.files.items():
            path = os.path.join(self.folder, "in", name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(content)

    def make_cab(self, *options):
        cab = os.path.join(self.folder, "x.cab")
        subprocess.run(["gcab", "-c", *options, cab, *self.files], check=True, timeout=60,
                       cwd=os.path.join(self.folder, "in"), stdout=subprocess.DEVNULL)
        return cab

    def run_tool(self, *arguments):
        windows = [argument.replace("/", "\\") for argument in arguments]
        return subprocess.run([*COMMAND, *windows], check=True, timeout=60, cwd="/",
                              stdout=subprocess.PIPE).stdout

    def extracted(self):
        found = {}
        for top, _, names in os.walk(self.out):
            for name in names:
                path = os.path.join(top, name)
                with open(path, "rb") as file:
                    found[os.path.relpath(path, self.out).replace(os.sep, "/")] = file.read()
        return found

    def test_extracts_what_went_in(self):
        for options in [(), ("-z",)]:
            with self.subTest(options=options):
                self.run_tool(self.make_cab(*options), self.out)
                self.assertEqual(self.extracted(), self.files)
                shutil.rmtree(self.out)

    def test_lists_what_went_in(self):
        files = ElementTree.fromstring(self.run_tool(self.make_cab("-z")))
        listed = {file.findtext("FULLNAME").replace("\\", "/"): int(file.findtext("SIZE"))
                  for file in files.iter("FILE")}
        self.assertEqual(listed, {name: len(content) for name, content in self.files.items()})
        self.assertEqual(files.find("CABFILE").get("FILECOUNT"), str(len(self.files)))

    def test_does_not_write_through_a_link(self):
        elsewhere = os.path.join(self.folder, "elsewhere")
        os.mkdir(elsewhere)
        os.mkdir(self.out)
        os.symlink(elsewhere, os.path.join(self.out, "sub"), target_is_directory=True)
        self.run_tool(self.make_cab(), self.out)
        self.assertEqual(os.listdir(elsewhere), [])
        beside = {name: content for name, content in self.files.items() if "/" not in name}
        self.assertEqual(self.extracted(), beside)


if __name__ == "__main__":
    COMMAND = sys.argv[1:]
    if shutil.which("gcab") is None:
        print("gcab is missing")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
