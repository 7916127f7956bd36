#!/usr/bin/env python3
"""What a build did not do is reported, each thing once, and nothing else is: on the error output, in the
exit code, and in the file beside the log. What it does with every kind of bad archive is in builds_test."""

import os
import unittest

from fixtures import Member, run_on_a_terminal, run_whole, windows_path
from program import INF, SaidTest


class Truth(SaidTest):
    def setUp(self):
        super().setUp()
        self.base = self.pe_builder()

    def build_plugins(self, *archives, arguments=()):
        """Builds with plug-ins of these names and checksums. @return exit code and problems"""
        self.write_entries([self.base], [("100", name, 1, 0, name, crc) for name, crc in archives])
        code, lines, errors = self.build(*arguments)
        problems = [line.removeprefix("veskbuild: ") for line in errors.splitlines()]
        kept = self.program / "veskbuilder-problems.txt"
        saved = kept.read_bytes().decode("cp1252").split("\r\n") if kept.exists() else None
        self.assertEqual(saved, problems + [""] if problems else None)
        self.assertEqual(lines[-1], "click 'Finish' to exit")
        return code, problems

    def test_a_whole_build_is_silent(self):
        self.tree = self.folder / "new/deep/tree"
        one = self.archive("one.zip", Member("one.inf", INF), Member("./sub//b.txt", "x"))
        for more in ([("gone.zip", "1")], [], []):
            self.build_plugins(one, *more, arguments=["--yes"])

    def test_digests_beside_the_checksum(self):
        """PE Builder's own archive is asked for again, as after any difference."""
        listed = self.program / "veskbuilder.sha256"
        listed.write_text(f"{'0' * 64}  pebuilder3110a.zip\n")
        self.build_plugins()
        self.assertFalse((self.program / "pebuilder3110a.zip").exists())
        self.base = self.pe_builder()
        listed.unlink()
        listed.mkdir()
        self.build_plugins(arguments=["--yes"])

    def test_texts_too_large_to_be_read(self):
        large = bytes(17 * 2**20)
        self.base = self.pe_builder(Member("large.script", large), Member("plugin/bootfix/bootfix.inf", large))
        self.build_plugins(self.archive("one.zip", Member("a.inf", INF), Member("large.inf", large)))
        for kept in ("large.script", "Plugin/100_tools/bootfix/bootfix.inf"):
            self.assertTrue((self.tree / kept).exists(), kept)

    def add_locked(self):
        """Makes an archive that holds one locked member behind a plain one."""
        for name, text, options in (("plain.inf", INF, []), ("locked.txt", "x", ["-P", "öpen sesame".encode("cp1252")])):
            (self.folder / name).write_text(text)
            run_whole(["zip", "-q", *options, self.program / "safe.zip", name], cwd=self.folder)
        return self.raw("safe.zip"), self.tree / "Plugin/100_tools/safe/locked.txt"

    def test_passwords(self):
        safe, locked = self.add_locked()
        for words in (["wrong"], [], ["öpen sesame"]):
            password = [word for given in words for word in ("--password", given)]
            self.build_plugins(safe, arguments=["--yes", *password])
            self.assertEqual(locked.exists(), words == ["öpen sesame"])
            self.assertTrue((locked.parent / "plain.inf").exists())
            self.run_program("--check", *password)

    def test_passwords_on_a_terminal(self):
        safe, locked = self.add_locked()
        self.write_entries([self.base], [("100", "Säfe", 1, 0, *safe)])
        for answers, code in ((["wrong", "öpen sesame"], 0), (["n"], 3), (["Y", ""], 1)):
            waiting = list(answers)

            def answer(_, shown, terminal):
                asked = shown.count(b"assword of safe.zip:") + shown.count(b"[y/N")  # the line may end in it
                if asked > len(answers) - len(waiting) and waiting:
                    os.write(terminal, waiting.pop(0).encode() + b"\r")

            returned, shown = run_on_a_terminal(self, self.command(*self.to_tree), answer)
            listed = run_on_a_terminal(self, ["sh", "-c", '"$@" >&2', "", *self.command("--list")], answer)
            self.assertIn("Säfe".encode(), listed[1])
            self.assertEqual((returned, locked.exists()), (code, code != 1), shown)
            self.assertNotIn(b"sesame", shown)
            for drawn in (b"Password of safe.zip", b"[0/2] 0% Removing directory",
                          b"[1/2] 50% Processing: safe.zip", b"[2/2] 100% Done"):
                self.assertEqual(drawn in shown, code != 3, shown)

    def test_a_long_installation_path(self):
        self.base = self.pe_builder(Member("Plugin/bootfix/bootfix.inf", INF))
        work = self.folder / "work"
        work.mkdir()
        self.tree = self.folder / ("t" * (199 - len(windows_path(self.folder))))
        one = self.archive("one.zip", Member("a" * 60 + ".inf", INF), Member("b" * 100 + "/c.inf", INF))
        os.chdir(work)
        self.addCleanup(os.chdir, "/")
        self.build_plugins(one)
        self.assertEqual(os.listdir(work), [])

    def test_the_log_cannot_be_saved(self):
        (self.program / "veskbuider.log").mkdir()
        self.build_plugins()


if __name__ == "__main__":
    unittest.main(argv=["truth_test.py"])
