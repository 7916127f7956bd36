#!/usr/bin/env python3
"""The commands of the guide, run as a reader would: those marked "run: returns N"."""

import re
import shlex
import subprocess
import sys
import unittest

from program import TOP, WINE, SampleTest

BLOCK = re.compile(r"<!-- run: returns (\d+) -->\n```\w*\n(.*?)```", re.DOTALL)


class Guide(SampleTest):
    def test_every_marked_command_returns_what_it_says(self):
        # What a build left there is taken for an earlier one's.
        subprocess.run([*WINE, "cmd", "/c", "rmdir", "/s", "/q", "C:\\VeskLive"], check=False,
                       capture_output=True, timeout=60)
        blocks = BLOCK.findall((TOP / "docs/guide.md").read_text("utf-8"))
        self.assertGreaterEqual(len(blocks), 6)
        for code, text in blocks:
            for line in text.splitlines():
                with self.subTest(line):
                    program, *arguments = shlex.split(line.replace("\\", "\\\\"))
                    self.assertEqual(program, "veskbuild")
                    got, lines, errors = self.run_program(*arguments)
                    self.assertEqual(got, int(code), (lines, errors))

    def test_what_it_quotes_is_what_the_programs_say(self):
        """Each line of the log and each problem in its tables is in the sources."""
        rows = re.findall(r"^\| `([^`]+)` \|", (TOP / "docs/guide.md").read_text("utf-8"),
                          re.MULTILINE)
        sources = "".join(path.read_text("utf-8") for path in sorted((TOP / "src").rglob("*.cpp")))
        sources = re.sub(r'"\s*\n\s*"', "", sources)
        quotes = [part.strip(" :,") for row in rows for part in re.split(r"\.\.\.\w*|120|:", row)]
        missing = [text for text in quotes if len(text) > 3 and "404" not in text
                   and not all(part in sources for part in text.split(", "))]
        self.assertEqual(missing, [])
        self.assertGreater(len(quotes), 15)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
