#!/usr/bin/env python3
"""veskbuild's contract: streams, questions, exit codes, and care for what is the user's."""

import os
import sys
import unittest

from program import ProgramTest, windows_path, zip_bytes


class Console(ProgramTest):
    def test_wrong_usage_is_a_sentence_and_64(self):
        self.write_small_catalogue()
        for arguments, words in (
                (["--wrong"], '"--wrong"'), (["--install"], "--install needs a value"),
                (["--enable", "Nobody"], '"Nobody"'), (["--yes", "--no"], "exclude each other"),
                (["--proxy", "x"], "HOST:PORT"), (["--install", "C:\\"], "drive"),
                (["--install", windows_path(self.program)], "this program"),
                (["--install", windows_path(self.folder)], "this program")):
            with self.subTest(arguments):
                code, lines, errors = self.run_program(*arguments)
                self.assertEqual((code, lines), (64, []))
                self.assertIn(words, errors)
                self.assertEqual(errors.count("\n"), 1)

    def test_existing_folder(self):
        self.write_small_catalogue()
        self.tree.mkdir()
        old = self.tree / "old.txt"
        old.write_text("x")
        for arguments in ([], ["--no"]):  # nobody to ask counts as No
            code, lines, _ = self.build(*arguments)
            self.assertEqual(code, 3)
            self.assertEqual(lines, ["Aborted... [{DATE}]", "click 'Finish' to exit"])
            self.assertTrue(old.exists())
        code, lines, errors = self.build("--yes")
        self.assertEqual((code, errors), (0, ""))
        self.assertFalse(old.exists())
        self.assertEqual(lines[-1], "click 'Finish' to exit")

    def test_list_and_locked_entries(self):
        self.write_small_catalogue()
        (self.program / "one.zip").write_bytes(b"damaged")
        code, lines, errors = self.run_program("--list")
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual([line.split() for line in lines[1:]], [
            "base yes yes PE Builder pebuilder3110a.zip good".split(),
            "plug-in yes no 100 One one.zip CRC differs".split(),
            "plug-in no yes 100 Locked locked.zip missing".split()])
        code, lines, errors = self.build("--enable", "Locked")
        self.assertIn('"Locked" is locked and stays unticked', errors)
        self.assertNotIn("   Locked", lines)

    def test_check(self):
        self.write_small_catalogue()
        code, lines, errors = self.run_program("--check")
        self.assertEqual((code, errors), (1, ""))
        self.assertEqual(
            [line.split(": ")[0] for line in lines], ["categories"] * 3, lines)
        crc = zip_bytes(self.program / "two.zip", {"two.inf": "x"})
        categories = [(key, key + "_x") for key in ("100", "200", "300", "500")]
        entry = ["Two", "two.zip", "100", 1, 0, "", crc]
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", zip_bytes(
            self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"}))], [entry], categories)
        self.assertEqual(self.run_program("--check"), (0, ["Nothing to mend."], ""))
        (self.program / "two.zip").write_bytes(b"damaged")
        code, lines, errors = self.run_program("--check", "--quiet")
        self.assertEqual((code, len(lines), errors), (1, 1, ""))
        self.assertTrue(lines[0].startswith('plug-in "Two": "two.zip" is present'), lines)
        catalogue = self.program / "veskbuilder.ini"
        catalogue.write_text(catalogue.read_text().replace("Lock0=0", "Lock0=maybe"))
        code, lines, errors = self.run_program("--check")
        self.assertEqual((code, errors), (1, ""))
        self.assertIn('key Lock0: "maybe"', lines[0])

    def test_unreadable_catalogues(self):
        code, lines, errors = self.build()
        self.assertEqual(code, 1)
        self.assertIn("veskbuilder.ini: there is no such file", errors)
        self.assertEqual(lines[-1], "click 'Finish' to exit")
        self.write_small_catalogue()
        catalogue = self.program / "veskbuilder.ini"
        catalogue.write_text(catalogue.read_text().replace("Enabled1=0", "Enabled1=maybe"))
        code, lines, errors = self.build("--yes")
        self.assertEqual(code, 1)
        self.assertIn('key Enabled1: "maybe"', errors)
        self.assertIn("   One", lines)
        self.assertTrue((self.tree / "pebuilder.exe").exists())

    def test_help_and_version(self):
        code, lines, _ = self.run_program("--help")
        self.assertEqual(code, 0)
        self.assertIn("--install FOLDER", "\n".join(lines))
        code, lines, _ = self.run_program("--version")
        self.assertEqual((code, len(lines)), (0, 1))
        self.assertRegex(lines[0], r"^Vesk Builder v\d+\.\d+\.0\.\d+$")

    def test_a_link_in_the_old_tree_is_never_entered(self):
        self.write_small_catalogue()
        outside = self.folder / "outside"
        outside.mkdir()
        (outside / "kept.txt").write_text("x")
        (self.tree / "sub").mkdir(parents=True)
        (self.tree / "sub/old.txt").write_text("x")
        os.symlink(outside, self.tree / "Plugin")  # where the new tree is to be made
        code, lines, _ = self.build("--yes")
        # Where the system removes the link, the tree is made; where it cannot, nothing is written.
        if (self.tree / "Plugin").is_symlink():
            self.assertEqual(code, 3)
            self.assertIn("ERROR: a link in the old folder could not be removed: {TREE}", lines)
        self.assertEqual(os.listdir(outside), ["kept.txt"])
        self.assertFalse((self.tree / "sub/old.txt").exists())

    def test_hostile_members_stay_inside(self):
        crc = zip_bytes(self.program / "pebuilder3110a.zip", {
            "../escaped.txt": "x", "a/../../escaped.txt": "x", "C:\\escaped.txt": "x",
            "/escaped.txt": "x", "good.txt": "x"})
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", crc)])
        code, _, _ = self.build()
        self.assertEqual(code, 0)
        self.assertTrue((self.tree / "good.txt").exists())
        self.assertEqual(list(self.folder.rglob("escaped.txt")), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
