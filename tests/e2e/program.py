"""A fresh program folder with the delivered veskbuild.exe in it, and what it says when run.

Tests are started with the folder of the programs and the command that runs them.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
import zlib

PROGRAMS = pathlib.Path(sys.argv[1])
WINE = sys.argv[2:]
TOP = pathlib.Path(__file__).resolve().parents[2]

DATE = re.compile(r"\[\d+/\d+/\d{4} \d+:\d\d:\d\d [AP]M\]")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def zip_bytes(path, members):
    """Writes a ZIP archive of names and texts; returns its checksum as catalogues hold it."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in members.items():
            archive.writestr(zipfile.ZipInfo(name, (2006, 5, 4, 3, 2, 2)), text)
    return f"{zlib.crc32(path.read_bytes()):X}"


def link_drive(test, folder):
    """Gives a test a drive that is the folder. Another test may take a letter at the same time."""
    default = "test32" if WINE[0].endswith("wine32") else "test"
    prefix = TOP / "build/wine" / os.environ.get("VESK_PREFIX", default)
    for letter in "tuvwxyrsqponmlkji":
        link = prefix / "dosdevices" / f"{letter}:"
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
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vesk-e2e-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.program = self.folder / "program"
        self.program.mkdir()
        shutil.copy(PROGRAMS / "veskbuild.exe", self.program)
        (self.program / "readme.txt").write_text("read me")
        self.tree = self.folder / "tree"
        self.said = "none"

    def run_program(self, *arguments, stdin=subprocess.DEVNULL, cwd=None, zone=None):
        environment = dict(os.environ, TZ=zone) if zone else None
        start = lambda: subprocess.run(
            [*WINE, str(self.program / "veskbuild.exe"), *arguments], env=environment,
            stdin=stdin, capture_output=True, timeout=60, encoding="cp1252", cwd=cwd)
        result = start()
        # On a busy machine Wine's server ends a process now and then, with 1 and without a word. The
        # program says something whenever it returns 1, and if it did not it would do so again.
        if result.returncode == 1 and not result.stdout and not result.stderr:
            print("left out: a run that Wine ended", file=sys.stderr)
            result = start()
        # Wine itself complains that Z: has no volume label.
        errors = [line for line in result.stderr.splitlines(True) if not line.startswith("wine: ")]
        self.said = (f"arguments {arguments}\nexit code {result.returncode}\n{result.stderr}"
                     f"--- log\n{result.stdout}")
        return result.returncode, result.stdout.splitlines(), "".join(errors)

    def _formatMessage(self, msg, standard):
        """Every failed assertion shows what the last run said."""
        return super()._formatMessage(msg, standard) + "\n--- the last run: " + self.said

    def build(self, *arguments):
        """A run into the tree; returns exit code, normalised log lines and the error output."""
        code, lines, errors = self.run_program("--install", windows_path(self.tree), *arguments)
        return code, [self.normalised(line) for line in lines], errors

    def normalised(self, line):
        line = line.replace(windows_path(self.program), "{PROGRAM}")
        line = line.replace(windows_path(self.tree), "{TREE}")
        line = line.replace(windows_path(self.folder), "{FOLDER}")
        line = re.sub(r"C:\\users\\[^\\]+\\Desktop", "{DESKTOP}", line)
        line = re.sub(r"^(Vesk Builder v)[\d.]+ ----", r"\1{VERSION} ----", line)
        return DATE.sub("[{DATE}]", line)

    def write_catalogue(self, base, plugins=(), categories=(("100", "100_tools"),),
                        install=("VeskLive", 0), show_categories=-1):
        """Entries are (name, archive, category, enabled, lock, url, crc)."""
        lines = ["[Install]", f"Folder={install[0]}", f"Path={install[1]}", "[Base]"]
        for section, entries in (("Base", base), ("Plugin", plugins)):
            if section == "Plugin":
                lines.append("[Plugin]")
            for i, (name, zip_name, cat, enabled, lock, url, crc) in enumerate(entries):
                lines += [f"Name{i}={name} ", f"Zip{i}={zip_name} "]
                lines += [f"Cat{i}={cat} "] if section == "Plugin" else []
                lines += [f"Enabled{i}={enabled}", f"Lock{i}={lock}", f"Url{i}={url} ",
                          f"CRC{i}={crc} "]
        lines += ["[Categories]", f"ShowCategories={show_categories}"] + [f"{k}={v}" for k, v in categories]
        (self.program / "veskbuilder.ini").write_text("\r\n".join(lines) + "\r\n", "cp1252",
                                                       newline="")

    def write_small_catalogue(self):
        """One base component and two plug-ins, the second locked and unticked."""
        crc = zip_bytes(self.program / "pebuilder3110a.zip", {"pebuilder.exe": "x"})
        one = zip_bytes(self.program / "one.zip", {"one.inf": "[PEBuilder]\r\nName=One\r\n"})
        self.write_catalogue(
            [("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", crc)],
            [("One", "one.zip", "100", 1, 0, "", one),
             ("Locked", "locked.zip", "100", 0, 1, "", "1")])


class SampleTest(ProgramTest):
    """Program folders that hold the sample with every archive."""

    def setUp(self):
        super().setUp()
        self.sample = self.folder / "sample"
        subprocess.run([sys.executable, TOP / "sample/make_sample.py", self.sample], check=True)
        for file in (self.sample / "program").iterdir():
            shutil.copy(file, self.program)
        shutil.copy(self.sample / "server/hexview.zip", self.program)
        shutil.copy(TOP / "packaging/readme.txt", self.program)


def contents_below(folder):
    """Relative path to bytes, of all files in a folder."""
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}
