#!/usr/bin/env python3
"""What is published, made twice, installed, used and removed in a Wine prefix of its own.

    package_test.py SIZE OBJDUMP LIMITED WINE...
        SIZE: bytes of a pointer, 4 or 8; LIMITED: runs a program without an administrator's rights

Status 77: there is no makensis.
"""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

from fixtures import TOP, run_in_wine, run_whole, windows_path

BITS = int(sys.argv[1]) * 8
OBJDUMP, LIMITED, *WINE = sys.argv[2:]
PREFIX = "package32" if BITS == 32 else "package"
DRIVE = TOP / "build/wine" / PREFIX / "drive_c"
os.environ |= {"VESK_PREFIX": PREFIX, "WINEPREFIX": str(DRIVE.parent)}
SAMPLE = {"veskbuilder.ini", "pebuilder3110a.zip", "livebase.zip", "hexview.zip", "netnotes.zip",
          "diskcheck.zip", "sphelper.zip", "regtool.cab"}


def make_package(folder):
    run_whole([TOP / "tools/package", folder], timeout=600)
    return {path.name: path.read_bytes() for path in pathlib.Path(folder).iterdir()}


def wine(*arguments):
    return run_in_wine([*WINE, *map(str, arguments)], timeout=120, encoding="cp1252")


def files_below(folder):
    """Relative paths of files and folders. Not counted are the system's own temporary files, and the
    folder that Windows keeps for the programs of a user."""
    own = re.compile(r"/Temp(/|$)|/windows/(temp|Installer)(/|$)|/AppData/Local/Programs$", re.IGNORECASE)
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not own.search(str(path))}


