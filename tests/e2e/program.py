"""A fresh program folder with the delivered veskbuild.exe in it, and what it says when run.

Tests are started with the folder of the programs and the command that runs them.
"""

import os
import pathlib
import re
import shutil
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from fixtures import (TOP, Member, compare, crc_of, fresh_folder, run_in_wine,  # noqa: E402
                      run_whole, windows_path, write_archive, write_catalogue)

PROGRAMS = pathlib.Path(sys.argv[1])
WINE = sys.argv[2:]
INF = "[PEBuilder]\r\nName=Tool\r\nEnable=1\r\n"

CHANGING = (  # what of a line depends on the day, the machine or the version
    (r"\[\d+/\d+/\d{4} \d+:\d\d:\d\d [AP]M\]", "[{DATE}]"),
    (r"C:\\users\\[^\\]+\\Desktop", "{DESKTOP}"),
    (r"\b(Vesk Builder v)[\d.]+", r"\1{VERSION}"),
    (r"process \d+", "process {NUMBER}"),
    (r"\b[I-Y]:(?=\\new)", "{DRIVE}"),
)

# The Wine prefix that programs run in. On Windows itself there is none.
PREFIX = TOP / "build/wine" / os.environ.get(
    "VESK_PREFIX", "test32" if WINE and WINE[0].endswith("wine32") else "test")
START_MENU = PREFIX / "drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Vesk Builder"


def link_drive(test, folder):
    """Gives a test a drive that is the folder. Another test may take a letter at the same time."""
    for letter in "tuvwxyrsqponmlkji":
        link = PREFIX / "dosdevices" / f"{letter}:"
        try:
            os.symlink(folder, link)
        except FileExistsError:
            continue
        test.addCleanup(os.unlink, link)
        return letter.upper() + ":"
    raise AssertionError("no drive letter is free")


class ProgramTest(unittest.TestCase):
    """Each test has its own folder: program/ with veskbuild.exe, and tree as installation folder."""

    def setUp(self):
        self.folder = fresh_folder(self, "vesk-e2e-")
        self.program = self.folder / "program"
        self.program.mkdir()
        shutil.copy(PROGRAMS / "veskbuild.exe", self.program)
        (self.program / "readme.txt").write_text("read me")
        self.tree = self.folder / "tree"
        self.to_tree = ("--install", windows_path(self.tree))
        self.said = "none"
        self.transcript = []

    def command(self, *arguments):
        return [*WINE, str(self.program / "veskbuild.exe"), *arguments]

    def run_program(self, *arguments, cwd=None, zone=None):
        """Returns exit code, lines of the output, and the error output."""
        environment = dict(os.environ, TZ=zone) if zone else None
        result = run_in_wine(self.command(*arguments), env=environment, timeout=60, encoding="cp1252", cwd=cwd)
        # Wine itself complains that Z: has no volume label.
        errors = [line for line in result.stderr.splitlines(True) if not line.startswith("wine: ")]
        self.said = (f"arguments {arguments}\nexit code {result.returncode}\n{result.stderr}"
                     f"--- log\n{result.stdout}")
        lines = result.stdout.splitlines()
        self.note(result.returncode, lines, "".join(errors), *arguments)
        return result.returncode, lines, "".join(errors)

    def note(self, code, lines, errors, *arguments):
        """Adds a run to the transcript; of a build's log only what is worth a word."""
        if lines[-1:] == ["click 'Finish' to exit"]:
            lines = [line for line in lines if re.match("Warning|ERROR|Downl|Abort|Done|Source|click", line)]
        told = ["$ " + " ".join(arguments), *("  " + line for line in lines),
                *("! " + line for line in errors.splitlines()), f"= {code}"]
        self.transcript += map(self.normalised, told)

    def _formatMessage(self, msg, standard):
        """Every failed assertion shows what the last run said."""
        return super()._formatMessage(msg, standard) + "\n--- the last run: " + self.said

    def build(self, *arguments):
        """A run into the tree; returns exit code, normalised log lines and the error output."""
        self.to_tree = ("--install", windows_path(self.tree))
        code, lines, errors = self.run_program(*self.to_tree, *arguments)
        return code, [self.normalised(line) for line in lines], errors

    def normalised(self, line):
        for name in ("program", "tree", "folder"):
            line = line.replace(windows_path(getattr(self, name)), "{" + name.upper() + "}")
        for changing, word in CHANGING:
            line = re.sub(changing, word, line)
        return line

    def archive(self, name, *members):
        """Makes an archive in the program folder. Returns its name and checksum."""
        return name, write_archive(self.program / name, *members)

    def raw(self, name, content=None):
        """The same of an archive that is there, or of these bytes."""
        if content is not None:
            (self.program / name).write_bytes(content)
        return name, crc_of(self.program / name)

    def write_entries(self, base, plugins=(), *options, **more):
        """Entries are (name, ticked, locked, archive, checksum), of plug-ins with the category first."""
        write_catalogue(
            self.program, [(name, file, "", on, lock, "", crc) for name, on, lock, file, crc in base],
            [(name, file, cat, on, lock, "", crc) for cat, name, on, lock, file, crc in plugins],
            *options, **more)

    def add_sample(self):
        """The sample with every archive."""
        self.sample = self.folder / "sample"
        run_whole([sys.executable, TOP / "sample/make_sample.py", self.sample])
        for file in [*(self.sample / "program").iterdir(), self.sample / "server/hexview.zip"]:
            shutil.copy(file, self.program)

    def pe_builder(self, *members):
        """The one base component that a catalogue needs."""
        archive = self.archive("pebuilder3110a.zip", Member("pebuilder.exe", "x"), *members)
        return ("PE Builder", 1, 1, *archive)

    def write_small_catalogue(self, *locked):
        """One base component and two plug-ins, the second locked and, unless it is given, unticked."""
        one = self.archive("one.zip", Member("one.inf", "[PEBuilder]\r\nName=One\r\n"))
        self.write_entries([self.pe_builder()], [
            ("100", "One", 1, 0, *one), locked or ("100", "Locked", 0, 1, "locked.zip", "1")])


class SaidTest(ProgramTest):
    """Compares what all runs of a test say and return with tests/data/said: "$" what was called,
    "!" the error output, "=" the exit code."""

    def tearDown(self):
        if self.transcript:
            compare(self, f"said/{self._testMethodName.removeprefix('test_')}.txt", self.transcript)


def contents_below(folder):
    """Relative path to bytes, of all files in a folder."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}
