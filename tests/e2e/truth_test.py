#!/usr/bin/env python3
"""What a build did not do is reported, each thing once, and nothing else is: on the error output, in the
exit code, and in the file beside the log."""

import hashlib
import os
import pty
import select
import shutil
import struct
import subprocess
import sys
import time
import tty
import unittest
import zipfile
import zlib

from program import WINE, ProgramTest, contents_below, windows_path, zip_bytes

INF = "[PEBuilder]\r\nName=Tool\r\nEnable=1\r\n"
BIG = "0123456789abcdef" * 4096


def crc_of(path):
    return f"{zlib.crc32(path.read_bytes()):X}"


class Truth(ProgramTest):
    def setUp(self):
        super().setUp()
        self.plugins = []
        self.base = zip_bytes(self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"})

    def add(self, name, content=None, members=None):
        """Adds a plug-in whose archive is the given bytes, or holds these members."""
        path = self.program / name
        if members is not None:
            zip_bytes(path, members)
        elif content is not None:
            path.write_bytes(content)
        crc = crc_of(path) if path.exists() else "1"
        self.plugins.append((name.rsplit(".", 1)[0], name, "100", 1, 0, "", crc))
        return path

    def recrc(self, path, content):
        path.write_bytes(content)
        self.plugins = [(*entry[:6], crc_of(path)) if entry[1] == path.name else entry
                        for entry in self.plugins]

    def build_plugins(self, *arguments):
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", self.base)],
                             self.plugins)
        code, lines, errors = self.build(*arguments)
        problems = [line.removeprefix("veskbuild: ") for line in errors.splitlines()]
        kept = self.program / "veskbuilder-problems.txt"
        saved = kept.read_bytes().decode("cp1252") if kept.exists() else ""
        self.assertEqual(saved, "".join(problem + "\r\n" for problem in problems))
        self.assertEqual(lines[-1], "click 'Finish' to exit")
        return code, problems, lines

    def damaged_archives(self):
        """Archives that cannot be extracted whole, with the places and words in their problems."""
        good = {"tool.inf": INF, "files/big.bin": BIG}
        path = self.add("bit.zip", members=good)
        content = bytearray(path.read_bytes())
        content[content.index(b"files/big.bin") + 40] ^= 0x55
        self.recrc(path, bytes(content))
        path = self.add("cut.zip", members=good)
        self.recrc(path, path.read_bytes()[:-30])
        path = self.add("locked.zip", members=good)
        content = bytearray(path.read_bytes())
        for signature, flags in ((b"PK\1\2", 8), (b"PK\3\4", 6)):
            content[content.rindex(signature) + flags] |= 1
        self.recrc(path, bytes(content))
        path = self.add("method.zip", members={"tool.inf": INF})
        with zipfile.ZipFile(path, "a", zipfile.ZIP_LZMA) as archive:
            archive.writestr("files/big.bin", BIG)
        self.recrc(path, path.read_bytes())
        self.add("text.zip", b"this is no archive")
        self.add("junk.cab", b"MSCF" + bytes(range(60)))
        self.add("empty.cab", b"MSCF" + struct.pack("<5I2B5H", 0, 60, 0, 44, 0, 3, 1, 0, 1, 0, 0, 0)
                 + b"\0" * 16)
        self.add("names.zip", members={"tool.inf": INF, "../up.txt": "x", "nul": "x", "a:b": "x"})
        self.add("twice.zip", members={"tool.inf": INF, "a.txt": "1", "A.TXT": "2"})
        self.add("void.zip", members={})
        self.add("other.rar", b"Rar!")
        self.add("gone.zip")
        return [("bit.zip: files\\big.bin: not extracted, wrong CRC", 1), ("cut.zip: ", 1),
                ("locked.zip: files\\big.bin: not extracted, ", 1),
                ("method.zip: files\\big.bin: not extracted, ", 1), ("text.zip: not extracted, ", 1),
                ("junk.cab: not extracted", 1), ("empty.cab: not extracted", 1),
                ("names.zip: ", 3), ("twice.zip: ", 1),
                ("void.zip: not extracted, it is empty", 1), ("other.rar: not extracted, ", 1),
                ("gone.zip: not installed, ", 1)]

    def test_failing_archives(self):
        expected = self.damaged_archives()
        code, problems, _ = self.build_plugins("--quiet")
        self.assertEqual(code, 1)
        for start, count in expected:
            with self.subTest(start):
                self.assertEqual(len([p for p in problems if p.startswith(start)]), count, problems)
        self.assertEqual(len(problems), sum(count for _, count in expected), problems)
        self.assertEqual(list(self.folder.rglob("up.txt")), [])
        # The check says of the archives that are there what the build said.
        code, lines, _ = self.run_program("--check")
        self.assertEqual(code, 1)
        for problem in problems:
            archive, told = problem.split(": ", 1)
            if archive not in ("other.rar", "gone.zip"):
                with self.subTest(problem):
                    name = archive.rsplit(".", 1)[0]
                    self.assertIn(f'plug-in "{name}": "{archive}": {told}', lines)
        tree = contents_below(self.tree / "Plugin/100_tools")
        for name in ("bit", "locked", "method", "names", "twice"):
            self.assertIn(f"{name}/tool.inf", tree)
            self.assertNotIn(f"{name}/files/big.bin", tree)

    def test_a_whole_build_is_silent(self):
        self.add("one.zip", members={"one.inf": INF, "./sub//b.txt": "x"})
        for arguments in ([], ["--yes"]):
            code, problems, _ = self.build_plugins(*arguments)
            self.assertEqual((code, problems), (0, []))

    def test_a_file_in_the_place_of_a_stock_plugin(self):
        self.base = zip_bytes(self.program / "pebuilder3110a.zip",
                              {"pebuilder.exe": "x", "Plugin/bootfix": "a file"})
        code, problems, _ = self.build_plugins()
        self.assertEqual(code, 1)
        self.assertEqual(len(problems), 1)
        self.assertIn("Plugin\\bootfix: not moved into its category, ", problems[0])
        self.assertEqual((self.tree / "Plugin/bootfix").read_text(), "a file")
        self.assertNotIn("[0]", (self.tree / "vesklive.ini").read_text())

    def test_utf_16(self):
        menu = "[Append]\r\nnu2menu.xml, t.xml\r\n"
        texts = {"marked.inf": ("\ufeff" + INF + menu).encode("utf-16-le"),
                 "plain.inf": (INF + "[VeskBuilder]\r\nOSType=0\r\nSP=1\r\n").encode("utf-16-le"),
                 "big.inf": ("\ufeff" + INF).encode("utf-16-be")}
        scripts = {f"{i}.script": f"[base]\r\ndirmake,%ProgramPath%\\{i}\r\n" for i in "ab"}
        utf16 = scripts["a.script"].encode("utf-16-le")
        self.base = zip_bytes(self.program / "pebuilder3110a.zip", {
            "pebuilder.exe": "x", "a.script": utf16, "Plugin/bootfix/bootfix.inf": texts["plain.inf"]})
        more = zip_bytes(self.program / "more.zip", {"b.script": scripts["b.script"]})
        self.add("one.zip", members=texts)
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", self.base),
                              ("More", "more.zip", "", 1, 1, "", more)], self.plugins)
        code, lines, errors = self.build()
        self.assertEqual(code, 1)
        tree, why = windows_path(self.tree) + "\\", ", it is UTF-16 text"
        one, boot = tree + "Plugin\\100_tools\\one\\", "Plugin\\bootfix\\bootfix.inf"
        self.assertEqual(sorted(line.removeprefix("veskbuild: ") for line in errors.splitlines()), sorted([
            f"{tree}a.script: not run to its end{why}",
            f"{one}marked.inf: [Append] not commented out{why}", f"{one}plain.inf: not edited{why}",
            f"{one}big.inf: not edited{why}", f"{tree}{boot}: not edited{why}",
            f"{tree}{boot.replace('Plugin', 'Plugin/100_tools', 1).replace('/', chr(92))}: "
            f"not read for the menu{why}"]))
        below = contents_below(self.tree / "Plugin/100_tools")
        for name in ("plain.inf", "big.inf"):
            self.assertEqual(below["one/" + name], texts[name])
        self.assertEqual(below["bootfix/bootfix.inf"], texts["plain.inf"])
        self.assertIn("Name=100 Tool", below["one/marked.inf"].decode("utf-16"))
        self.assertEqual((self.tree / "a.script").read_bytes(), utf16)
        self.assertFalse((self.tree / "b.script").exists())
        self.assertEqual([(self.tree / name).exists() for name in "ab"], [False, True])
        self.assertEqual(lines.count("Processing script: {TREE}\\a.script"), 1)

    def test_digests_beside_the_checksum(self):
        good = self.add("good.zip", members={"good.inf": INF})
        self.add("forged.zip", members={"forged.inf": INF})
        digest = hashlib.sha256(good.read_bytes()).hexdigest()
        found = hashlib.sha256((self.program / "forged.zip").read_bytes()).hexdigest()
        listed = self.program / "veskbuilder.sha256"
        listed.write_text(f"{digest.upper()} *Good.zip\n{digest}  forged.zip\n{digest} good.zip\n")
        code, problems, lines = self.build_plugins()
        differs = f"SHA-256 differs, expected {digest}, found {found}"
        self.assertEqual((code, problems), (1, [
            f"{windows_path(listed)}: not read in full, line 3 is not a SHA-256 digest and a name",
            f"forged.zip: not installed, {differs}"]))
        self.assertIn("Warning: forged.zip CRC failed. !!!", lines)
        self.assertEqual([path.name for path in self.tree.rglob("*d.inf")], ["good.inf"])
        self.assertIn("SHA-256 differs", [line for line in self.run_program("--list")[1]
                                          if "forged.zip" in line][0])
        self.assertIn(f'plug-in "forged": "forged.zip": {differs}', self.run_program("--check")[1])

        self.assertIn("veskbuilder.sha256: not read in full, line 3 is not a SHA-256 digest and a name",
                      self.run_program("--check")[1])

        # PE Builder's own archive is asked for again, as after any difference.
        listed.write_text(f"{digest}  pebuilder3110a.zip\n")
        code, problems, lines = self.build_plugins("--yes")
        self.assertIn("Downloading: pebuilder3110a.zip", lines)
        self.assertRegex("\n".join(problems), "pebuilder3110a.zip: not downloaded, .*; the file that "
                                              f"was there was removed, SHA-256 differs, expected {digest}")
        self.assertEqual(code, 5)

        self.base = zip_bytes(self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"})
        listed.unlink()
        listed.mkdir()
        code, problems, _ = self.build_plugins("--yes")
        self.assertEqual((code, len(problems)), (1, 1))
        self.assertIn("veskbuilder.sha256: not read, so no archive's SHA-256 is checked, ", problems[0])

    def test_values_that_are_cut(self):
        self.add("one.zip", members={"a.inf": f"[PEBuilder]\r\nName={'n' * 255}\r\n",
                                     "b.inf": f"[PEBuilder]\r\nName={'n' * 254}\r\n[VeskBuilder]\r\n"
                                              f"OSType=1{',2' * 150}\r\nSP={'1,' * 127}\r\n"})
        code, problems, _ = self.build_plugins()
        one = windows_path(self.tree) + "\\Plugin\\100_tools\\one\\"
        words = "not taken over in full, [{}] {}, it is longer than 254 characters"
        self.assertEqual((code, problems), (1, [
            f"{one}a.inf: {words.format('PEBuilder', 'Name')}",
            f"{one}b.inf: {words.format('VeskBuilder', 'OSType')}"]))

    def add_locked(self):
        """Adds a plug-in whose archive holds one locked member behind a plain one."""
        files = self.folder / "files"
        files.mkdir()
        (files / "plain.inf").write_text(INF)
        (files / "locked.txt").write_text("told to few")
        path = self.program / "safe.zip"
        for name, options in (("plain.inf", []), ("locked.txt", ["-P", "open sesame"])):
            subprocess.run(["zip", "-q", *options, path, name], cwd=files, check=True)
        self.add("safe.zip")
        return self.tree / "Plugin/100_tools/safe/locked.txt"

    def test_passwords(self):
        locked = self.add_locked()
        for arguments, whole in ((["--password", "open sesame"], True),
                                 (["--yes", "--password", "wrong"], False), (["--yes"], False)):
            code, problems, _ = self.build_plugins(*arguments)
            self.assertEqual((code, locked.exists()), (0, True) if whole else (1, False))
            self.assertEqual(len(problems), 0 if whole else 1, problems)
            self.assertTrue((locked.parent / "plain.inf").exists())
        self.assertTrue(problems[0].startswith("safe.zip: locked.txt: not extracted, "), problems)
        for password, told in (("open sesame", False), ("wrong", True)):
            _, lines, _ = self.run_program("--check", "--password", password)
            self.assertEqual("locked.txt" in "\n".join(lines), told, lines)

    def test_passwords_on_a_terminal(self):
        locked = self.add_locked()
        self.write_catalogue([("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", self.base)],
                             self.plugins)
        for answers, code in ((["wrong", "open sesame"], 0), ([""], 1)):
            shown, returned = self.run_on_a_terminal(answers)
            self.assertEqual((returned, locked.exists()), (code, code == 0), shown)
            self.assertIn(b"Password of safe.zip", shown)
            self.assertNotIn(b"sesame", shown)
            for drawn in (b"[0/2] 0% Removing directory", b"[1/2] 50% Processing: safe.zip",
                          b"[2/2] 100% Done"):
                self.assertIn(drawn, shown)
            shutil.rmtree(self.tree)

    def run_on_a_terminal(self, answers):
        """Builds with a terminal as input and error output, answering each question for a password.
        Returns what the terminal showed, and the exit code."""
        try:
            terminal, program_side = pty.openpty()
        except OSError as error:
            self.skipTest(f"no pseudo-terminal to be had: {error}")
        tty.setraw(program_side)
        self.addCleanup(os.close, terminal)
        process = subprocess.Popen(
            [*WINE, str(self.program / "veskbuild.exe"), "--install", windows_path(self.tree)],
            stdin=program_side, stdout=subprocess.DEVNULL, stderr=program_side,
            start_new_session=True)
        os.close(program_side)
        shown, asked, deadline = b"", 0, time.monotonic() + 60
        while process.poll() is None and time.monotonic() < deadline:
            if select.select([terminal], [], [], 0.1)[0]:
                try:
                    shown += os.read(terminal, 4096)
                except OSError:
                    break
            if shown.count(b"assword of safe.zip:") > asked and asked < len(answers):
                os.write(terminal, answers[asked].encode() + b"\r")
                asked += 1
        if process.poll() is None:
            process.kill()
        return shown, process.wait()

    def mount_disk(self, size):
        """A disk of some kilobytes as the folder that the tree is made in."""
        disk = self.folder / "disk"
        disk.mkdir(exist_ok=True)
        if subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "tmpfs", disk],
                          capture_output=True, check=False).returncode != 0:
            self.skipTest("no small disk can be mounted")
        self.addCleanup(subprocess.run, ["umount", disk], check=False, capture_output=True)
        self.tree = disk / "tree"
        return disk

    def test_a_full_disk(self):
        self.mount_disk(64)
        self.add("one.zip", members={"small.txt": "x", "files/big.bin": os.urandom(70000)})
        code, problems, _ = self.build_plugins()
        self.assertEqual(code, 1)
        self.assertEqual(problems[0], "one.zip: files\\big.bin: not written, disk full")
        self.assertFalse((self.tree / "Plugin/100_tools/one/files/big.bin").exists())
        self.assertTrue((self.tree / "Plugin/100_tools/one/small.txt").exists())

    def test_disks_that_fill_at_any_moment(self):
        self.add("one.zip", members={"one.inf": INF, "b.txt": "x" * 5000})
        self.mount_disk(1024)
        self.assertEqual(self.build_plugins()[0], 0)
        whole = contents_below(self.tree)
        for size in range(4, 64, 4):
            subprocess.run(["umount", self.folder / "disk"], check=True)
            self.mount_disk(size)
            code, problems, _ = self.build_plugins()
            with self.subTest(size):
                self.assertEqual(code == 0, not problems)
                if code == 0:
                    self.assertEqual(contents_below(self.tree), whole)

    def test_a_long_installation_path(self):
        self.base = zip_bytes(self.program / "pebuilder3110a.zip", {
            "pebuilder.exe": "x", "Plugin/bootfix/bootfix.inf": INF})
        work = self.folder / "work"
        work.mkdir()
        length = 200 - len(windows_path(self.folder)) - 1
        self.tree = self.folder / ("t" * length)
        self.add("one.zip", members={"a" * 60 + ".inf": INF, "b" * 100 + "/c.inf": INF})
        os.chdir(work)
        self.addCleanup(os.chdir, "/")
        code, problems, _ = self.build_plugins()
        self.assertEqual(code, 1)
        self.assertTrue(problems)
        self.assertEqual(os.listdir(work), [])

    def test_the_log_cannot_be_saved(self):
        (self.program / "veskbuider.log").mkdir()
        self.write_small_catalogue()
        code, _, errors = self.build()
        self.assertEqual(code, 1)
        self.assertIn("veskbuider.log: not saved, ", errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
