#!/usr/bin/env python3
"""veskbuild's contract: streams, questions, exit codes, and care for what is the user's."""

import os
import shutil
import socket
import subprocess
import sys
import unittest

from program import (WINE, ProgramTest, contents_below, link_drive, windows_path,
                     zip_bytes)


class Console(ProgramTest):
    def test_wrong_usage_is_a_sentence_and_64(self):
        self.write_small_catalogue()
        for arguments, words in (
                (["--wrong"], '"--wrong"'), (["--install"], "--install needs a value"),
                (["--enable", "Nobody"], '"Nobody"'), (["--list", "--disable", "No"], '"No"'), (["--yes", "--no"], "exclude each other"),
                (["--install", "--yes"], 'not "--yes"'), (["--timeout", "-1"], "seconds"),
                (["--timeout", "soon"], "seconds"), (["--install", "x" * 1600], "too long"),
                (["--install", "Q:\\x"], "no such drive"), (["--install", "C:\\a|b"], "name"),
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
        (self.tree / "input.inf").write_text("of an earlier build")
        for arguments in ([], ["--no"]):  # nobody to ask counts as No
            code, lines, errors = self.build(*arguments)
            self.assertEqual(code, 3)
            self.assertEqual(lines, ["Aborted... [{DATE}]", "click 'Finish' to exit"])
            self.assertIn("not built, the question whether to continue was answered No", errors)
            self.assertTrue(old.exists())
        code, lines, errors = self.build("--yes")
        self.assertEqual((code, errors), (0, ""))
        self.assertFalse(old.exists())
        self.assertEqual(lines[-1], "click 'Finish' to exit")

    def test_a_folder_that_no_build_made(self):
        self.write_small_catalogue()
        (self.tree / "sub").mkdir(parents=True)
        for name in ("letter.txt", "sub/photo.jpg"):
            (self.tree / name).write_text("x")
        for arguments in (["--yes"], [], ["--yes", "--quiet"]):
            code, lines, errors = self.build(*arguments)
            self.assertEqual((code, lines), (64, []))
            self.assertIn("it holds 2 files that no build made; --replace-foreign", errors)
            self.assertEqual(sorted(contents_below(self.tree)), ["letter.txt", "sub/photo.jpg"])
        code, _, errors = self.build("--no", "--replace-foreign")
        self.assertEqual(code, 3)
        self.assertTrue((self.tree / "letter.txt").exists())
        code, _, errors = self.build("--yes", "--replace-foreign")
        self.assertEqual((code, errors), (0, ""))
        self.assertFalse((self.tree / "sub").exists())

    def test_no_spelling_empties_a_drive(self):
        """From a folder of a drive of the test's own, so that a failure costs nothing else."""
        self.write_small_catalogue()
        work = self.folder / "work"
        work.mkdir()
        (work / "notes.txt").write_text("x")
        letter = link_drive(self, self.folder)
        kept = contents_below(self.folder)
        for spelling in ("{D}", "{D}\\", "{D}/", "{D}\\.", "{D}\\\\", "{D}\\ ", "\\", "/", "..",
                         "..\\", "{d}\\work\\..", "{D}\\nothing\\..", "{D}.", "{D}..", "\\\\?\\{D}\\",
                         "\\\\localhost\\{L}$", "{D}\\program", "..\\PROGRAM.", "{D}work"):
            text = spelling.format(D=letter, d=letter.lower(), L=letter[0])
            with self.subTest(text):
                code, lines, errors = self.run_program(
                    "--install", text, "--yes", "--replace-foreign", cwd=work)
                self.assertEqual((code, lines), (64, []), errors)
                self.assertEqual(contents_below(self.folder), kept)

    def test_a_folder_below_one_that_is_missing(self):
        self.write_small_catalogue()
        self.tree = self.folder / "new/deep/tree"
        self.assertEqual(self.build()[0::2], (0, ""))
        self.assertTrue((self.tree / "Plugin/100_tools/100_tools.inf").exists())

    def test_list_and_locked_entries(self):
        self.write_small_catalogue()
        (self.program / "one.zip").write_bytes(b"damaged")
        code, lines, errors = self.run_program("--list")
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual([line.split() for line in lines[1:]], [
            "base yes yes PE Builder pebuilder3110a.zip good".split(),
            "plug-in yes no 100 One one.zip CRC differs".split(),
            "plug-in no yes 100 Locked locked.zip missing".split()])
        code, lines, errors = self.run_program("--list", "--disable", "One", "--enable", "locked")
        self.assertEqual((code, lines[2].split()[:2]), (1, ["plug-in", "no"]))
        self.assertIn("stays unticked", errors)
        code, lines, errors = self.build("--enable", "Locked")
        self.assertIn('"Locked" is locked and stays unticked', errors)
        self.assertNotIn("   Locked", lines)
        # A tick that has no effect is not taken in silence.
        _, lines, errors = self.build("--yes", "--disable", "PE Builder")
        self.assertIn('"PE Builder" is a base component: the build installs it', errors)
        _, lines, errors = self.build("--yes", "--disable", "One")
        self.assertNotIn("base component", errors)

    def test_check(self):
        self.write_small_catalogue()
        code, lines, errors = self.run_program("--check")
        self.assertEqual((code, errors), (1, ""))
        self.assertEqual([line.split(": ")[0] for line in lines],
                         ["categories"] * 3 + ['plug-in "Locked"'], lines)
        self.assertIn("there is no address to download it from", lines[-1])
        crc = zip_bytes(self.program / "two.zip", {"two.inf": "x"})
        categories = [(key, key + "_x") for key in ("100", "200", "300", "500")]
        entry = ["Two", "two.zip", "100", 1, 0, "", crc]
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", zip_bytes(
            self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"}))], [entry], categories)
        code, lines, errors = self.run_program("--check")
        self.assertEqual((code, len(lines), errors), (0, 1, ""))
        self.assertIn("2 archives are present, with the right CRC-32", lines[0])
        (self.program / "two.zip").write_bytes(b"damaged")
        code, lines, errors = self.run_program("--check", "--quiet")
        self.assertEqual((code, len(lines), errors), (1, 2, ""), lines)
        self.assertTrue(lines[0].startswith(
            f'plug-in "Two": "two.zip": CRC-32 "{crc}" expected, '), lines)
        catalogue = self.program / "veskbuilder.ini"
        catalogue.write_text(catalogue.read_text().replace("Lock0=0", "Lock0=maybe"))
        code, lines, errors = self.run_program("--check")
        self.assertEqual((code, errors), (1, ""))
        self.assertIn('key Lock0: "maybe"', lines[0])

    def test_unreadable_catalogues(self):
        self.tree.mkdir()
        kept = self.tree / "kept.txt"
        kept.write_text("x")

        def refused(words, *arguments):
            code, lines, errors = self.build("--yes", "--replace-foreign", *arguments)
            self.assertEqual((code, lines), (64, []))
            self.assertIn(words, errors)
            self.assertIn("-setup", errors)
            self.assertTrue(kept.exists())
            code, lines, _ = self.run_program("--check")
            self.assertEqual(code, 1)
            self.assertIn(words, lines[0])

        refused("veskbuilder.ini: there is no such file. Start veskbuilder.exe -setup")
        catalogue = self.program / "veskbuilder.ini"
        catalogue.write_text("")
        refused("veskbuilder.ini: it is empty", "--partial")
        self.write_small_catalogue()
        text = catalogue.read_text()
        catalogue.write_text(text.replace("CRC0=", "CRC0", 1))  # PE Builder's would be unknown
        refused("is not a key")
        catalogue.write_text(text.replace("Enabled1=0", "Enabled1=maybe"))
        refused('key Enabled1: "maybe"')
        code, lines, errors = self.build("--yes", "--replace-foreign", "--partial")
        self.assertEqual(code, 1)
        self.assertIn('key Enabled1: "maybe"', errors)
        self.assertIn("   One", lines)
        self.assertTrue((self.tree / "pebuilder.exe").exists())
        catalogue.write_text(text.replace("Enabled0=1", "Enabled0=maybe", 1))
        files = contents_below(self.program)
        self.assertEqual(self.build("--yes", "--partial")[0], 64)
        self.assertEqual(contents_below(self.program), files)
        catalogue.write_text(text.split("[Base]")[0])
        self.assertEqual(self.build("--yes", "--partial")[0], 64)

    def test_problems_are_kept_beside_the_log(self):
        self.write_small_catalogue()
        (self.program / "one.zip").write_bytes(b"damaged")
        kept = self.program / "veskbuilder-problems.txt"
        code, _, errors = self.build("--quiet")
        self.assertEqual(code, 1)
        self.assertTrue(errors.startswith("veskbuild: one.zip: not installed, "), errors)
        self.assertEqual(kept.read_bytes(), errors.replace("veskbuild: ", "").replace("\n", "\r\n")
                         .encode())
        zip_bytes(self.program / "one.zip", {"one.inf": "[PEBuilder]\r\nName=One\r\n"})
        self.assertEqual(self.build("--yes")[0::2], (0, ""))
        self.assertFalse(kept.exists())

    def test_without_pe_builder_there_is_no_usable_tree(self):
        self.write_small_catalogue()
        (self.program / "pebuilder3110a.zip").write_bytes(b"damaged")
        code, lines, errors = self.build()
        self.assertEqual(code, 5)
        self.assertIn("veskbuild: pebuilder3110a.zip: not ", errors)
        self.assertEqual(lines[-1], "click 'Finish' to exit")

    def test_one_build_at_a_time(self):
        self.write_small_catalogue()
        crc = zip_bytes(self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"})
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", crc)],
                             [("Far", "far.zip", "100", 1, 0, "http://h/far.zip", "1")])
        with socket.create_server(("127.0.0.1", 0)) as silent:
            first = subprocess.Popen(
                [*WINE, str(self.program / "veskbuild.exe"), "--install", windows_path(self.tree),
                 "--proxy", f"127.0.0.1:{silent.getsockname()[1]}"],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            silent.settimeout(50)
            connection, _ = silent.accept()
            code, lines, errors = self.build("--yes")
            connection.close()
            first.wait(50)
        self.assertEqual((code, lines), (64, []))
        self.assertRegex(errors, r"Another build is running in .*: veskbuild.exe, process \d+")
        self.assertEqual(self.build("--yes", "--disable", "Far")[0], 0)

    def test_program_folder_outside_the_code_page(self):
        self.write_small_catalogue()
        self.program = self.program.rename(self.folder / "\u03a9\u0416")
        for action in ("--list", "--check"):
            code, lines, errors = self.run_program(action)
            self.assertEqual(code, 1)
            self.assertIn("the name of the program's folder", "".join(lines) + errors)
        self.assertEqual(self.run_program("--yes")[0], 64)

    def test_what_is_told_beside_the_log(self):
        self.write_small_catalogue()
        code, lines, errors = self.build("--source", windows_path(self.program))
        self.assertEqual(code, 1)
        self.assertIn("Source path: Invalid", lines)
        self.assertIn("not usable as Windows source, it has no I386 folder", errors)
        code, _, errors = self.build("--yes", "--enable", "locked")
        self.assertEqual(code, 1)
        self.assertIn("Locked: not ticked, ", errors)
        code, lines, errors = self.run_program("--install", "C:\\\u03a9")
        self.assertEqual((code, lines), (64, []))
        self.assertIn("code page cannot hold", errors)
        with open("/dev/full", "w", encoding="ascii") as full:
            result = subprocess.run(
                [*WINE, str(self.program / "veskbuild.exe"), "--yes", "--install",
                 windows_path(self.tree)], stdin=subprocess.DEVNULL, stdout=full,
                stderr=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"the log could not be printed in full", result.stderr)

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
        (self.tree / "pebuilder.exe").write_text("of an earlier build")
        os.symlink(outside, self.tree / "Plugin")  # where the new tree is to be made
        code, lines, _ = self.build("--yes")
        # Where the system removes the link, the tree is made; where it cannot, nothing is written.
        if (self.tree / "Plugin").is_symlink():
            self.assertEqual(code, 3)
            self.assertIn("ERROR: a link in the old folder could not be removed: {TREE}", lines)
        self.assertEqual(os.listdir(outside), ["kept.txt"])
        self.assertFalse((self.tree / "sub/old.txt").exists())

    def test_links_to_files_in_the_old_tree(self):
        """What they lead to is neither deleted nor written, whatever the system makes of them."""
        self.write_small_catalogue()
        outside = self.folder / "outside"
        outside.mkdir()
        (outside / "kept.txt").write_text("x")
        for name, target in (("old.txt", "kept.txt"), ("veskbuild.unfinished", "kept.txt"),
                             ("input.inf", "kept.txt"), ("readme.txt", "new.txt"),
                             ("Plugin/100_tools/100_tools.inf", "new.txt")):
            for marker in ("pebuilder.exe", None):
                (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
                os.symlink(outside / target, self.tree / name)
                if marker:
                    (self.tree / marker).write_text("of an earlier build")
                code, _, errors = self.build("--yes")
                with self.subTest(name, marker=marker):
                    self.assertEqual(contents_below(outside), {"kept.txt": b"x"})
                    self.assertIn(code, (3, 64), errors)
                shutil.rmtree(self.tree)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
