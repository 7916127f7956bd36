#!/usr/bin/env python3
"""veskbuild's contract: streams, questions, exit codes, and care for what is the user's."""

import os
import select
import shutil
import socket
import subprocess
import unittest

from fixtures import Member, windows_path, write_catalogue
from program import START_MENU, SaidTest, contents_below, link_drive, run_in_wine


class Console(SaidTest):
    def setUp(self):
        super().setUp()
        self.write_small_catalogue()
        self.catalogue = self.program / "veskbuilder.ini"

    def fill_tree(self, *names):
        for name in names:
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            (self.tree / name).write_text("of an earlier build")

    def make_outside(self):
        """A folder of the user's own, with a file in it."""
        outside = self.folder / "outside"
        outside.mkdir()
        (outside / "kept.txt").write_text("x")
        return outside

    def test_wrong_usage(self):
        for arguments in (
                ["--wrong"], ["--install"], ["--enable", "Nobody"], ["--list", "--disable", "No"],
                ["--yes", "--no"], ["--install", "--yes"], ["--timeout", "-1"], ["--timeout", "soon"],
                ["--install", "C:\\" + "x" * 1600], ["--install", "Q:\\x"], ["--install", "C:\\a|b"],
                ["--proxy", "x"], ["--install", "C:\\"], ["--install", windows_path(self.program)],
                ["--install", windows_path(self.folder)], ["--install", "C:\\\u03a9"], ["--version"]):
            self.run_program(*arguments)

    def test_existing_folder(self):
        self.fill_tree("old.txt", "input.inf")
        for arguments, stays in (([], True), (["--no"], True), (["--yes"], False)):
            self.build(*arguments)  # nobody to ask counts as No
            self.assertEqual((self.tree / "old.txt").exists(), stays)

    def test_a_folder_that_no_build_made(self):
        self.fill_tree("letter.txt", "sub/photo.jpg")
        for arguments, stays in ((["--yes"], True), ([], True), (["--no", "--replace-foreign"], True),
                                 (["--yes", "--replace-foreign"], False)):
            self.build(*arguments)
            for name in ("letter.txt", "sub"):
                self.assertEqual((self.tree / name).exists(), stays)

    def test_list_and_locked_entries(self):
        """A tick that has no effect is not taken in silence."""
        self.raw("one.zip", b"damaged")
        self.run_program("--list")
        self.run_program("--list", "--disable", "One", "--enable", "locked")
        for arguments in (["--enable", "Locked"], ["--disable", "PE Builder"], ["--disable", "One"]):
            self.build("--yes", *arguments)

    def test_check(self):
        self.run_program("--check")
        two = self.archive("two.zip", Member("i", "x"))
        self.write_entries([self.pe_builder()], [("100", "Two", 1, 0, *two)],
                           [(key, key + "_x") for key in ("100", "200", "300", "500")])
        self.run_program("--check")
        self.run_program("--check", "--disable", "PE Builder")
        self.raw("two.zip", b"damaged")
        self.run_program("--check", "--quiet")
        self.catalogue.write_text(self.catalogue.read_text().replace("Lock0=0", "Lock0=maybe"))
        self.run_program("--check")

    def test_unreadable_catalogues(self):
        text = self.catalogue.read_text()
        self.fill_tree("kept.txt")
        for damaged, built in (
                (None, False), ("", False), (text.replace("CRC0=", "CRC0", 1), False),
                (text.replace("Enabled0=1", "Enabled0=maybe", 1), False), (text.split("[Base]")[0], False),
                (text.replace("Enabled1=0", "Enabled1=maybe"), True)):
            self.catalogue.unlink(missing_ok=True)
            if damaged is not None:
                self.catalogue.write_text(damaged)
            self.run_program("--check")
            files = contents_below(self.folder)
            self.build("--yes", "--replace-foreign")
            self.assertEqual(contents_below(self.folder), files)
            self.build("--yes", "--replace-foreign", "--partial")
            self.assertEqual(contents_below(self.folder) == files, not built)

    def test_one_build_at_a_time(self):
        write_catalogue(self.program,
                        [("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", self.pe_builder()[-1])],
                        [("Far", "far.zip", "100", 1, 0, "http://h/far.zip", "1")])
        with socket.create_server(("127.0.0.1", 0)) as silent:
            for _ in range(2):  # Wine ends a process now and then
                first = subprocess.Popen(
                    self.command(*self.to_tree, "--proxy", f"127.0.0.1:{silent.getsockname()[1]}"),
                    stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                self.addCleanup(first.kill)
                if select.select([silent], [], [], 25)[0]:
                    break
                first.kill()
            silent.settimeout(1)
            connection, _ = silent.accept()
            self.build("--yes")
            inside = link_drive(self, self.tree / "Plugin")  # no path tells that it is in the tree
            self.run_program("--yes", "--install", inside + "\\new")
            connection.close()
            first.wait(50)
        self.build("--yes", "--disable", "Far")

    def test_program_folder_outside_the_code_page(self):
        self.program = self.program.rename(self.folder / "\u03a9\u0416")
        for action in ("--list", "--check", "--yes"):
            self.run_program(action)

    def test_what_is_told_beside_the_log(self):
        self.build("--source", windows_path(self.program))
        for arguments in (("--yes", *self.to_tree), ["--list"], ["--version"]):
            with open("/dev/full", "w", encoding="ascii") as full:
                result = run_in_wine(self.command(*arguments), stdout=full)
            self.assertEqual(result.returncode, 1, result)
            self.assertIn(b" could not be printed in full", result.stderr)

    def test_links_in_the_old_tree(self):
        """What they lead to is neither entered nor deleted nor written, whatever the system makes of
        them: where it cannot remove a link, nothing is written."""
        outside = self.make_outside()
        for name, target in (("Plugin", "."), ("old.txt", "kept.txt"), ("veskbuild.unfinished", "kept.txt"),
                             ("veskbuild.unfinished.vesk-new", "kept.txt"),
                             ("input.inf", "kept.txt"), ("readme.txt", "new.txt"),
                             ("Plugin/100_tools/100_tools.inf", "new.txt")):
            for others in (["pebuilder.exe", "sub/old.txt"], ["sub/old.txt"]):
                self.fill_tree(*others)
                (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
                os.symlink(outside / target, self.tree / name)
                code, _, errors = self.build("--yes")
                self.assertIn({3: ": not built, a link in the old folder could not be removed",
                               64: " that no build made; --replace-foreign empties it"}[code], errors)
                self.assertEqual(contents_below(outside), {"kept.txt": b"x"})
                shutil.rmtree(self.tree)
        self.transcript.clear()  # it depends on the system

    def test_a_link_in_place_of_the_start_menus_folder(self):
        """Wine cannot remove it, so no shortcut may be made behind it."""
        outside = self.make_outside()
        if START_MENU.is_dir() and not START_MENU.is_symlink():
            shutil.rmtree(START_MENU)
        START_MENU.unlink(missing_ok=True)
        START_MENU.symlink_to(outside)
        self.addCleanup(START_MENU.unlink)
        self.build()
        self.assertTrue(START_MENU.is_symlink())
        self.assertEqual(contents_below(outside), {"kept.txt": b"x"})


if __name__ == "__main__":
    unittest.main(argv=["console_test.py"])
