#!/usr/bin/env python3
"""No spelling gets a folder emptied that must stay.

Everything happens on a drive of the test's own, a link in the Wine prefix to a temporary folder, and
the guarded places lie on it too: where a guard fails, that folder is all that is lost.
"""

import os
import pathlib
import struct
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))
from program import TOP, fresh_folder, link_drive, run_in_wine  # noqa: E402

TOOL, *WINE = sys.argv[1:]

# Its real path has more letters than the usual limit.
DEEP = "Windows" + "/a folder with a name of some forty letters" * 8
KEPT = ["program/veskbuild.exe", "cd/I386/LAYOUT.INF", "Windows/system32/kernel.dll",
        "Windows/win.ini", "Program Files/Tool/tool.exe", "users/me/Documents/letter.txt",
        "users/other/letter.txt", "users/Ж/Letters/letter.txt", "work/sub/notes.txt", "Recycled/hidden/file", "file.txt",
        DEEP + "/file"]

# {D} is the drive that all lies on; {S} one that leads to its Windows, {U} one to its users, {A} one
# to the folder that {D} is in, {F} one to a user's folder whose name the code page lacks. The current folder is {D}\work\sub. Words of the reason stand above those
# that are refused for it, behind "=>".
BLOCKS = (TOP / "tests/data/refused_folders.txt").read_text("utf-8").split("=> ")[1:]
REFUSED = [(spelling, words) for words, *spellings in (block.rstrip("\n").split("\n") for block in BLOCKS)
           for spelling in spellings] + [
    ("", "No installation folder is given"), (" ", "No installation folder is given"),
    ("\t", "a control character"), ("x" * 300, "path is too long"),
    ("{D}\\" + "long\\" * 60, "path is too long"), ("{D}\\" + "a" * 198, "it has 201 characters")]

EMPTIED = {r"{D}\tree": r"{D}\tree", "{D}/tree/": r"{D}\tree", r" {D}\tree\\ ": r"{D}\tree",
           r"{D}\work\..\tree": r"{D}\tree", "tree": r"{D}\work\sub\tree",
           r"..\tree": r"{D}\work\tree", r"\new\deep\tree": r"{D}\new\deep\tree",
           r"{D}\Program Files\VeskLive": r"{D}\Program Files\VeskLive",
           r"{D}\users\me\Documents\tree": r"{D}\users\me\Documents\tree",
           r"{D}\program\tree": r"{D}\program\tree", r"{D}\Windows2": r"{D}\Windows2",
           "{D}\\" + "a" * 197: "{D}\\" + "a" * 197, "{D}\\\xe4 tree": "{D}\\\xe4 tree"}


class InstallFolder(unittest.TestCase):
    def setUp(self):
        top = fresh_folder(self, "vesk-drive-")
        self.folder = top / "inner"
        self.above = link_drive(self, top)
        for name in KEPT:
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / name).write_text("x")
        os.symlink("Windows", self.folder / "junction")
        os.symlink("Windows/system32", self.folder / "deep")
        os.symlink(DEEP, self.folder / "deeper")
        self.drive = link_drive(self, self.folder)
        self.windows = link_drive(self, self.folder / "Windows")
        self.users = link_drive(self, self.folder / "users")
        self.foreign = link_drive(self, self.folder / "users/Ж")
        self.assertEqual(self.outcomes(["hide {D}\\Recycled"])[0][1], "hidden")

    def fill(self, text):
        return text.format(D=self.drive, d=self.drive.lower(), L=self.drive[0], S=self.windows,
                           U=self.users, A=self.above, F=self.foreign)

    def outcomes(self, spellings):
        text = "".join(self.fill(spelling) + "\r\n" for spelling in spellings)
        result = run_in_wine([*WINE, TOOL, self.drive], input=text.encode("cp1252"), encoding="cp1252",
                             cwd=self.folder / "work/sub")
        lines = result.stdout.splitlines()
        self.assertEqual(len(lines), len(spellings), result.stderr)
        return list(zip(spellings, lines))

    def assert_all_there(self):
        self.assertEqual([name for name in KEPT if not (self.folder / name).exists()], [])

    def test_refused(self):
        (self.folder / "tree").mkdir()
        (self.folder / "tree/kept.txt").write_text("x")
        outcomes = self.outcomes([spelling for spelling, _ in REFUSED])
        for (_, words), (spelling, outcome) in zip(REFUSED, outcomes):
            with self.subTest(spelling):
                self.assertTrue(outcome.startswith("refused\t") and words in outcome, outcome)
        self.assertGreater(len(REFUSED), 100)
        self.assert_all_there()
        self.assertTrue((self.folder / "tree/kept.txt").exists())

    def test_links_in_the_tree_are_not_followed(self):
        (self.folder / "tree").mkdir()
        os.symlink(self.folder / "work", self.folder / "tree/link")
        os.symlink(self.folder / "file.txt", self.folder / "tree/link.txt")
        through = "its path leads through a link"
        wanted = {"new.txt": "written", "link": through, "link\\new.txt": through,
                  "link.txt": "there is a link in its place",
                  "..\\new.txt": "the folder name in the catalogue is not one inside the build tree"}
        outcomes = self.outcomes(["into {D}\\tree\\" + name for name in wanted])
        self.assertEqual([outcome for _, outcome in outcomes], [*wanted.values()])

    def test_a_cd(self):
        for name, kind in (("cd.bin", 5), ("disk.bin", 3)):  # as Wine's library has them
            (self.folder / name).write_bytes(struct.pack(
                "<4IQ3H", 0, kind, 0, 0, 0, ord(self.windows[0]), 30, 0) + bytes(self.folder) + b"\0")
        self.assertEqual([outcome for _, outcome in self.outcomes(
            ["drive {D}\\cd.bin", "{S}\\tree", "drive {D}\\disk.bin", "{S}\\tree"])], [
                "1", self.fill("refused\tThe installation folder cannot be on a CD: {S}\\tree"),
                "1", self.fill("emptied\t{S}\\tree")])

    def test_foreign_files_among_programs(self):
        (_, outcome), = self.outcomes(["{D}\\Program Files\\Tool"])
        self.assertEqual(outcome, "kept\tit holds 1 file that no build made; "
                                  "among installed programs only a folder that a build made is emptied")
        self.assert_all_there()

    def test_emptied(self):
        places = {}
        for spelling, path in EMPTIED.items():
            places[spelling] = self.folder / self.fill(path)[3:].replace("\\", "/")
            (places[spelling] / "a/b.c").mkdir(parents=True, exist_ok=True)
            for name in ("a/b.c/old.txt", "pebuilder.exe"):
                (places[spelling] / name).write_text("x")
            if not (places[spelling] / "link").is_symlink():
                os.symlink(self.folder / "work", places[spelling] / "link")
        for spelling, outcome in self.outcomes(list(EMPTIED)):
            self.assertEqual(outcome, "emptied\t" + self.fill(EMPTIED[spelling]))
            place = places[spelling]
            # Wine cannot remove a link to a folder that holds something; Windows can.
            self.assertIn(sorted(os.listdir(place)) if place.exists() else [], ([], ["link"]))
        self.assert_all_there()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