def registry():
    """All keys and values. What Windows itself notes about programs that ran is left out, and the key
    that it keeps for uninstallers, when nothing is in it."""
    subprocess.run(["wineserver", "-w"], check=True, timeout=300)
    lines = set()
    for hive in ("system.reg", "user.reg"):
        key = ""
        for line in (DRIVE.parent / hive).read_text("latin-1").splitlines():
            if line.startswith("["):
                key = f"{hive} {line.rsplit(']', 1)[0]}"
                lines.add(key)
            elif not line.startswith("#time") and "PendingFileRename" not in line:
                lines.add(f"{key} {line}")
    return {line for line in lines
            if not re.search(r"Explorer|^user\.reg \[Console|\\\\Services\\\\|Session Manager|"
                         r"VolatileEnv|DriverDate|Enum\\\\|"
                         r"CurrentVersion\\\\Uninstall ?$", line)}


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="vesk-package-"))
        cls.made = make_package(cls.folder / "one")
        shutil.rmtree(DRIVE.parent, ignore_errors=True)
        run_whole([TOP / "tools/wine-prefix", f"{PREFIX}:{'winxp' if BITS == 32 else 'win10'}"])
        cls.name = next(name for name in cls.made if name.endswith("-portable.zip"))
        with zipfile.ZipFile(cls.folder / "one" / cls.name) as archive:
            archive.extractall(DRIVE)
            cls.published = {name.split("/", 1)[1] for name in archive.namelist()}
        cls.portable = DRIVE / cls.name.replace("-portable.zip", "")
        cls.setup = cls.folder / "one" / cls.name.replace("-portable.zip", "-setup.exe")

    @classmethod
    def tearDownClass(cls):
        subprocess.run(["wineserver", "-k"], check=False, timeout=60)
        shutil.rmtree(cls.folder)

    def build_sample(self, program):
        """The sample's one damaged archive makes the exit code 1; all else is in the tree."""
        built = wine(program, "--yes", "--install", "C:\\VeskLive")
        self.assertEqual(built.returncode, 1, built)
        self.assertTrue((DRIVE / "VeskLive/Plugin/200_applications/hexview/hexview.inf").exists())
        log = (program.parent / "veskbuider.log").read_text("cp1252")
        self.assertRegex(log, r"\nDone\.\.\. \[")

    def test_the_portable_folder_builds_the_sample(self):
        program = self.portable / "veskbuild.exe"
        if BITS == 64:
            shutil.copy(self.portable / "x64/veskbuild.exe", program)
        kind = run_whole([OBJDUMP, "-f", program])
        self.assertIn("pei-x86-64" if BITS == 64 else "pei-i386", kind.stdout)
        self.build_sample(program)
        texts = list(self.portable.glob("*.txt"))
        self.assertGreater(len(texts), 1)
        for text in texts:
            content = text.read_bytes()
            self.assertEqual(content.count(b"\n"), content.count(b"\r\n"), text.name)
            self.assertNotIn(b"<!--", content, text.name)

    @unittest.skipIf(BITS == 64, "the same files as for the 32-bit test")
    def test_two_runs_give_the_same_bytes(self):
        again = make_package(self.folder / "two")
        self.assertEqual({name for name in self.made if self.made[name] != again.get(name)}, set())
        listed = dict(line.split("  ")[::-1] for line in
                      self.made["SHA256SUMS"].decode().splitlines())
        del self.made["SHA256SUMS"]
        self.assertEqual(listed, {name: hashlib.sha256(data).hexdigest()
                                  for name, data in self.made.items()})
        spdx = json.loads(next(data for name, data in self.made.items() if "spdx" in name))
        versions = {part["name"]: part["versionInfo"] for part in spdx["packages"]}
        self.assertEqual(set(versions), {"Vesk Builder", "libdeflate", "zlib",
                                         "GCC runtime libraries", "mingw-w64 runtime", "NSIS"})
        # zlib leaves its version in the program.
        program = (self.portable / "veskbuilder.exe").read_bytes()
        self.assertIn(f" inflate {versions['zlib']} ".encode(), program)

    def run_setup(self, *arguments, code=0):
        ended = wine(self.setup, "/S", *arguments)
        self.assertEqual(ended.returncode, code, ended)

    def install(self, *arguments, folder):
        self.run_setup(*arguments)
        self.assertEqual(self.published - files_below(folder), set())

    def uninstall(self, folder, *arguments):
        """The uninstaller goes on in a copy of itself: wait until its last step is done."""
        menus = set(DRIVE.rglob("Vesk Builder Setup"))
        said = wine(folder / "uninstall.exe", "/S", *arguments)
        subprocess.run(["wineserver", "-w"], check=True, timeout=300)
        self.assertEqual(len(menus - set(DRIVE.rglob("Vesk Builder Setup"))), 1, said)

    def check_versions(self, folder):
        """Both programs start where they are installed: the 64-bit one in the 64-bit Wine."""
        version = self.name.removeprefix("VeskBuilder-").removesuffix("-portable.zip")
        for tool, prefix, program in (("wine32", PREFIX, "veskbuild.exe"),
                                      ("wine", "package", "x64/veskbuild.exe")):
            run_whole([TOP / "tools/wine-prefix", prefix])
            said = run_in_wine([TOP / "tools" / tool, folder / program, "--version"], encoding="cp1252",
                               env=os.environ | {"VESK_PREFIX": prefix})
            self.assertEqual(said.stdout.strip(), f"Vesk Builder v{version}", said)

    @unittest.skipIf(BITS == 64, "the installer is a 32-bit program")
    def test_installing_building_and_removing_leaves_no_trace(self):
        # The traces of a build are the build's: they are there before.
        self.build_sample(self.portable / "veskbuild.exe")
        for mode, folder in (("/AllUsers", DRIVE / "Program Files/Vesk Builder"),
                             ("/CurrentUser", next(DRIVE.glob("users/*/AppData/Local")) /
                              "Programs/Vesk Builder")):
            with self.subTest(mode):
                wine(self.portable / "veskbuild.exe", "--version")
                before = registry(), files_below(DRIVE)
                self.install(mode, folder=folder)
                self.assertGreater(len(registry() - before[0]), 5)
                self.build_sample(folder / "veskbuild.exe")
                self.check_versions(folder)
                self.uninstall(folder, mode)
                self.assertEqual(files_below(DRIVE) ^ before[1], set())
                self.assertEqual(registry() ^ before[0], set())

    @unittest.skipIf(BITS == 64, "the installer is a 32-bit program")
    def test_the_users_own_things_survive_upgrade_and_removal(self):
        folder = DRIVE / "Program Files/Vesk Builder"
        self.install(folder=folder)
        catalogue = folder / "veskbuilder.ini"
        mine = catalogue.read_bytes() + b"; mine\r\n"
        catalogue.write_bytes(mine)
        (folder / "own.zip").write_bytes(b"own")
        (folder / "netnotes.zip").unlink()
        (folder / "guide.txt").write_bytes(b"of an older version")
        self.run_setup()
        self.assertEqual(catalogue.read_bytes(), mine)
        self.assertFalse((folder / "netnotes.zip").exists())
        self.assertNotEqual((folder / "guide.txt").read_bytes(), b"of an older version")
        self.uninstall(folder)
        self.assertEqual(files_below(folder), SAMPLE - {"netnotes.zip"} | {"own.zip"})
        self.assertEqual(catalogue.read_bytes(), mine)
        shutil.rmtree(folder)

    @unittest.skipIf(BITS == 64, "the installer is a 32-bit program")
    def test_a_silent_run_uses_the_given_folder_and_says_when_it_failed(self):
        own, usual = DRIVE / "VeskOwn", DRIVE / "Program Files/Vesk Builder"
        in_the_way = own / "guide.txt"
        in_the_way.mkdir(parents=True)
        self.run_setup("/CurrentUser", "/D=C:\\VeskOwn", code=2)
        in_the_way.rmdir()
        self.run_setup("/CurrentUser", "/D=C:\\VeskOwn")
        self.assertTrue(in_the_way.is_file())
        self.run_setup("/AllUsers")
        here = "_?=C:\\Program Files\\Vesk Builder"  # not in a copy, whose exit code nobody sees
        for program, *arguments in ((self.setup, "/AllUsers"), (usual / "uninstall.exe", here),
                                    (usual / "uninstall.exe", "/AllUsers", here)):
            self.assertEqual(wine(LIMITED, windows_path(program), "/S", *arguments).returncode, 2)
        self.assertEqual(wine(LIMITED, windows_path(own / "veskbuild.exe"), "--list").returncode, 4)
        for folder, other in ((own, usual), (usual, own)):
            self.uninstall(folder)
            self.assertEqual((folder.exists(), (other / "guide.txt").exists()), (False, folder == own))


if __name__ == "__main__":
    if not shutil.which("makensis"):
        print("left out: there is no makensis")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
