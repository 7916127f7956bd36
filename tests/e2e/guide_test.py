#!/usr/bin/env python3
"""The commands of the read-me and the guide, run as a reader would: blocks marked "run: returns N"
(of veskbuild), "cmd: says TEXT" (a batch file) and "help" (what --help says)."""

import re
import shlex
import shutil
import sys
import unittest

from program import PREFIX, TOP, WINE, ProgramTest, run_in_wine, windows_path

TEXTS = {name: (TOP / name).read_text("utf-8") for name in ("README.md", "docs/guide.md")}
BLOCK = re.compile(r"(?:<!-- (run|cmd|help)(?:: \w+ ([^\n]+))? -->\n)?^```\w*\n(.*?)^```", re.DOTALL | re.M)
INLINE = re.compile(r"`((?:\./|tools/|veskbuild(?:\.exe)? |veskbuilder\.exe )[^`]*)`")
# By the first line. Samples of a log, of problems, of an INF and of scripts are no commands.
SAMPLES = ("Vesk Builder v", "veskbuild: hexview.zip", "[Version]", "[VeskBuilder]", "[base]")
BY_HAND = {
    "./run": "makes all that this test runs, and opens the wizard where there is a screen",
    "./run --list": "the same with --list, which the guide has",
    "./run --build-only": "the same without its last step",
    "tools/package": "run by package.package",
    "veskbuilder.exe -setup": "run by ui.entries",
}


class Guide(ProgramTest):
    def test_every_marked_command_returns_what_it_says(self):
        self.add_sample()
        # What a build left there is taken for an earlier one's.
        shutil.rmtree(PREFIX / "drive_c/VeskLive", ignore_errors=True)
        by_hand = {name for text in TEXTS.values() for name in INLINE.findall(text)}
        for kind, wanted, text in (block for page in TEXTS.values() for block in BLOCK.findall(page)):
            with self.subTest(text):
                if kind:
                    getattr(self, f"look_at_{kind}")(wanted, text)
                elif not text.startswith(SAMPLES):
                    by_hand.update(text.splitlines())
        self.assertEqual(by_hand, set(BY_HAND))
        kinds = {kind for page in TEXTS.values() for kind, *_ in BLOCK.findall(page)}
        self.assertGreaterEqual(kinds, {"run", "cmd", "help"})

    def look_at_run(self, code, text):
        for line in text.splitlines():
            program, *arguments = shlex.split(line.replace("\\", "\\\\"))
            self.assertEqual(program, "veskbuild")
            got, lines, errors = self.run_program(*arguments)
            self.assertEqual(got, int(code), (lines, errors))

    def look_at_cmd(self, words, text):
        source = windows_path(self.sample / "source")
        self.assertIn(" D:\\ ", text)
        batch = self.program / "batch.cmd"
        batch.write_text("@echo off\n" + text.replace("D:\\", source), newline="\r\n")
        said = run_in_wine([*WINE, "cmd", "/c", "batch.cmd"], cwd=self.program, encoding="cp1252").stdout
        self.assertRegex(said, rf"\A{words}\s*veskbuild: diskcheck\.zip: .*\n\Z")

    def look_at_help(self, _, text):
        self.assertIn(text, "".join(f"{line}\n" for line in self.run_program("--help")[1]))

    def test_what_it_quotes_is_what_the_programs_say(self):
        """Each line of the log and each problem in its tables is in the sources."""
        rows = re.findall(r"^\| `([^`]+)` \|", TEXTS["docs/guide.md"], re.MULTILINE)
        sources = "".join(path.read_text("utf-8") for path in sorted((TOP / "src").rglob("*.cpp")))
        sources = re.sub(r'"\s*\n\s*"', "", sources)
        quotes = [part.strip(" :,") for row in rows for part in re.split(r"\.\.\.\w*|120|:", row)]
        missing = [text for text in quotes if len(text) > 3 and "404" not in text
                   and not all(part in sources for part in text.split(", "))]
        self.assertEqual(missing, [])
        self.assertGreater(len(quotes), 15)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
